// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QProcess>

/// A service on a free port of this machine that gives every request of an operation the same answer. It is a process
/// of its own, so that nothing of its work is counted, and it ends with the one that made it.
class ClientResponder
{
public:
    /// @throws std::runtime_error when the service does not come up.
    ClientResponder();
    ~ClientResponder();
    ClientResponder(const ClientResponder &) = delete;
    ClientResponder &operator=(const ClientResponder &) = delete;

    [[nodiscard]] quint16 port() const { return m_port; }
    /// Lets the terminal's settings name this service.
    void configure() const;

    /// The service itself, as the program's "--serve" runs it: prints its port, then answers until its parent is gone.
    [[nodiscard]] static int serve();

private:
    QProcess m_process;
    quint16 m_port = 0;
};
