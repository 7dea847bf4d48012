// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"
#include "kiosk/terminalbench.h"

#include "support/testcase.h"
#include "support/testclock.h"

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>

using kiosk::LedgerEntry;
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

QString payCall(const QStringList &calls)
{
    return calls.filter(QStringLiteral("pay ")).join(QLatin1Char(';'));
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

/// What becomes of a payment once it is to be committed.
class CommitTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void outcome_ofWhatThePluginDoes_isConfirmedOnlyWhenSeen_data()
    {
        QTest::addColumn<QString>("confirmation");
        QTest::addColumn<Outcome>("outcome");
        QTest::newRow("takes its message off") << "taken off" << Outcome::Confirmed;
        QTest::newRow("takes its message off and returns at once") << "taken off at once" << Outcome::Confirmed;
        QTest::newRow("leaves its message up") << "left up" << Outcome::Unconfirmed;
        QTest::newRow("puts up another message") << "replaced" << Outcome::Unconfirmed;
        QTest::newRow("puts up another message later") << "another behind it" << Outcome::Unconfirmed;
        QTest::newRow("lets its message run out") << "closed by itself" << Outcome::Unconfirmed;
        QTest::newRow("shows no message") << "no message" << Outcome::Unconfirmed;
        QTest::newRow("returns too late") << "late" << Outcome::Unconfirmed;
    }

    void outcome_ofWhatThePluginDoes_isConfirmedOnlyWhenSeen()
    {
        QFETCH(QString, confirmation);
        QFETCH(Outcome, outcome);
        if (confirmation == QLatin1String("late"))
            TerminalAppSettings().setOnlineCheckTimeout(1);
        TerminalBench bench;
        bench.plan("confirmation", confirmation);
        bench.showDetails();
        bench.takeCash("150");
        QCOMPARE(bench->pay(), QString());
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(bench.outcome(), outcome);
        QCOMPARE(bench.latest().outcome, outcome);
        QVERIFY(!bench->receipt().isRecovered);
    }

    void commit_ofNothingDueAnyMore_owesTheCashAndAsksNobody_data()
    {
        QTest::addColumn<QString>("due");
        QTest::newRow("zero") << "0.00";
        QTest::newRow("no number") << "n/a";
    }

    void commit_ofNothingDueAnyMore_owesTheCashAndAsksNobody()
    {
        QFETCH(QString, due);
        kiosk::TerminalOptions options;
        options.comission = FixNumber(100, QStringLiteral("5.00"));
        TerminalBench bench(options);
        bench.showDetails();
        bench.takeCash("100");
        bench.fill("SummToPay", due);
        bench.signal("needShowPayDetail");
        bench.signal("needCancel");
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(payCall(bench.takeCalls()), QString());
        for (const LedgerEntry &entry : {bench.latest(), bench->receipt().payment}) {
            QCOMPARE(entry.outcome, Outcome::Confirmed);
            QCOMPARE(entry.total.toString(), QStringLiteral("0.00"));
            QCOMPARE(entry.change.toString(), QStringLiteral("100.00"));
            QCOMPARE(entry.remainder.toString(), QStringLiteral("0.00"));
        }
    }

    void timeLimit_inSeconds_isCutTo16Bits_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<Outcome>("outcome");
        QTest::newRow("below zero") << -1 << Outcome::Confirmed;
        QTest::newRow("2^16 and 1") << 65537 << Outcome::Unconfirmed;
    }

    void timeLimit_inSeconds_isCutTo16Bits()
    {
        QFETCH(int, seconds);
        TerminalAppSettings().setOnlineCheckTimeout(seconds);
        TerminalBench bench;
        // More than a second.
        bench.plan("confirmation", QStringLiteral("late"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QTEST(bench.outcome(), "outcome");
    }

    /// A clock that is set inside the commit says nothing of how long it took.
    void timeLimit_whileTheClockIsSet_isMeasuredAllTheSame_data()
    {
        QTest::addColumn<int>("setBySeconds");
        QTest::addColumn<int>("takesSeconds");
        QTest::addColumn<Outcome>("outcome");
        QTest::newRow("forward, within the limit") << 7200 << 0 << Outcome::Confirmed;
        QTest::newRow("back, within the limit") << -7200 << 0 << Outcome::Confirmed;
        QTest::newRow("forward, behind the limit") << 7200 << 3600 << Outcome::Unconfirmed;
        QTest::newRow("back, behind the limit") << -7200 << 3600 << Outcome::Unconfirmed;
    }

    void timeLimit_whileTheClockIsSet_isMeasuredAllTheSame()
    {
        QFETCH(int, setBySeconds);
        QFETCH(int, takesSeconds);
        TerminalAppSettings().setOnlineCheckTimeout(3600);
        TerminalBench bench;
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
        QTimer::singleShot(50, &bench.terminal(), [&] {
            TestClock::freeze(QDateTime::currentDateTime().addSecs(setBySeconds));
            TestClock::skip(1000 * takesSeconds);
            bench.tellPlugin("letGo");
        });
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QTEST(bench.outcome(), "outcome");
    }

    /// Whom nobody tells of the payment cannot confirm it. Nor does he owe an answer to it.
    void plugin_thatWantsNoPartInTheCommit_isNotAsked()
    {
        kiosk::TerminalOptions options;
        options.keepPlugin = true;
        TerminalBench bench(options);
        bench.plan("confirmation", QStringLiteral("not wanted"));
        bench.showDetails();
        bench.takeCash("200");
        bench->pay();
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(payCall(bench.takeCalls()), QString());
        QCOMPARE(bench.latest().outcome, Outcome::Unconfirmed);
        QCOMPARE(bench.latest().total.toString(), QStringLiteral("150.00"));
        QCOMPARE(bench.latest().change.toString(), QStringLiteral("50.00"));

        bench.plan("confirmation", QStringLiteral("taken off"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(bench.latest().outcome, Outcome::Confirmed);
    }

    /// What takes the second message off may be the answer to the first payment.
    void outcome_behindAnUnconfirmedPayment_isUnconfirmedUntilThePluginIsNew_data()
    {
        QTest::addColumn<bool>("isKept");
        QTest::addColumn<Outcome>("outcome");
        QTest::newRow("kept") << true << Outcome::Unconfirmed;
        QTest::newRow("made anew") << false << Outcome::Confirmed;
    }

    void outcome_behindAnUnconfirmedPayment_isUnconfirmedUntilThePluginIsNew()
    {
        QFETCH(bool, isKept);
        QFETCH(Outcome, outcome);
        kiosk::TerminalOptions options;
        options.keepPlugin = isKept;
        TerminalBench bench(options);
        for (const char *confirmation : {"left up", "taken off"}) {
            bench.plan("confirmation", QLatin1String(confirmation));
            bench->start();
            WAIT_FOR(bench->screen(), Screen::Form);
            bench.showDetails();
            bench.takeCash("150");
            bench->pay();
            WAIT_FOR(bench->screen(), Screen::Receipt);
            QCOMPARE(bench.latest().outcome, confirmation == QByteArray("left up") ? Outcome::Unconfirmed : outcome);
        }
    }

    /// What takes the commit's message off may be the end of what the plugin was at.
    void outcome_behindAMessageWithoutAButton_isUnconfirmed_data()
    {
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("stop") << QByteArray("stop");
        QTest::newRow("quit") << QByteArray("quit");
        QTest::newRow("inactivity") << QByteArray();
    }

    void outcome_behindAMessageWithoutAButton_isUnconfirmed()
    {
        QFETCH(QByteArray, end);
        TerminalBench bench(TerminalBench::inactivity(1));
        bench.showDetails();
        bench.takeCash("150");
        auto *const checking = new QLabel(QStringLiteral("…"));
        checking->setObjectName(QStringLiteral("messageText"));
        bench.form()->addView(checking, QStringLiteral("checking"));
        if (!end.isEmpty())
            QMetaObject::invokeMethod(&bench.terminal(), end.constData());
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(bench.outcome(), Outcome::Unconfirmed);
        QCOMPARE(bench.latest().outcome, Outcome::Unconfirmed);
    }

    /// The root object is gone: before the plugin is asked, or while it is.
    void plugin_thatDiesInACommit_isMadeAnewForTheNextCustomer_data()
    {
        QTest::addColumn<bool>("diesBefore");
        QTest::addColumn<bool>("isKept");
        QTest::newRow("while it is asked") << false << false;
        QTest::newRow("while it is asked, kept") << false << true;
        QTest::newRow("before it is asked") << true << false;
    }

    void plugin_thatDiesInACommit_isMadeAnewForTheNextCustomer()
    {
        QFETCH(bool, diesBefore);
        QFETCH(bool, isKept);
        kiosk::TerminalOptions options;
        options.keepPlugin = isKept;
        TerminalBench bench(options);
        bench.plan("confirmation", QStringLiteral("dies"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
        if (diesBefore)
            delete bench.host().root();
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(bench.host().root() == nullptr);
        QCOMPARE(bench.latest().outcome, Outcome::Unconfirmed);
        QCOMPARE(bench->closeReceipt(), QString());
        QCOMPARE(bench->start(), QString());
        WAIT_FOR(bench->screen(), Screen::Form);
        QVERIFY(bench.host().root() != nullptr);
    }

    void payment_handedToThePlugin_hasTheLedgersNumberAndAmounts()
    {
        kiosk::TerminalOptions options;
        options.comission = FixNumber(100, QStringLiteral("5.00"));
        TerminalBench bench(options);
        bench.showDetails();
        bench.takeCash("200");
        bench->pay();
        WAIT_FOR(bench->screen(), Screen::Receipt);
        const qint64 first = bench->receipt().payment.uid;
        QCOMPARE(payCall(bench.takeCalls()), QStringLiteral("pay %1 150.00 5.00").arg(first));
        QCOMPARE(bench->receipt().payment.total.toString(), QStringLiteral("155.00"));
        QCOMPARE(bench->receipt().payment.change.toString(), QStringLiteral("45.00"));
        QVERIFY(!bench->purchase().isNothingDue());

        bench->start();
        WAIT_FOR(bench->screen(), Screen::Form);
        QVERIFY(bench->purchase().isNothingDue());
        QVERIFY(!bench->purchase().hasCash());
        bench.showDetails();
        bench.takeCash("50");
        bench->pay();
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(bench->receipt().payment.uid > first);
        QCOMPARE(bench->receipt().payment.remainder.toString(), QStringLiteral("100.00"));
    }

    void pay_accepted_isCommittingBeforeThePluginIsAsked()
    {
        TerminalBench bench;
        bench.showDetails();
        bench.takeCash("150");
        Q_UNUSED(bench.takeCalls());
        QSignalSpy committing(&bench.terminal(), &Terminal::committingChanged);
        bench->pay();
        QVERIFY(bench->isCommitting());
        QCOMPARE(bench.latest().outcome, Outcome::Committing);
        QCOMPARE(bench.outcome(), Outcome::Committing);
        QVERIFY(bench.takeCalls().isEmpty());
        QVERIFY(!bench->acceptsCash());
        WAIT_FOR(bench->isCommitting(), false);
        QCOMPARE(committing.count(), 2);
    }

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
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
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
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
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
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
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
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("100");
        bench->pay();
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
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
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
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bench->pay();
        QTimer::singleShot(2000, &bench.terminal(), [&] { bench.tellPlugin("letGo"); });
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(bench.outcome(), Outcome::Confirmed);
        QCOMPARE(bench->entries().size(), 1);
    }

    void needCancel_ofAnEndedPayment_doesNotReachTheNext()
    {
        TerminalBench bench;
        bench->start();
        bench.signal("needCancel");
        // Queued, and not yet delivered.
        bench->stop();
        bench->start();
        WAIT_FOR(bench->screen(), Screen::Form);
        QCoreApplication::processEvents();
        QCOMPARE(bench->screen(), Screen::Form);
    }
};

WIDGET_TEST_MAIN(CommitTest)
#include "tst_commit.moc"
