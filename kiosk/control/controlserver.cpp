// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "control/controlserver.h"

#include "control/controlconnection.h"

#include <QLocalSocket>

namespace kiosk {
ControlServer::ControlServer(const Stage &stage, QObject *parent) : QObject(parent), m_stage(stage)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &ControlServer::accept);
}

QString ControlServer::listen(const QString &socketName)
{
    QLocalServer::removeServer(socketName);
    return m_server.listen(socketName) ? QString() : m_server.errorString();
}

void ControlServer::accept()
{
    while (QLocalSocket *const socket = m_server.nextPendingConnection())
        new ControlConnection(m_stage, socket, this);
}
} // namespace kiosk
