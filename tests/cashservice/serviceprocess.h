// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "httpclient.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>

#include <algorithm>
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

    [[nodiscard]] int threads() const { return entries(QStringLiteral("task")).size(); }

    /// How many connections it has open.
    [[nodiscard]] int connections() const
    {
        const QFileInfoList open = entries(QStringLiteral("fd"));
        const auto isSocket = [](const QFileInfo &file) {
            return file.symLinkTarget().contains(QLatin1String("socket:"));
        };
        // But for the one that it listens on.
        return static_cast<int>(std::count_if(open.cbegin(), open.cend(), isSocket)) - 1;
    }

    /// From now on it may open so many descriptors more than it has.
    [[nodiscard]] bool allowDescriptors(int more) const
    {
        const QString open = QStringLiteral("/proc/%1/fd/%2").arg(m_process.processId());
        int limit = 0;
        for (; more > 0; ++limit)
            more -= QFileInfo(open.arg(limit)).isSymLink() ? 0 : 1;
        return limitDescriptors(static_cast<rlim_t>(limit));
    }
    /// As many as the system lets it.
    [[nodiscard]] bool allowAllDescriptors() const { return limitDescriptors(RLIM_INFINITY); }

    [[nodiscard]] QByteArray errors() { return m_process.readAllStandardError(); }

private:
    static constexpr int LIMIT = 60'000;

    /// @param most at most as many as the system lets it.
    [[nodiscard]] bool limitDescriptors(rlim_t most) const
    {
        const auto pid = static_cast<pid_t>(m_process.processId());
        rlimit limits = {};
        if (prlimit(pid, RLIMIT_NOFILE, nullptr, &limits) != 0)
            return false;
        limits.rlim_cur = std::min(most, limits.rlim_max);
        return prlimit(pid, RLIMIT_NOFILE, &limits, nullptr) == 0;
    }

    /// @param what a folder of its own in /proc.
    [[nodiscard]] QFileInfoList entries(const QString &what) const
    {
        return QDir(QStringLiteral("/proc/%1/%2").arg(m_process.processId()).arg(what))
            .entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    }

    QProcess m_process;
    QByteArray m_firstLine;
};
