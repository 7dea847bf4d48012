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
QString payCall(const QStringList &calls)
{
    return calls.filter(QStringLiteral("pay ")).join(QLatin1Char(';'));
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
        bench.beginHeldCommit();
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
