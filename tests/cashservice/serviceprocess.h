// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "httpclient.h"

#include <QFileInfo>
#include <QProcess>
#include <QStringList>

#include <csignal>

#include <sys/resource.h>

/// The program itself, on a free port.
class ServiceProcess
{
public:
    explicit ServiceProcess(const QStringList &arguments = {})
    {
        m_process.start(QStringLiteral(CASH_SERVICE_PROGRAM),
                        QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")} + arguments);
        while (!m_process.canReadLine() && m_process.waitForReadyRead(LIMIT)) {
        }
        m_firstLine = m_process.readLine();
    }

    ~ServiceProcess() { kill(); }
    ServiceProcess(const ServiceProcess &) = delete;
    ServiceProcess &operator=(const ServiceProcess &) = delete;

    [[nodiscard]] QByteArray firstLine() const { return m_firstLine; }

    [[nodiscard]] int port() const
    {
        const QByteArray address = m_firstLine.mid(m_firstLine.lastIndexOf(':') + 1);
        return address.left(address.indexOf('/')).toInt();
    }

    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(LIMIT);
    }

    /// @return the exit status, or -1 when it did not end by itself.
    [[nodiscard]] int endBy(int signal)
    {
        ::kill(static_cast<pid_t>(m_process.processId()), signal);
        return m_process.waitForFinished(LIMIT) && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                                                                  : -1;
    }

    /// From now on it may open so many descriptors more than it has.
    [[nodiscard]] bool allowDescriptors(int more)
    {
        const QString open = QStringLiteral("/proc/%1/fd/%2").arg(m_process.processId());
        int limit = 0;
        for (; more > 0; ++limit)
            more -= QFileInfo(open.arg(limit)).isSymLink() ? 0 : 1;
        const rlimit limits = {static_cast<rlim_t>(limit), static_cast<rlim_t>(limit)};
        return prlimit(static_cast<pid_t>(m_process.processId()), RLIMIT_NOFILE, &limits, nullptr) == 0;
    }

    [[nodiscard]] QByteArray errors() { return m_process.readAllStandardError(); }

private:
    static constexpr int LIMIT = 60'000;

    QProcess m_process;
    QByteArray m_firstLine;
};
