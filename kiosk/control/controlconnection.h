// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/steprunner.h"

#include <QJsonObject>

class QLocalSocket;

namespace kiosk {
/// One program's conversation: its lines are answered in their order.
class ControlConnection : public QObject
{
    Q_OBJECT

public:
    /// @param socket becomes this object's; both go when it is closed.
    ControlConnection(const Stage &stage, QLocalSocket *socket, QObject *parent);

private:
    void takeLine();
    void answer(const QJsonObject &answer);

    Stage m_stage;
    StepRunner m_runner;
    QLocalSocket *m_socket;
    bool m_isRunning = false;
};
} // namespace kiosk
