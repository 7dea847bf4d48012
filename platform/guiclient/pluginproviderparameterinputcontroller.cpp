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
    removeView();
}

void PluginProviderParameterInputController::setParameter(const QString &providerName,
                                                          const ProviderParameter &parameter, bool hidden)
{
    removeView();
    if (!m_viewer)
        return;
    m_view = new InputView(parameter, providerName, m_hint, nullptr);
    if (hidden)
        m_view->hideText();
    connect(m_view, &InputView::back, this, &PluginProviderParameterInputController::back);
    connect(m_view, &InputView::next, this, &PluginProviderParameterInputController::next);
    m_viewer->addView(m_view, m_viewName);
}

void PluginProviderParameterInputController::removeView()
{
    if (!m_view)
        return;
    if (m_viewer)
        m_viewer->removeView(m_view);
    m_view->disconnect(this);
    // Deleting a widget inside its own event is not for Qt to survive.
    if (m_isViewBusy)
        m_view->deleteLater();
    else
        delete m_view;
    m_view.clear();
    m_isViewBusy = false;
}

void PluginProviderParameterInputController::back()
{
    m_isViewBusy = true;
    const QPointer<PluginProviderParameterInputController> self(this);
    Q_EMIT needBack();
    if (self)
        m_isViewBusy = false;
}

void PluginProviderParameterInputController::next()
{
    m_isViewBusy = true;
    const QPointer<PluginProviderParameterInputController> self(this);
    Q_EMIT needNext(m_view->text());
    if (self)
        m_isViewBusy = false;
}
