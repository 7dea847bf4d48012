// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QTest>

/// The real cash service in a process of its own, on a free port.
class ServiceProcess
{
public:
    explicit ServiceProcess(const QStringList &arguments = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(CASH_SERVICE_PROGRAM),
                        QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")} + arguments);
        constexpr int LIMIT = 60'000;
        while (!m_process.canReadLine() && m_process.waitForReadyRead(LIMIT)) {
        }
        m_url = QString::fromUtf8(m_process.readLine()).trimmed().section(QLatin1Char(' '), -1);
    }

    ~ServiceProcess()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    ServiceProcess(const ServiceProcess &) = delete;
    ServiceProcess &operator=(const ServiceProcess &) = delete;

    [[nodiscard]] QString url() const { return m_url; }
    /// Without the path.
    [[nodiscard]] std::string origin() const { return m_url.section(QLatin1Char('/'), 0, 2).toStdString(); }

private:
    QProcess m_process;
    QString m_url;
};
