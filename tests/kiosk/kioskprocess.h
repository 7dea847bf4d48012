// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "control/socketname.h"

#include "support/workdirectory.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QProcess>

#include <csignal>

/// The kiosk program in the test's work directory, driven over its control socket. The test's target needs
/// KIOSK_PROGRAM.
class KioskProcess
{
public:
    explicit KioskProcess(const QStringList &arguments = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QStringLiteral(KIOSK_PROGRAM),
                        QStringList{QStringLiteral("--work-dir"), WorkDirectory::path()} + arguments);
    }
    ~KioskProcess() { kill(); }
    KioskProcess(const KioskProcess &) = delete;
    KioskProcess &operator=(const KioskProcess &) = delete;

    /// One exchange with the terminal, from its first moment on: "press: ok", "state". Empty when it has ended.
    [[nodiscard]] QJsonObject ask(const QByteArray &line)
    {
        const QDeadlineTimer limit(LIMIT);
        QLocalSocket socket;
        // The socket is there before the terminal looks at it, or not yet, or still from the one before.
        do {
            socket.connectToServer(kiosk::controlSocket(WorkDirectory::path()));
        } while (!socket.waitForConnected(100) && !m_process.waitForFinished(100) && !limit.hasExpired());
        socket.write(line + '\n');
        while (!socket.canReadLine() && socket.waitForReadyRead(LIMIT)) {
        }
        return QJsonDocument::fromJson(socket.readLine()).object();
    }
    /// @return why the step failed; empty: it held.
    [[nodiscard]] QString step(const QByteArray &line)
    {
        const QJsonObject answer = ask(line);
        return answer.isEmpty() ? QStringLiteral("no answer") : answer.value(QStringLiteral("failure")).toString();
    }
    [[nodiscard]] QJsonObject state() { return ask("state").value(QStringLiteral("state")).toObject(); }

    /// As a power cut ends it.
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(LIMIT);
    }
    void sendSignal(int signal) { ::kill(static_cast<pid_t>(m_process.processId()), signal); }
    /// @return the exit status, or -1 when it did not end by itself.
    [[nodiscard]] int finish()
    {
        const bool isOver = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(LIMIT);
        return isOver && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    /// The numbers of the processes that it has started, separated by blanks.
    [[nodiscard]] QByteArray children() const
    {
        QFile file(QStringLiteral("/proc/%1/task/%1/children").arg(m_process.processId()));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
    }
    /// Waits until the program has written the text.
    [[nodiscard]] bool says(const char *text)
    {
        QByteArray said;
        while (!said.contains(text)) {
            if (!m_process.bytesAvailable() && !m_process.waitForReadyRead(LIMIT))
                return false;
            said += m_process.readAll();
        }
        return true;
    }
    [[nodiscard]] QString output() { return QString::fromUtf8(m_process.readAll()); }

private:
    static constexpr int LIMIT = 60'000;

    QProcess m_process;
};
