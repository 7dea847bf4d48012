// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/fulldisk.h"
#include "kiosk/ordinaryuser.h"
#include "kiosk/terminalbench.h"
#include "ledger/ledger.h"
#include "purchase.h"

#include "support/messagelog.h"
#include "support/testcase.h"

#include <QApplication>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <algorithm>

#include <sys/stat.h>

using kiosk::Ledger;
using kiosk::LedgerBacklog;
using kiosk::LedgerEntry;
using kiosk::LedgerError;
using kiosk::Outcome;
using kiosk::Purchase;
using Screen = kiosk::Terminal::Screen;

namespace {
/// Another program is in the middle of what it does to the ledger while it lives.
class SecondProgram
{
public:
    explicit SecondProgram(const QStringList &statements)
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), NAME);
        other.setDatabaseName(TerminalBench::ledgerPath());
        m_isAtIt = other.open() && std::all_of(statements.begin(), statements.end(), [&](const QString &statement) {
                       return QSqlQuery(other).exec(statement);
                   });
    }
    ~SecondProgram()
    {
        QSqlDatabase::database(NAME).exec(QStringLiteral("ROLLBACK"));
        QSqlDatabase::database(NAME).close();
        QSqlDatabase::removeDatabase(NAME);
    }
    SecondProgram(const SecondProgram &) = delete;
    SecondProgram &operator=(const SecondProgram &) = delete;

    [[nodiscard]] bool isAtIt() const { return m_isAtIt; }

private:
    const QString NAME = QStringLiteral("second program");
    bool m_isAtIt = false;
};

/// A payment of 150 with 150 paid in, begun to be committed.
qint64 beginPayment(Ledger &ledger)
{
    Purchase purchase;
    purchase.setDue(QStringLiteral("150.00"));
    purchase.add(FixNumber(1, 150));
    const qint64 uid = ledger.open(purchase, {}, {}, purchase.cash());
    ledger.beginCommit(uid, purchase);
    return uid;
}

/// The payment's outcome as another program finds it in the file.
Outcome written(const TerminalBench &bench)
{
    return bench.latest().outcome;
}

/// A customer whose payment of 150 the plugin confirms when the disk has become full.
std::unique_ptr<FullDisk> confirmOnAFullDisk(TerminalBench &bench)
{
    bench.beginHeldCommit();
    std::unique_ptr<FullDisk> disk;
    QTimer::singleShot(50, &bench.terminal(), [&] {
        disk = std::make_unique<FullDisk>();
        bench.tellPlugin("letGo");
    });
    waitUntil([&] { return bench->screen() == Screen::Receipt; });
    return disk;
}
} // namespace

/// Disks that are full or read-only, and a second program in the ledger's file: nothing is half written, nothing that
/// has happened is lost, and it is said.
class LedgerFaultsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void ledger_thatMayNotBeWritten_cannotBeOpened_data()
    {
        QTest::addColumn<bool>("isThere");
        QTest::addColumn<int>("mode");
        QTest::newRow("no file, read-only folder") << false << 0555;
        QTest::newRow("read-only file, read-only folder") << true << 0555;
        QTest::newRow("read-only file") << true << 0777;
    }

    void ledger_thatMayNotBeWritten_cannotBeOpened()
    {
        QFETCH(bool, isThere);
        QFETCH(int, mode);
        const QString path = TerminalBench::ledgerPath();
        if (isThere) {
            Q_UNUSED(Ledger(path).latest(1));
            QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0444), 0);
        }
        const QByteArray folder = QFile::encodeName(WorkDirectory::path());
        QCOMPARE(::chmod(folder.constData(), static_cast<mode_t>(mode)), 0);
        bool isRefused = false;
        try {
            const OrdinaryUser user;
            const Ledger ledger(path);
        } catch (const LedgerError &) {
            isRefused = true;
        }
        QCOMPARE(::chmod(folder.constData(), 0700), 0);
        QVERIFY(isRefused);
    }

    void call_onAFullDisk_isAnErrorAndChangesNothing()
    {
        Ledger ledger(TerminalBench::ledgerPath());
        const qint64 uid = beginPayment(ledger);
        Purchase other;
        other.setDue(QStringLiteral("20.00"));
        other.add(FixNumber(1, 50));
        {
            const FullDisk disk;
            QVERIFY_EXCEPTION_THROWN(Q_UNUSED(ledger.open(other, {}, {}, other.cash())), LedgerError);
            QVERIFY_EXCEPTION_THROWN(ledger.addNote(uid, FixNumber(100, 5000)), LedgerError);
            QVERIFY_EXCEPTION_THROWN(ledger.beginCommit(uid, other), LedgerError);
            QVERIFY_EXCEPTION_THROWN(ledger.finishCommit(uid, Outcome::Confirmed), LedgerError);
            QVERIFY_EXCEPTION_THROWN(ledger.closeReceipt(uid), LedgerError);
        }
        const QVector<LedgerEntry> entries = ledger.latest(10);
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries.first().outcome, Outcome::Committing);
        QCOMPARE(entries.first().cash.toString(), QStringLiteral("150.00"));
        QCOMPARE(entries.first().due.toString(), QStringLiteral("150.00"));
        QCOMPARE(entries.first().change.toString(), QStringLiteral("0.00"));
        QCOMPARE(ledger.unseen().size(), 1);
        ledger.finishCommit(uid, Outcome::Confirmed);
        QCOMPARE(ledger.entry(uid).outcome, Outcome::Confirmed);
    }

    void call_whileASecondProgramWrites_isAnErrorAndChangesNothing()
    {
        Ledger ledger(TerminalBench::ledgerPath());
        const qint64 uid = beginPayment(ledger);
        {
            const SecondProgram writer({QStringLiteral("BEGIN IMMEDIATE")});
            QVERIFY(writer.isAtIt());
            QVERIFY_EXCEPTION_THROWN(ledger.finishCommit(uid, Outcome::Confirmed), LedgerError);
        }
        QCOMPARE(ledger.entry(uid).outcome, Outcome::Committing);
        ledger.finishCommit(uid, Outcome::Confirmed);
        QCOMPARE(ledger.entry(uid).outcome, Outcome::Confirmed);
    }

    /// Somebody copies the ledger: no note has to be given back for that, no outcome waits.
    void call_whileASecondProgramReads_isWrittenAtOnce()
    {
        Ledger ledger(TerminalBench::ledgerPath());
        const qint64 uid = beginPayment(ledger);
        const SecondProgram reader({QStringLiteral("BEGIN"), QStringLiteral("SELECT * FROM payments")});
        QVERIFY(reader.isAtIt());
        ledger.addNote(uid, FixNumber(100, 5000));
        ledger.finishCommit(uid, Outcome::Confirmed);
        QCOMPARE(ledger.entry(uid).cash.toString(), QStringLiteral("200.00"));
        QCOMPARE(ledger.entry(uid).outcome, Outcome::Confirmed);
    }

    void outcome_onAFullDisk_isWrittenWhenThereIsRoom_data()
    {
        QTest::addColumn<QByteArray>("occasion");
        QTest::newRow("by and by") << QByteArray();
        QTest::newRow("before the next payment") << QByteArray("start");
        QTest::newRow("when the service menu opens") << QByteArray("openService");
        QTest::newRow("before the program ends") << QByteArray("quit");
    }

    void outcome_onAFullDisk_isWrittenWhenThereIsRoom()
    {
        QFETCH(QByteArray, occasion);
        TerminalBench bench;
        std::unique_ptr<FullDisk> disk = confirmOnAFullDisk(bench);
        // What is known is said; the file has it when it can.
        QCOMPARE(bench.outcome(), Outcome::Confirmed);
        QCOMPARE(written(bench), Outcome::Committing);
        QVERIFY(!bench->ledgerFault().isEmpty());
        bench->closeReceipt();
        WAIT_FOR(bench->screen(), Screen::Idle);
        WAIT_FOR(bench.host().isRenewing(), false);
        letPass(3 * LedgerBacklog::RETRY_AFTER / std::chrono::milliseconds(1));
        const QStringList faults = TerminalBench::takeLines(QtCriticalMsg);
        QCOMPARE(faults.size(), 1);
        QVERIFY2(faults.first().startsWith(QStringLiteral("the ledger is not written, and is tried again: ")),
                 qPrintable(faults.first()));

        disk.reset();
        if (occasion.isEmpty())
            letPass(LedgerBacklog::RETRY_AFTER / std::chrono::milliseconds(1));
        else if (occasion == "start")
            bench->start();
        else if (occasion == "openService")
            bench->openService();
        else
            bench->quit();
        QCOMPARE(written(bench), Outcome::Confirmed);
        QCOMPARE(bench->ledgerFault(), QString());
        QCOMPARE(TerminalBench::takeLines(QtWarningMsg), QStringList{QStringLiteral("the ledger is written again")});
        // The receipt that was closed meanwhile is seen.
        QVERIFY(Ledger(TerminalBench::ledgerPath()).unseen().isEmpty());
    }

    void outcome_thatWasNeverWritten_isUnconfirmedAtTheNextStart()
    {
        {
            TerminalBench bench;
            const std::unique_ptr<FullDisk> disk = confirmOnAFullDisk(bench);
            bench->quit();
            QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
        }
        const Ledger ledger(TerminalBench::ledgerPath());
        QCOMPARE(ledger.unseen().size(), 1);
        QCOMPARE(ledger.latest(1).first().outcome, Outcome::Unconfirmed);
    }

    void commit_onAFullDisk_doesNotReachThePlugin()
    {
        TerminalBench bench;
        bench.showDetails();
        bench.takeCash("150");
        Q_UNUSED(bench.takeCalls());
        {
            const FullDisk disk;
            QVERIFY(!bench->pay().isEmpty());
        }
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
        QCOMPARE(bench->screen(), Screen::Details);
        QVERIFY(bench.takeCalls().isEmpty());
        QCOMPARE(written(bench), Outcome::Open);
        QCOMPARE(bench->pay(), QString());
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QCOMPARE(written(bench), Outcome::Confirmed);
    }

    void note_onAFullDisk_isGivenBack()
    {
        TerminalBench bench;
        bench.showDetails();
        {
            const FullDisk disk;
            QVERIFY(!bench.takeCash("100").isEmpty());
        }
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
        QVERIFY(!bench->purchase().hasCash());
        QVERIFY(bench->entries().isEmpty());
    }
};

WIDGET_TEST_MAIN(LedgerFaultsTest)
#include "tst_ledgerfaults.moc"
