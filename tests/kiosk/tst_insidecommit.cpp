// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/terminalbench.h"

#include "support/testcase.h"

#include <QApplication>
#include <QSignalSpy>

using kiosk::Outcome;
using kiosk::Terminal;
using Screen = Terminal::Screen;

namespace {
/// What stands between the plugin's being asked to register a payment and its return.
QStringList confirmation(const QStringList &calls)
{
    const int begin = calls.indexOf(calls.filter(QStringLiteral("pay ")).value(0));
    return calls.mid(begin + 1, calls.indexOf(QStringLiteral("returned")) - begin - 1);
}

const QString FORM = QStringLiteral("screen kiosk::Terminal::Screen::Form");

/// What the terminal has done since the last call, by its log: verbs that it refused, its end, and payments begun.
QStringList carriedOut()
{
    QStringList done;
    const QList<LogLine> lines = MessageLog::takeIf([](const LogLine &line) { return line.level == QtInfoMsg; });
    for (const LogLine &line : lines) {
        for (const QString &what : {QStringLiteral("pay: not now"), QStringLiteral("cancel: not now"),
                                    QStringLiteral("start: not now"), QStringLiteral("quit"), FORM}) {
            if (line.text.startsWith(what))
                done.append(what);
        }
    }
    return done;
}
} // namespace

/// What is done to the terminal while the plugin waits for the payee.
class InsideCommitTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    /// Each is done while the plugin waits for the payee, and again in pairs. The receipt waits for its customer.
    void verb_insideACommit_waitsUntilTheRowIsWritten_data()
    {
        QTest::addColumn<QByteArrayList>("verbs");
        QTest::addColumn<Screen>("screen");
        QTest::newRow("start") << QByteArrayList{"start"} << Screen::Form;
        QTest::newRow("stop") << QByteArrayList{"stop"} << Screen::Idle;
        QTest::newRow("pay") << QByteArrayList{"pay"} << Screen::Idle;
        QTest::newRow("cancel") << QByteArrayList{"cancel"} << Screen::Idle;
        QTest::newRow("quit") << QByteArrayList{"quit"} << Screen::Idle;
        QTest::newRow("stop and start") << QByteArrayList{"stop", "start"} << Screen::Form;
        QTest::newRow("start and start") << QByteArrayList{"start", "start"} << Screen::Form;
        QTest::newRow("start and stop") << QByteArrayList{"start", "stop"} << Screen::Idle;
        QTest::newRow("cancel and stop") << QByteArrayList{"cancel", "stop"} << Screen::Idle;
    }

    void verb_insideACommit_waitsUntilTheRowIsWritten()
    {
        QFETCH(QByteArrayList, verbs);
        QFETCH(Screen, screen);
        TerminalBench bench;
        QSignalSpy quitReady(&bench.terminal(), &Terminal::quitReady);
        bench.beginHeldCommit();
        bool wereTaken = true;
        QTimer::singleShot(50, &bench.terminal(), [&] {
            for (const QByteArray &verb : verbs) {
                QString refused;
                wereTaken =
                    QMetaObject::invokeMethod(&bench.terminal(), verb.constData(), Q_RETURN_ARG(QString, refused)) &&
                    refused.isEmpty() && wereTaken;
            }
            wereTaken = wereTaken && bench->isCommitting() && bench->screen() == Screen::Details &&
                        bench.latest().outcome == Outcome::Committing;
            bench.tellPlugin("letGo");
        });
        WAIT_FOR(bench->isCommitting(), false);
        QVERIFY(wereTaken);
        QCOMPARE(bench->screen(), Screen::Receipt);
        QCoreApplication::processEvents();
        QCOMPARE(bench->screen(), Screen::Receipt);
        QCOMPARE(kiosk::Ledger(TerminalBench::ledgerPath()).unseen().size(), 1);
        QCOMPARE(bench->closeReceipt(), QString());
        WAIT_FOR(bench.host().isRenewing(), false);
        QCOMPARE(bench->screen(), screen);
        QCOMPARE(quitReady.count(), verbs.contains("quit") ? 1 : 0);
        QCOMPARE(bench.latest().outcome, Outcome::Confirmed);
        QCOMPARE(bench->entries().size(), 1);
        QVERIFY(confirmation(bench.takeCalls()).isEmpty());
    }

    /// Each as often as it was given, behind the row; what the receipt is in the way of, behind the receipt. A stop
    /// takes back the starts before it.
    void verbs_insideACommit_areCarriedOutInTheirOrder_data()
    {
        QTest::addColumn<QByteArrayList>("verbs");
        QTest::addColumn<QStringList>("onTheReceipt");
        QTest::addColumn<QStringList>("behindIt");
        const QString pay = QStringLiteral("pay: not now");
        const QString cancel = QStringLiteral("cancel: not now");
        const QString start = QStringLiteral("start: not now");
        const QString quit = QStringLiteral("quit");
        QTest::newRow("one behind the other") << QByteArrayList{"cancel", "quit", "pay", "cancel"}
                                              << QStringList{cancel, quit, pay, cancel} << QStringList();
        QTest::newRow("twice") << QByteArrayList{"quit", "quit"} << QStringList{quit, quit} << QStringList();
        QTest::newRow("start before the others")
            << QByteArrayList{"start", "pay", "cancel"} << QStringList{pay, cancel} << QStringList{FORM};
        QTest::newRow("two starts") << QByteArrayList{"start", "start"} << QStringList() << QStringList{FORM, start};
        QTest::newRow("a start on each side of a stop")
            << QByteArrayList{"start", "stop", "start"} << QStringList() << QStringList{FORM};
        QTest::newRow("start and quit") << QByteArrayList{"start", "quit"} << QStringList{quit} << QStringList{start};
        QTest::newRow("quit and start") << QByteArrayList{"quit", "start"} << QStringList{quit} << QStringList{start};
        QTest::newRow("stop and quit") << QByteArrayList{"stop", "quit"} << QStringList{quit} << QStringList();
    }

    void verbs_insideACommit_areCarriedOutInTheirOrder()
    {
        QFETCH(QByteArrayList, verbs);
        TerminalBench bench;
        connect(&bench.terminal(), &Terminal::quitReady, &bench.terminal(),
                [&] { qInfo("%s", bench.latest().outcome == Outcome::Confirmed ? "quit" : "quit without a row"); });
        bench.beginHeldCommit();
        QStringList inside;
        QTimer::singleShot(50, &bench.terminal(), [&] {
            Q_UNUSED(carriedOut());
            for (const QByteArray &verb : verbs)
                QMetaObject::invokeMethod(&bench.terminal(), verb.constData());
            inside = carriedOut();
            bench.tellPlugin("letGo");
        });
        WAIT_FOR(bench->isCommitting(), false);
        QCOMPARE(inside, QStringList());
        QTEST(carriedOut(), "onTheReceipt");
        QCOMPARE(bench->closeReceipt(), QString());
        WAIT_FOR(bench.host().isRenewing(), false);
        QTEST(carriedOut(), "behindIt");
        // Nothing is left for later.
        Q_UNUSED(bench->stop());
        WAIT_FOR(bench.host().isRenewing(), false);
        QCOMPARE(carriedOut(), QStringList());
    }

    void verb_thatNeedsNoPlugin_insideACommit_isRefused()
    {
        TerminalBench bench;
        bench.beginHeldCommit();
        QString cash;
        QString receipt;
        QTimer::singleShot(50, &bench.terminal(), [&] {
            cash = bench.takeCash("100");
            receipt = bench->closeReceipt();
            bench.tellPlugin("letGo");
        });
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(!cash.isEmpty());
        QVERIFY(!receipt.isEmpty());
        QCOMPARE(bench->receipt().payment.cash.toString(), QStringLiteral("150.00"));
    }

    void formSignals_insideACommit_changeNothing()
    {
        TerminalBench bench;
        bench.beginHeldCommit("100");
        QTimer::singleShot(50, &bench.terminal(), [&] {
            bench.fill("SummToPay", QStringLiteral("1.00"));
            bench.signal("needShowPayDetail");
            bench.signal("needCancel");
            // Behind the queued needCancel.
            QTimer::singleShot(50, &bench.terminal(), [&] { bench.tellPlugin("letGo"); });
        });
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(bench->purchase().due().toString(), QStringLiteral("150.00"));
        QCOMPARE(bench.outcome(), Outcome::Confirmed);
        bench.signal("needCancel");
        bench.signal("needShowPayDetail");
        QCoreApplication::processEvents();
        QCOMPARE(bench->screen(), Screen::Receipt);
    }

    void card_insideACommit_reachesThePlugin()
    {
        TerminalBench bench;
        bench.beginHeldCommit();
        QTimer::singleShot(50, &bench.terminal(), [&] {
            bench->readCard({{QStringLiteral("id"), QStringLiteral("1")}});
            bench.tellPlugin("letGo");
        });
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(confirmation(bench.takeCalls()), QStringList{QStringLiteral("card 1")});
    }

    void inactivity_insideACommit_standsStill()
    {
        TerminalBench bench(TerminalBench::inactivity(1));
        bench.beginHeldCommit();
        QTimer::singleShot(2000, &bench.terminal(), [&] { bench.tellPlugin("letGo"); });
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(bench.outcome(), Outcome::Confirmed);
        QCOMPARE(bench->entries().size(), 1);
    }
};

WIDGET_TEST_MAIN(InsideCommitTest)
#include "tst_insidecommit.moc"
