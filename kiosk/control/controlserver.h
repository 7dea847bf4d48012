// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/steprunner.h"

#include <QLocalServer>

namespace kiosk {
/// Lets other programs of the terminal's own user do steps, over a local socket that nobody else can open.
class ControlServer : public QObject
{
    Q_OBJECT

public:
    explicit ControlServer(const Stage &stage, QObject *parent = nullptr);

    /// Takes the socket over, also from a terminal that died. To be called by who has the work directory for itself.
    /// @return why it does not work; empty: it does.
    [[nodiscard]] QString listen(const QString &socketName);

private:
    void accept();

    Stage m_stage;
    QLocalServer m_server;
};
} // namespace kiosk
