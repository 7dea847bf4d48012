// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/sessionmanager.h"

SessionManager::SessionManager(QObject *parent) : SessionManager(nullptr, parent) {}

SessionManager::SessionManager(FormProject *project, QObject *parent) : QObject(parent), m_activeProject(project) {}
