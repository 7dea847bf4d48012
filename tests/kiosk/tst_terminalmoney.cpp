// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "terminal.h"

#include "kiosk/terminalbench.h"

#include "support/disksyncs.h"
#include "support/testcase.h"

#include <QApplication>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>

using kiosk::Outcome;
using kiosk::Terminal;
using Screen = Terminal::Screen;

namespace {
/// Changes the ledger's file behind the terminal's back.
void runInLedger(const char *sql)
{
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        other.setDatabaseName(TerminalBench::ledgerPath());
        other.open();
        other.exec(QLatin1String(sql));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
}
} // namespace

/// What is due, what is paid in, and what becomes of it when the payment ends. The commit has a test of its own.
class TerminalMoneyTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void needShowPayDetail_onTheForm_showsWhatIsDue()
    {
        TerminalBench bench;
        bench.showDetails();
        QCOMPARE(bench->screen(), Screen::Details);
        QCOMPARE(bench->purchase().due().toString(), QStringLiteral("150.00"));
        QVERIFY(bench->acceptsCash());
        QVERIFY(!bench->canPay());
        QVERIFY(bench->canCancel());
    }

    void needShowPayDetail_again_showsTheNewSum()
    {
        TerminalBench bench;
        bench.showDetails();
        bench.takeCash("100");
        bench.fill("SummToPay", QStringLiteral("80.00"));
        bench.signal("needShowPayDetail");
        QCOMPARE(bench->purchase().due().toString(), QStringLiteral("80.00"));
        QCOMPARE(bench->purchase().cash().toString(), QStringLiteral("100.00"));
        QCOMPARE(bench->purchase().change().toString(), QStringLiteral("20.00"));
    }

    void pay_whileTheDetailsAreNotTopmost_isRefused()
    {
        TerminalBench bench;
        bench.showDetails();
        bench.takeCash("150");
        QVERIFY(bench->canPay());
        bench.form()->addView(new QWidget, QStringLiteral("checking"));
        QVERIFY(!bench->canPay());
        QVERIFY(!bench->pay().isEmpty());
        QVERIFY(!bench->isCommitting());
        bench.form()->showPayDetail();
        QVERIFY(bench->canPay());
        FormViewer question(nullptr, false, bench.form());
        question.show();
        QVERIFY(!bench->canPay());
        question.hide();
        QCOMPARE(bench->pay(), QString());
    }

    void cash_onTheDetails_isInTheLedgerWhenItIsShown()
    {
        TerminalBench bench;
        bench.showDetails();
        QSignalSpy changed(&bench.terminal(), &Terminal::purchaseChanged);
        QString inLedger;
        bool isOnTheDisk = false;
        const int before = DiskSyncs::count();
        QObject::connect(&bench.terminal(), &Terminal::purchaseChanged, &bench.terminal(), [&] {
            inLedger = bench.latest().cash.toString();
            isOnTheDisk = DiskSyncs::count() > before;
        });
        QCOMPARE(bench.takeCash("100"), QString());
        QCOMPARE(changed.count(), 1);
        QVERIFY(isOnTheDisk);
        QCOMPARE(inLedger, QStringLiteral("100.00"));
        QCOMPARE(bench.latest().cardNumber, QStringLiteral("000123456"));
        QCOMPARE(bench.latest().parkingSession, QStringLiteral("77"));
        QCOMPARE(bench.takeCash("100"), QString());
        QCOMPARE(bench->entries().size(), 1);
        QCOMPARE(bench->purchase().change().toString(), QStringLiteral("50.00"));
        QVERIFY(bench->canPay());
        QVERIFY(!bench->canCancel());
    }

    void cash_thatIsNotTaken_leavesNoTrace_data()
    {
        QTest::addColumn<QString>("due");
        QTest::addColumn<QByteArray>("note");
        QTest::newRow("nothing due") << "0.00" << QByteArray("100");
        QTest::newRow("less than nothing due") << "-150.00" << QByteArray("100");
        QTest::newRow("no number due") << "n/a" << QByteArray("100");
        QTest::newRow("a note of nothing") << "150.00" << QByteArray("0");
        QTest::newRow("a note below nothing") << "150.00" << QByteArray("-100");
    }

    void cash_thatIsNotTaken_leavesNoTrace()
    {
        QFETCH(QString, due);
        QFETCH(QByteArray, note);
        TerminalBench bench;
        bench.showDetails(due);
        QVERIFY(!bench.takeCash(note.constData()).isEmpty());
        QVERIFY(bench->entries().isEmpty());
        QVERIFY(!bench->purchase().hasCash());
        QVERIFY(!bench->canPay());
        QVERIFY(bench->canCancel());
    }

    void cash_behindTheWholeSum_isRefused_data()
    {
        QTest::addColumn<QList<QByteArray>>("notes");
        QTest::newRow("exactly") << QList<QByteArray>{"100", "50"};
        QTest::newRow("with change") << QList<QByteArray>{"100", "100"};
    }

    void cash_behindTheWholeSum_isRefused()
    {
        QFETCH(QList<QByteArray>, notes);
        TerminalBench bench;
        bench.showDetails();
        for (const QByteArray &note : notes)
            QCOMPARE(bench.takeCash(note.constData()), QString());
        const QString paidIn = bench.latest().cash.toString();
        QVERIFY(!bench->acceptsCash());
        QVERIFY(!bench.takeCash("50").isEmpty());
        QCOMPARE(bench.latest().cash.toString(), paidIn);
        QVERIFY(bench->canPay());
    }

    void cash_thatTheLedgerCannotTake_isGivenBack()
    {
        TerminalBench bench;
        bench.showDetails();
        runInLedger("ALTER TABLE notes RENAME TO gone");
        QVERIFY(!bench.takeCash("100").isEmpty());
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
        QVERIFY(!bench->purchase().hasCash());
        runInLedger("ALTER TABLE gone RENAME TO notes");
        QCOMPARE(bench.takeCash("100"), QString());
    }

    void cancel_withoutMoney_asksThePlugin()
    {
        TerminalBench bench;
        bench->start();
        Q_UNUSED(bench.takeCalls());
        QCOMPARE(bench->cancel(), QString());
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("permitCancel")});
        QCOMPARE(bench->screen(), Screen::Form);
    }

    void cancel_ofAPluginWithoutAQuestion_endsThePayment_data()
    {
        QTest::addColumn<bool>("hasDetails");
        QTest::newRow("on the form") << false;
        QTest::newRow("on the details") << true;
    }

    void cancel_ofAPluginWithoutAQuestion_endsThePayment()
    {
        QFETCH(bool, hasDetails);
        TerminalBench bench({}, QStringLiteral(MUTED_PLUGIN_FILE));
        bench->start();
        if (hasDetails)
            bench.signal("needShowPayDetail");
        Q_UNUSED(bench.takeCalls());
        QCOMPARE(bench->cancel(), QString());
        QCOMPARE(bench->screen(), Screen::Idle);
        WAIT_FOR(bench.host().isRenewing(), false);
        QVERIFY(bench.takeCalls().contains(QStringLiteral("stop")));
        QVERIFY(bench->entries().isEmpty());
        const auto isOfTheQuestion = [](const LogLine &line) {
            return line.text.contains(QStringLiteral("permitCancel"));
        };
        QCOMPARE(MessageLog::takeIf(isOfTheQuestion).size(), 1);
    }

    void cancel_withMoney_isRefused()
    {
        TerminalBench bench;
        bench.showDetails();
        bench.takeCash("100");
        Q_UNUSED(bench.takeCalls());
        QVERIFY(!bench->cancel().isEmpty());
        QVERIFY(bench.takeCalls().isEmpty());
    }

    void end_withMoney_commitsAPart_data()
    {
        QTest::addColumn<QByteArray>("how");
        QTest::newRow("needCancel") << QByteArray("needCancel");
        QTest::newRow("inactivity") << QByteArray("inactivity");
        QTest::newRow("stop") << QByteArray("stop");
        QTest::newRow("quit") << QByteArray("quit");
    }

    void end_withMoney_commitsAPart()
    {
        QFETCH(QByteArray, how);
        TerminalBench bench(TerminalBench::inactivity(how == "inactivity" ? 1 : 3600));
        bench.showDetails();
        bench.takeCash("100");
        QSignalSpy quitReady(&bench.terminal(), &Terminal::quitReady);
        if (how == "needCancel")
            bench.signal("needCancel");
        else if (how == "stop")
            QCOMPARE(bench->stop(), QString());
        else if (how == "quit")
            QCOMPARE(bench->quit(), QString());
        QCOMPARE(quitReady.count(), 0);
        WAIT_FOR(bench.latest().outcome, Outcome::Confirmed);
        QCOMPARE(bench.latest().summ.toString(), QStringLiteral("100.00"));
        QCOMPARE(bench.latest().remainder.toString(), QStringLiteral("50.00"));
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCoreApplication::processEvents();
        QCOMPARE(bench->screen(), Screen::Receipt);
        QCOMPARE(kiosk::Ledger(TerminalBench::ledgerPath()).unseen().size(), 1);
        QCOMPARE(quitReady.count(), how == "quit" ? 1 : 0);
    }

    void start_afterACrash_showsWhatWasInProgress()
    {
        qint64 committing = 0;
        qint64 open = 0;
        {
            kiosk::Ledger ledger(TerminalBench::ledgerPath());
            kiosk::Purchase purchase;
            purchase.setDue(QStringLiteral("150.00"));
            committing = ledger.open(purchase, QString(), QString(), FixNumber(100, QStringLiteral("100")));
            purchase.add(FixNumber(100, QStringLiteral("100")));
            ledger.beginCommit(committing, purchase);
            open = ledger.open(purchase, QString(), QString(), FixNumber(100, QStringLiteral("50")));
        }
        {
            TerminalBench bench;
            QCOMPARE(bench->screen(), Screen::Receipt);
            QVERIFY(bench->receipt().isRecovered);
            QCOMPARE(bench->receipt().payment.uid, committing);
            QCOMPARE(bench.outcome(), Outcome::Unconfirmed);
            QCOMPARE(bench->closeReceipt(), QString());
            QCOMPARE(bench->screen(), Screen::Receipt);
            QCOMPARE(bench->receipt().payment.uid, open);
            QCOMPARE(bench.outcome(), Outcome::Interrupted);
            QCOMPARE(bench->receipt().payment.change.toString(), QStringLiteral("50.00"));
        }
        // The second one was not closed.
        TerminalBench bench;
        QCOMPARE(bench->receipt().payment.uid, open);
        QCOMPARE(bench->start(), QString());
        QCOMPARE(bench->screen(), Screen::Form);
        QVERIFY(!bench.takeCalls().contains(QStringLiteral("pay %1 100.00 0.00").arg(committing)));
    }

    void start_onARecoveredReceipt_doesNotCloseTheOthers()
    {
        QVector<qint64> uids;
        {
            kiosk::Ledger ledger(TerminalBench::ledgerPath());
            kiosk::Purchase purchase;
            purchase.setDue(QStringLiteral("150.00"));
            for (int i = 0; i < 2; ++i)
                uids.append(ledger.open(purchase, QString(), QString(), FixNumber(100, QStringLiteral("100"))));
        }
        TerminalBench bench;
        QCOMPARE(bench->receipt().payment.uid, uids.first());
        QVERIFY(!bench->start().isEmpty());
        QCOMPARE(bench->screen(), Screen::Receipt);
        QCOMPARE(bench->receipt().payment.uid, uids.last());
        const QVector<kiosk::LedgerEntry> unseen = kiosk::Ledger(TerminalBench::ledgerPath()).unseen();
        QCOMPARE(unseen.size(), 1);
        QCOMPARE(unseen.first().uid, uids.last());
        QCOMPARE(bench->start(), QString());
        QCOMPARE(bench->screen(), Screen::Form);
    }

    void receipt_closed_isNotShownAgain()
    {
        {
            TerminalBench bench;
            bench.showDetails();
            bench.takeCash("150");
            bench->pay();
            WAIT_FOR(bench->screen(), Screen::Receipt);
            bench->closeReceipt();
            QCOMPARE(bench->screen(), Screen::Idle);
        }
        const TerminalBench bench;
        QCOMPARE(bench->screen(), Screen::Idle);
    }
};

WIDGET_TEST_MAIN(TerminalMoneyTest)
#include "tst_terminalmoney.moc"
