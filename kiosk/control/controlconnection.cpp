// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "control/controlconnection.h"

#include "control/state.h"
#include "scenario/scenario.h"

#include <QJsonDocument>
#include <QLocalSocket>

namespace kiosk {
ControlConnection::ControlConnection(const Stage &stage, QLocalSocket *socket, QObject *parent)
    : QObject(parent), m_stage(stage), m_runner(stage), m_socket(socket)
{
    socket->setParent(this);
    connect(socket, &QLocalSocket::readyRead, this, &ControlConnection::takeLine);
    connect(socket, &QLocalSocket::disconnected, this, &QObject::deleteLater);
    connect(&m_runner, &StepRunner::finished, this, [this](const QString &failure, const QString &note) {
        answer({{QStringLiteral("failure"), failure}, {QStringLiteral("note"), note}});
    });
    takeLine();
}

void ControlConnection::takeLine()
{
    if (m_isRunning || !m_socket->canReadLine())
        return;
    m_isRunning = true;
    const QString line = QString::fromUtf8(m_socket->readLine()).trimmed();
    if (line == QLatin1String("state")) {
        answer({{QStringLiteral("failure"), QString()}, {QStringLiteral("state"), stateOf(m_stage)}});
        return;
    }
    try {
        m_runner.run(readStep(line, QStringLiteral("step")));
    } catch (const ScenarioError &error) {
        answer({{QStringLiteral("failure"), error.mistakes().join(QLatin1Char('\n'))}});
    }
}

void ControlConnection::answer(const QJsonObject &answer)
{
    m_socket->write(QJsonDocument(answer).toJson(QJsonDocument::Compact) + '\n');
    m_socket->flush();
    m_isRunning = false;
    // The next line may be there already.
    QMetaObject::invokeMethod(this, &ControlConnection::takeLine, Qt::QueuedConnection);
}
} // namespace kiosk
