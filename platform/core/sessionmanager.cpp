// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/sessionmanager.h"

SessionManager::SessionManager(QObject *parent) : SessionManager(nullptr, parent) {}

SessionManager::SessionManager(FormProject *project, QObject *parent) : QObject(parent), m_activeProject(project) {}

FormProject *SessionManager::activeProject() const
{
    return m_activeProject;
}

void SessionManager::setActiveProject(FormProject *project)
{
    m_activeProject = project;
}

QVariantMap SessionManager::pluginsData() const
{
    return m_pluginsData;
}

void SessionManager::setPluginsData(const QVariantMap &data)
{
    m_pluginsData = data;
}
