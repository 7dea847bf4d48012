// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginproviderparameterinputcontroller.h"

#include "core/providerparameter.h"
#include "core/sessionmanager.h"
#include "guiclient/formviewer.h"

PluginProviderParameterInputController::PluginProviderParameterInputController(SessionManager *session,
                                                                               FormViewer *viewer,
                                                                               const QString &viewName,
                                                                               const QString &hint, QObject *parent)
    : QObject(parent), m_session(session), m_viewer(viewer),
      m_viewName(viewName.isEmpty() ? QStringLiteral("inputView") : viewName), m_hint(hint)
{}

PluginProviderParameterInputController::~PluginProviderParameterInputController()
{
    delete m_view;
}

void PluginProviderParameterInputController::setParameter(const QString & /*providerName*/,
                                                          const ProviderParameter & /*parameter*/, bool /*hidden*/)
{}
