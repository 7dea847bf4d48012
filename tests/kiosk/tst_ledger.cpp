// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger/ledger.h"

#include "purchase.h"

#include "support/disksyncs.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTextStream>

#include <functional>
#include <memory>
#include <utility>

using kiosk::Ledger;
using kiosk::LedgerEntry;
using kiosk::LedgerError;
using kiosk::Outcome;
using kiosk::Purchase;

namespace {
QString path()
{
    return WorkDirectory::path() + QStringLiteral("/ledger.db");
}

FixNumber amount(qint64 units)
{
    return {1, units};
}

FixNumber hundredths(const FixNumber &sum)
{
    return {100, sum.toString()};
}

Purchase purchaseOf(qint64 due)
{
    Purchase purchase;
    purchase.setDue(amount(due).toString());
    return purchase;
}

qint64 openPayment(Ledger &ledger, qint64 due, qint64 first)
{
    return ledger.open(purchaseOf(due), QStringLiteral("000123456"), QStringLiteral("77"), hundredths(amount(first)));
}

/// A payment of 150 with 200 paid in, begun to be committed.
qint64 beginPayment(Ledger &ledger)
{
    const qint64 uid = openPayment(ledger, 150, 100);
    ledger.addNote(uid, hundredths(amount(100)));
    Purchase purchase = purchaseOf(150);
    purchase.add(amount(200));
    ledger.beginCommit(uid, purchase);
    return uid;
}
} // namespace

class LedgerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void open_withTheFirstNote_isAnOpenPayment()
    {
        Ledger ledger(path());
        const qint64 uid = openPayment(ledger, 150, 100);
        const LedgerEntry entry = ledger.entry(uid);
        QCOMPARE(entry.uid, uid);
        QVERIFY(uid > 0);
        QCOMPARE(entry.outcome, Outcome::Open);
        QCOMPARE(entry.due.toString(), QStringLiteral("150.00"));
        QCOMPARE(entry.cash.toString(), QStringLiteral("100.00"));
        QCOMPARE(entry.cardNumber, QStringLiteral("000123456"));
        QCOMPARE(entry.parkingSession, QStringLiteral("77"));
        QVERIFY(qAbs(entry.created.secsTo(QDateTime::currentDateTime())) < 3600);
        QCOMPARE(entry.created.timeSpec(), Qt::LocalTime);
    }

    void commit_ofAPayment_keepsItsAmountsAndOutcome_data()
    {
        QTest::addColumn<Outcome>("outcome");
        QTest::newRow("confirmed") << Outcome::Confirmed;
        QTest::newRow("unconfirmed") << Outcome::Unconfirmed;
    }

    void commit_ofAPayment_keepsItsAmountsAndOutcome()
    {
        QFETCH(Outcome, outcome);
        Ledger ledger(path());
        const qint64 uid = beginPayment(ledger);
        QCOMPARE(ledger.entry(uid).outcome, Outcome::Committing);
        ledger.finishCommit(uid, outcome);
        const LedgerEntry entry = ledger.entry(uid);
        QCOMPARE(entry.outcome, outcome);
        QCOMPARE(entry.cash.toString(), QStringLiteral("200.00"));
        QCOMPARE(entry.summ.toString(), QStringLiteral("150.00"));
        QCOMPARE(entry.total.toString(), QStringLiteral("150.00"));
        QCOMPARE(entry.change.toString(), QStringLiteral("50.00"));
        QCOMPARE(entry.remainder.toString(), QStringLiteral("0.00"));
    }

    void commit_withoutTheWholeComission_leavesNothingOwedToThePayee()
    {
        Ledger ledger(path());
        const qint64 uid = openPayment(ledger, 150, 150);
        Purchase purchase(hundredths(amount(5)));
        purchase.setDue(QStringLiteral("150.00"));
        purchase.add(amount(150));
        ledger.beginCommit(uid, purchase);
        QCOMPARE(ledger.entry(uid).summ.toString(), QStringLiteral("150.00"));
        QCOMPARE(ledger.entry(uid).remainder.toString(), QStringLiteral("0.00"));
    }

    void opened_again_settlesWhatWasInProgress()
    {
        qint64 committing = 0;
        qint64 open = 0;
        qint64 confirmed = 0;
        {
            Ledger ledger(path());
            confirmed = beginPayment(ledger);
            ledger.finishCommit(confirmed, Outcome::Confirmed);
            committing = beginPayment(ledger);
            open = openPayment(ledger, 150, 100);
        }
        const Ledger ledger(path());
        QCOMPARE(ledger.entry(confirmed).outcome, Outcome::Confirmed);
        QCOMPARE(ledger.entry(committing).outcome, Outcome::Unconfirmed);
        QCOMPARE(ledger.entry(committing).change.toString(), QStringLiteral("50.00"));
        const LedgerEntry interrupted = ledger.entry(open);
        QCOMPARE(interrupted.outcome, Outcome::Interrupted);
        QCOMPARE(interrupted.change, interrupted.cash);
        QCOMPARE(interrupted.total.toString(), QStringLiteral("0.00"));
    }

    void unseen_untilTheReceiptIsClosed_holdsThePayment()
    {
        qint64 first = 0;
        qint64 second = 0;
        {
            Ledger ledger(path());
            first = beginPayment(ledger);
            second = beginPayment(ledger);
        }
        Ledger ledger(path());
        QCOMPARE(ledger.unseen().size(), 2);
        QCOMPARE(ledger.unseen().first().uid, first);
        ledger.closeReceipt(first);
        QCOMPARE(ledger.unseen().size(), 1);
        QCOMPARE(ledger.unseen().first().uid, second);
    }

    void latest_ofMany_beginsWithTheNewest()
    {
        Ledger ledger(path());
        for (int i = 0; i < 3; ++i)
            Q_UNUSED(openPayment(ledger, 150, 100));
        const QVector<LedgerEntry> latest = ledger.latest(2);
        QCOMPARE(latest.size(), 2);
        QVERIFY(latest.first().uid > latest.last().uid);
    }

    void entry_ofNoPayment_hasNoUid()
    {
        const Ledger ledger(path());
        QCOMPARE(ledger.entry(1).uid, 0);
        QVERIFY(ledger.latest(10).isEmpty());
    }

    /// What a call has written survives a power cut: it is on the disk before the call returns.
    void call_thatWrites_hasReachedTheDisk()
    {
        Ledger ledger(path());
        qint64 uid = 0;
        const Purchase purchase = purchaseOf(150);
        const std::pair<const char *, std::function<void()>> calls[] = {
            {"open", [&] { uid = openPayment(ledger, 150, 100); }},
            {"addNote", [&] { ledger.addNote(uid, hundredths(amount(50))); }},
            {"beginCommit", [&] { ledger.beginCommit(uid, purchase); }},
            {"finishCommit", [&] { ledger.finishCommit(uid, Outcome::Confirmed); }},
            {"closeReceipt", [&] { ledger.closeReceipt(uid); }},
        };
        for (const auto &[name, call] : calls) {
            const int before = DiskSyncs::count();
            call();
            QVERIFY2(DiskSyncs::count() > before, name);
        }
    }

    void file_thatIsNoDatabase_isAnError()
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(8192, 'x'));
        file.close();
        QVERIFY_EXCEPTION_THROWN(Ledger{path()}, LedgerError);
    }

    void note_thatCannotBeWritten_isAnErrorAndNoNote()
    {
        Ledger ledger(path());
        const qint64 uid = openPayment(ledger, 150, 100);
        {
            QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
            other.setDatabaseName(path());
            QVERIFY(other.open());
            other.exec(QStringLiteral("ALTER TABLE notes RENAME TO gone"));
            QVERIFY_EXCEPTION_THROWN(ledger.addNote(uid, amount(50)), LedgerError);
            QVERIFY_EXCEPTION_THROWN(openPayment(ledger, 150, 50), LedgerError);
            other.exec(QStringLiteral("ALTER TABLE gone RENAME TO notes"));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
        QCOMPARE(ledger.entry(uid).cash.toString(), QStringLiteral("100.00"));
        QCOMPARE(ledger.latest(10).size(), 1);
    }

    /// The writer is killed between any two of its steps, over and over on one file.
    void killed_atAnyMoment_hasEveryNoteThatWasAcknowledged()
    {
        qint64 highest = 0;
        for (int round = 0; round < 10; ++round) {
            const auto writer = ChildProcess::start("writer");
            QByteArray output;
            while (output.count('\n') < 3 + round) {
                QVERIFY2(writer->waitForReadyRead(), output.constData());
                output += writer->readAll();
            }
            writer->kill();
            QVERIFY(writer->waitForFinished());
            output += writer->readAll();
            const QList<QByteArray> steps = output.left(output.lastIndexOf('\n')).split('\n');

            const Ledger ledger(path());
            qint64 acknowledged = 0;
            for (const QByteArray &step : steps) {
                const QList<QByteArray> words = step.split(' ');
                const LedgerEntry entry = ledger.entry(words.at(1).toLongLong());
                QVERIFY2(entry.uid > highest, "a uid was used twice");
                QVERIFY(entry.cash >= amount(words.at(2).toLongLong()));
                QVERIFY(entry.outcome != Outcome::Open && entry.outcome != Outcome::Committing);
                if (words.at(0) == "confirmed")
                    QCOMPARE(entry.outcome, Outcome::Confirmed);
                acknowledged = qMax(acknowledged, entry.uid);
            }
            highest = ledger.latest(1).first().uid;
            QVERIFY(highest <= acknowledged + 1);
        }
    }
};

/// Takes money and commits it, for ever, and says each step when it is done.
TEST_CHILD(writer)
{
    QTextStream out(stdout);
    const auto say = [&out](const char *step, qint64 uid, int cash) {
        out << step << ' ' << uid << ' ' << cash << Qt::endl;
    };
    Ledger ledger(path());
    while (true) {
        const qint64 uid = openPayment(ledger, 150, 100);
        say("open", uid, 100);
        ledger.addNote(uid, hundredths(amount(50)));
        say("note", uid, 150);
        Purchase purchase = purchaseOf(150);
        purchase.add(amount(150));
        ledger.beginCommit(uid, purchase);
        say("committing", uid, 150);
        ledger.finishCommit(uid, Outcome::Confirmed);
        say("confirmed", uid, 150);
    }
}

TEST_MAIN(LedgerTest)
#include "tst_ledger.moc"
