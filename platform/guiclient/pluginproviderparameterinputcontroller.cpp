// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginproviderparameterinputcontroller.h"

#include "guiclient/formviewer.h"
#include "guiclient/inputview.h"

PluginProviderParameterInputController::PluginProviderParameterInputController(SessionManager * /*session*/,
                                                                               FormViewer *viewer,
                                                                               const QString &viewName,
                                                                               const QString &hint, QObject *parent)
    : QObject(parent), m_viewer(viewer), m_viewName(viewName.isEmpty() ? QStringLiteral("inputView") : viewName),
      m_hint(hint)
{}

PluginProviderParameterInputController::~PluginProviderParameterInputController()
{
    delete m_view;
}

void PluginProviderParameterInputController::setParameter(const QString &providerName,
                                                          const ProviderParameter &parameter, bool hidden)
{
    delete m_view;
    if (!m_viewer)
        return;
    m_view = new InputView(parameter, providerName, m_hint, nullptr);
    if (hidden)
        m_view->hideText();
    connect(m_view, &InputView::back, this, &PluginProviderParameterInputController::needBack);
    connect(m_view, &InputView::next, this, &PluginProviderParameterInputController::needNext);
    m_viewer->addView(m_view, m_viewName);
}
