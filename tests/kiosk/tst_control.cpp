// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "control/controlserver.h"
#include "control/socketname.h"

#include "kiosk/terminalbench.h"

#include "support/testcase.h"

#include <QApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>

#include <sys/stat.h>
#include <unistd.h>

using kiosk::ControlServer;

namespace {
QString socketName()
{
    return kiosk::controlSocket(WorkDirectory::path());
}

struct Answer
{
    int status;
    QString out;
    QString err;
};

/// Runs kioskctl beside this process's own event loop, which is the terminal's.
Answer kioskctl(const QStringList &arguments, const QString &workDir = WorkDirectory::path())
{
    QProcess process;
    process.start(QStringLiteral(KIOSKCTL_PROGRAM), QStringList{QStringLiteral("--work-dir"), workDir} + arguments);
    waitUntil([&] { return process.state() == QProcess::NotRunning; });
    const int status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {status, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
} // namespace

class ControlTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void socket_listening_isItsOwnersAlone()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(socketName()).constData(), &status), 0);
        QVERIFY(S_ISSOCK(status.st_mode));
        QCOMPARE(status.st_mode & 0077U, 0U);
        QCOMPARE(status.st_uid, ::geteuid());
    }

    void socket_leftByADeadTerminal_isTakenOver()
    {
        TerminalBench bench;
        QVERIFY(QFile(socketName()).open(QIODevice::WriteOnly));
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        QCOMPARE(kioskctl({QStringLiteral("start")}).status, 0);
    }

    void socket_thatCannotBeMade_isTold()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QVERIFY(!server.listen(QStringLiteral("/nonexistent/kiosk.sock")).isEmpty());
        QVERIFY(!server.listen(WorkDirectory::path() + QLatin1Char('/') + QString(200, QLatin1Char('a'))).isEmpty());
    }

    void kioskctl_withAStep_doesItOnTheTerminal()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        QCOMPARE(kioskctl({QStringLiteral("start")}).status, 0);
        QCOMPARE(bench->screen(), TerminalBench::Screen::Form);
        QCOMPARE(kioskctl({QStringLiteral("card"), QStringLiteral("{id: '1: 2', cardId: -5}")}).status, 0);
        QVERIFY(bench.takeCalls().contains(QStringLiteral("card 1: 2")));
        QCOMPARE(kioskctl({QStringLiteral("press: ok")}).status, 1);
        QCOMPARE(kioskctl({QStringLiteral("stop")}).status, 0);
        QCOMPARE(kioskctl({QStringLiteral("expect"), QStringLiteral("{screen: idle}")}).status, 0);
    }

    void kioskctl_ofWhatDoesNotHold_tellsWhy()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        const Answer failed = kioskctl({QStringLiteral("expect"), QStringLiteral("{screen: receipt, within: 10}")});
        QCOMPARE(failed.status, 1);
        QVERIFY2(failed.err.contains(QStringLiteral("expected screen \"receipt\"; there was \"idle\"")),
                 qPrintable(failed.err));
        const Answer refused = kioskctl({QStringLiteral("stop")});
        QCOMPARE(refused.status, 0);
        QVERIFY2(refused.err.contains(QStringLiteral("stop: not now")), qPrintable(refused.err));
    }

    void kioskctl_withBadArguments_isUnusable_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *name, const QStringList &arguments, const char *reason) {
            QTest::newRow(name) << arguments << QString::fromLatin1(reason);
        };
        row("no step", {}, "which step?");
        row("unknown step", {QStringLiteral("fly")}, "step:1:1: there is no step \"fly\"");
        row("unknown button", {QStringLiteral("press"), QStringLiteral("up")}, "step:1:8: \"up\" is none of");
        row("two lines", {QStringLiteral("type"), QStringLiteral("a\nb")}, "a step is one line");
        row("unknown option", {QStringLiteral("--fly"), QStringLiteral("start")}, "fly");
    }

    void kioskctl_withBadArguments_isUnusable()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, reason);
        const Answer answer = kioskctl(arguments);
        QCOMPARE(answer.status, 2);
        QVERIFY2(answer.err.contains(reason), qPrintable(answer.err));
    }

    /// There never was one, it has ended, or it is about to.
    void kioskctl_withoutATerminal_isUnusableAndSaysWhatToDo_data()
    {
        QTest::addColumn<QByteArray>("terminal");
        QTest::addColumn<QString>("reason");
        const QString none = QStringLiteral("kioskctl: no terminal at %1: ").arg(socketName());
        QTest::newRow("never was") << QByteArray() << none;
        QTest::newRow("killed") << QByteArray("killed") << none;
        QTest::newRow("ends instead of an answer")
            << QByteArray("ends")
            << "kioskctl: the terminal ended without an answer, and may have done the step or not";
    }

    void kioskctl_withoutATerminal_isUnusableAndSaysWhatToDo()
    {
        QFETCH(QByteArray, terminal);
        QFETCH(QString, reason);
        QLocalServer server;
        if (!terminal.isEmpty())
            QVERIFY(server.listen(socketName()));
        connect(&server, &QLocalServer::newConnection, &server, [&] {
            QLocalSocket *const socket = server.nextPendingConnection();
            connect(socket, &QLocalSocket::readyRead, socket, &QLocalSocket::close);
        });
        if (terminal == "killed") {
            // Its file stays.
            const QString aside = socketName() + QLatin1Char('~');
            QVERIFY(QFile::rename(socketName(), aside));
            server.close();
            QVERIFY(QFile::rename(aside, socketName()));
        }
        const Answer answer = kioskctl({QStringLiteral("start")});
        QCOMPARE(QFile::exists(socketName()), !terminal.isEmpty());
        QCOMPARE(answer.status, 2);
        QVERIFY2(answer.err.startsWith(reason) && answer.err.contains(QStringLiteral("Start kiosk")),
                 qPrintable(answer.err));
        QCOMPARE(answer.out, QString());
    }

    void state_ofThePayment_isPrintedAsJson()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        const auto state = [] {
            const Answer answer = kioskctl({QStringLiteral("state")});
            return QJsonValue(QJsonDocument::fromJson(answer.out.toUtf8()).object());
        };
        QJsonValue seen = state();
        QCOMPARE(seen[QStringLiteral("screen")].toString(), QStringLiteral("idle"));
        QVERIFY(seen[QStringLiteral("payment")].toObject().isEmpty());
        bench.showDetails();
        bench.takeCash("200");
        seen = state();
        QCOMPARE(seen[QStringLiteral("screen")].toString(), QStringLiteral("details"));
        QCOMPARE(seen[QStringLiteral("parameters")][QStringLiteral("SummToPay")].toString(), QStringLiteral("150.00"));
        QCOMPARE(seen[QStringLiteral("purchase")][QStringLiteral("change")].toString(), QStringLiteral("50.00"));
        QVERIFY(seen[QStringLiteral("text")].toString().contains(QStringLiteral("150.00")));
        bench->pay();
        WAIT_FOR(bench->screen(), TerminalBench::Screen::Receipt);
        QCOMPARE(state()[QStringLiteral("payment")][QStringLiteral("outcome")].toString(), QStringLiteral("confirmed"));
    }

    void lines_sentAllAtOnce_areAnsweredInTheirOrder()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        QLocalSocket socket;
        socket.connectToServer(socketName());
        socket.write("start\nwait: 50\nexpect: {screen: idle, within: 0}\nfly\nstate\n");
        QList<QByteArray> answers;
        waitUntil([&] {
            while (socket.canReadLine())
                answers.append(socket.readLine());
            return answers.size() == 5;
        });
        QCOMPARE(answers.size(), 5);
        const auto failure = [&](int index) {
            return QJsonDocument::fromJson(answers.at(index)).object().value(QStringLiteral("failure")).toString();
        };
        QCOMPARE(failure(0), QString());
        QCOMPARE(failure(1), QString());
        QVERIFY(failure(2).contains(QStringLiteral("expected screen")));
        QVERIFY(failure(3).contains(QStringLiteral("there is no step \"fly\"")));
        QVERIFY(answers.at(4).contains("\"screen\":\"waiting\""));
    }

    void connection_closedInTheMiddle_leavesTheTerminalAlone()
    {
        TerminalBench bench;
        ControlServer server(bench.stage());
        QCOMPARE(server.listen(socketName()), QString());
        {
            QLocalSocket socket;
            socket.connectToServer(socketName());
            socket.write("expect: {screen: receipt, within: 100000}\nstart\n");
            QVERIFY(socket.waitForBytesWritten());
            WAIT_FOR(server.findChildren<QLocalSocket *>().size(), 1);
        }
        WAIT_FOR(server.findChildren<QLocalSocket *>().size(), 0);
        QCOMPARE(kioskctl({QStringLiteral("expect"), QStringLiteral("{screen: idle}")}).status, 0);
    }
};

WIDGET_TEST_MAIN(ControlTest)
#include "tst_control.moc"
