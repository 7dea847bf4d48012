// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "control/socketname.h"
#include "extension/initconfig.h"
#include "scenario/scenario.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QTextStream>

namespace {
enum Status
{
    Held = 0,
    Failed = 1,
    Unusable = 2
};

int fail(Status status, const QString &text)
{
    QTextStream(stderr) << "kioskctl: " << text << '\n';
    return status;
}

/// @return the answer's line; empty where none came.
QByteArray ask(QLocalSocket &socket, const QString &line)
{
    socket.write(line.toUtf8() + '\n');
    // An "expect" takes as long as it was told to.
    while (!socket.canReadLine() && socket.waitForReadyRead(-1)) {
    }
    return socket.readLine();
}

int report(const QJsonObject &answer)
{
    const QString failure = answer.value(QStringLiteral("failure")).toString();
    const QString note = answer.value(QStringLiteral("note")).toString();
    if (!failure.isEmpty())
        return fail(Failed, failure);
    if (!note.isEmpty())
        QTextStream(stderr) << note << '\n';
    if (answer.contains(QStringLiteral("state")))
        QTextStream(stdout) << QJsonDocument(answer.value(QStringLiteral("state")).toObject()).toJson();
    return Held;
}
} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kioskctl"));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Does one step on a running terminal, or tells its state. Exit status: 0 the step held, 1 it "
                       "failed, 2 bad arguments or no terminal.\n\nSteps:\n  state\n  ") +
        kiosk::stepSyntaxes().join(QStringLiteral("\n  ")));
    const QCommandLineOption workDir(QStringLiteral("work-dir"),
                                     QStringLiteral("The terminal's work directory, unless TERMINAL_WORK_DIR tells."),
                                     QStringLiteral("DIR"), InitConfig::workDir());
    parser.addOption(workDir);
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("STEP"),
                                 QStringLiteral("The verb, with what it takes: press ok, expect '{screen: idle}'."));
    // A value may begin with a dash.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    if (!parser.parse(QCoreApplication::arguments()))
        return fail(Unusable, parser.errorText());
    if (parser.isSet(QStringLiteral("help")))
        parser.showHelp();
    const QStringList words = parser.positionalArguments();
    if (words.isEmpty())
        return fail(Unusable, QStringLiteral("which step? --help lists them"));

    const QString step = words.join(QLatin1Char(' '));
    if (step.contains(QLatin1Char('\n')))
        return fail(Unusable, QStringLiteral("a step is one line"));
    try {
        if (step != QLatin1String("state"))
            Q_UNUSED(kiosk::readStep(step, QStringLiteral("step")))
    } catch (const kiosk::ScenarioError &error) {
        return fail(Unusable, error.mistakes().join(QLatin1Char('\n')));
    }

    const QString socketName = kiosk::controlSocket(QDir(parser.value(workDir)).absolutePath());
    QLocalSocket socket;
    socket.connectToServer(socketName);
    if (!socket.waitForConnected())
        return fail(Unusable, QStringLiteral("no terminal at %1: %2. Start kiosk with this work directory (one that is "
                                             "starting answers once it is ready for customers), or give --work-dir, "
                                             "or set TERMINAL_WORK_DIR, to the one of a kiosk that runs.")
                                  .arg(socketName, socket.errorString()));
    const QByteArray answer = ask(socket, step);
    if (answer.isEmpty())
        return fail(Unusable, QStringLiteral("the terminal ended without an answer, and may have done the step or not. "
                                             "Start kiosk again, and look with kioskctl state."));
    return report(QJsonDocument::fromJson(answer).object());
}
