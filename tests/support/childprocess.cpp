// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/childprocess.h"

#include <QCoreApplication>
#include <QHash>

namespace {
const char CHILD[] = "--child";
// What some do takes a second on a machine of one's own, and minutes on a busy one.
constexpr int LIMIT_MS = 240'000;

QHash<QString, ChildProcess::Function> &functions()
{
    static QHash<QString, ChildProcess::Function> registered;
    return registered;
}
} // namespace

ChildProcess::Registration::Registration(const char *name, Function function)
{
    functions().insert(QLatin1String(name), function);
}

std::unique_ptr<QProcess> ChildProcess::start(const char *name, const QStringList &arguments,
                                              const QProcessEnvironment &environment)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment);
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(QCoreApplication::applicationFilePath(),
                   QStringList{QLatin1String(CHILD), QLatin1String(name)} + arguments);
    return process;
}

int ChildProcess::finish(QProcess &process)
{
    return process.waitForFinished(LIMIT_MS) && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QByteArray ChildProcess::killAfterLines(QProcess &process, int lines)
{
    QByteArray said;
    while (said.count('\n') < lines && process.waitForReadyRead(LIMIT_MS))
        said += process.readAll();
    process.kill();
    process.waitForFinished(LIMIT_MS);
    return said + process.readAll();
}

bool ChildProcess::isChild()
{
    return QCoreApplication::arguments().value(1) == QLatin1String(CHILD);
}

int ChildProcess::runChild()
{
    const QStringList arguments = QCoreApplication::arguments();
    const Function function = functions().value(arguments.value(2));
    if (function == nullptr)
        qFatal("there is no child function %s", qPrintable(arguments.value(2)));
    return function(arguments.mid(3));
}
