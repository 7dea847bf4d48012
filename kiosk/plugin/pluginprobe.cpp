// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugin/pluginprobe.h"

#include "kiosklog.h"
#include "plugin/pluginhost.h"

#include <QEventLoop>
#include <QProcess>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <cstring>

#include <sys/prctl.h>
#include <unistd.h>

namespace kiosk {
namespace {
// What stands before the child's report, among what the plugin itself may print. A plugin that can be used is reported
// with no reason behind it.
const char REPORT[] = "plugin-probe: ";

/// Ends with the terminal, however that ends: a plugin that hangs is not left behind.
class ProbeProcess : public QProcess
{
protected:
    void setupChildProcess() override
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        // It may be too late for that.
        if (::getppid() != m_terminal)
            ::_exit(1);
    }

private:
    const pid_t m_terminal = ::getpid();
};

/// Waits for the end of the process; events are handled meanwhile.
/// @return why it was not waited for any longer; empty: it has ended.
QString waitForEnd(QProcess &process, std::chrono::milliseconds patience)
{
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop, &QEventLoop::quit);
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    limit.start(patience);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    if (process.state() == QProcess::NotRunning)
        return {};
    return limit.isActive() ? QStringLiteral("Терминал выключают, проверка плагина прервана")
                            : QStringLiteral("Плагин не загрузился за %1 мс").arg(patience.count());
}

/// How a child that reported nothing ended.
QString deathOf(const QProcess &process)
{
    const QString how = process.exitStatus() == QProcess::CrashExit
                            ? QStringLiteral("сигнал %1, %2")
                                  .arg(process.exitCode())
                                  .arg(QString::fromLocal8Bit(strsignal(process.exitCode())))
                            : QStringLiteral("код %1").arg(process.exitCode());
    return QStringLiteral("Плагин завершил программу при загрузке (%1)").arg(how);
}
} // namespace

QString PluginProbe::run(const QString &pluginFile) const
{
    ProbeProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // No window of the child flashes up, and no screen is needed.
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments + QStringList{pluginFile});
    if (!process.waitForStarted())
        return QStringLiteral("Плагин нечем проверить: ") + process.errorString();
    const QString reason = waitForEnd(process, patience);
    if (!reason.isEmpty()) {
        process.kill();
        process.waitForFinished();
        return reason;
    }
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(REPORT))
            return QString::fromUtf8(line.mid(static_cast<int>(std::strlen(REPORT))));
    }
    qCInfo(KIOSK_LOG).noquote() << "the plugin's last words:" << process.readAllStandardError();
    return deathOf(process);
}

int PluginProbe::runInChild(const QString &pluginFile)
{
    PluginHost host(pluginFile);
    host.load();
    // One line, whatever the loader says.
    const QByteArray reason = host.brokenReason().simplified().toUtf8();
    std::printf("\n%s%s\n", REPORT, reason.constData());
    std::fflush(stdout);
    return reason.isEmpty() ? 0 : 1;
}
} // namespace kiosk
