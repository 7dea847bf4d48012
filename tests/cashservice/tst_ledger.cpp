// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger.h"
#include "requests.h"
#include "support/disksyncs.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QFile>

#include <atomic>
#include <thread>

using cash::Registration;

namespace {
constexpr cash::Moment AT = 1'709'809'509;

cash::Payment payment(std::int64_t uin, cash::Hundredths amount = 100)
{
    cash::Payment result;
    result.request.operation = cash::Operation::ParkInfoPay;
    result.request.termId = "0042";
    result.request.sessionId = "004224140509067001";
    result.request.cardUid = Requests::DEMO_CARD;
    result.request.uin = uin;
    result.request.amount = amount;
    result.request.type = "partial";
    result.stayId = "stay";
    result.receivedAt = AT;
    result.answer = [](const cash::Stay &stay) { return "paid " + std::to_string(stay.paid); };
    return result;
}

std::string path(const char *name)
{
    return (WorkDirectory::path() + QLatin1Char('/') + QLatin1String(name)).toStdString();
}
} // namespace

/// Payments: recorded once, kept, and lost by nobody.
class LedgerTest : public TestCase
{
    Q_OBJECT

private:
    static QByteArray openingError(const std::string &file)
    {
        try {
            const cash::Ledger ledger(file);
        } catch (const cash::DatabaseError &error) {
            return error.what();
        }
        return QByteArray();
    }

private Q_SLOTS:
    void payment_registered_addsToItsStay()
    {
        cash::Ledger ledger(":memory:");
        QCOMPARE(qint64(ledger.stay("stay").paid), qint64(0));
        QVERIFY(!ledger.stay("stay").lastPayment);
        QCOMPARE(ledger.registerPayment(payment(1)).answer, std::string("paid 100"));
        QCOMPARE(ledger.registerPayment(payment(2, 50)).answer, std::string("paid 150"));
        QCOMPARE(qint64(ledger.stay("stay").paid), qint64(150));
        QCOMPARE(qint64(ledger.stay("stay").lastPayment.value_or(0)), qint64(AT));
        QCOMPARE(qint64(ledger.stay("other").paid), qint64(0));
    }

    void payment_again_isAnsweredAndKeptInTheLogOnlyOnceItIsRegistered()
    {
        cash::Ledger ledger(":memory:");
        QVERIFY(!ledger.registerAgain(payment(1).request, AT));
        QVERIFY(!ledger.registerAgain(payment(1, 7).request, AT));
        (void)ledger.registerPayment(payment(1));
        QVERIFY(ledger.conflicts().empty());
        const Registration again = ledger.registerAgain(payment(1).request, AT).value_or(Registration());
        QCOMPARE(again.outcome, Registration::Outcome::Repeated);
        QCOMPARE(again.answer, std::string("paid 100"));
        QVERIFY(ledger.conflicts().empty());
        QCOMPARE(ledger.registerAgain(payment(1, 7).request, AT).value_or(Registration()).outcome,
                 Registration::Outcome::OtherAmount);
        QCOMPARE(ledger.conflicts().size(), std::size_t(2));
    }

    void payment_thatDiffersUnderATakenKey_isAConflictWhateverDiffers_data()
    {
        QTest::addColumn<QByteArray>("cardUid");
        QTest::addColumn<int>("amount");
        QTest::addColumn<int>("outcome");
        const auto row = [](const char *name, const char *cardUid, int amount, Registration::Outcome outcome) {
            QTest::newRow(name) << QByteArray(cardUid) << amount << static_cast<int>(outcome);
        };
        row("nothing", Requests::DEMO_CARD, 100, Registration::Outcome::Repeated);
        row("amount", Requests::DEMO_CARD, 7, Registration::Outcome::OtherAmount);
        row("card", "07000010", 100, Registration::Outcome::OtherCard);
        row("card and amount", "07000010", 7, Registration::Outcome::OtherCardAndAmount);
    }

    void payment_thatDiffersUnderATakenKey_isAConflictWhateverDiffers()
    {
        QFETCH(const QByteArray, cardUid);
        QFETCH(const int, amount);
        QFETCH(const int, outcome);
        cash::Ledger ledger(":memory:");
        (void)ledger.registerPayment(payment(1));
        cash::Payment second = payment(1, amount);
        second.request.cardUid = cardUid.toStdString();
        const auto expected = static_cast<Registration::Outcome>(outcome);
        QCOMPARE(ledger.registerPayment(second).outcome, expected);
        QCOMPARE(ledger.registerAgain(second.request, AT).value_or(Registration()).outcome, expected);
        const std::vector<cash::LogRow> conflicts = ledger.conflicts();
        QCOMPARE(conflicts.size(), std::size_t(expected == Registration::Outcome::Repeated ? 0 : 3));
        for (std::size_t i = 1; i < conflicts.size(); ++i) {
            QCOMPARE(conflicts[i].outcome, cash::outcomeName(expected));
            QCOMPARE(conflicts[i].cardUid, cardUid.toStdString());
            QCOMPARE(qint64(conflicts[i].amount), qint64(amount));
        }
        QCOMPARE(ledger.payments().size(), std::size_t(1));
    }

    void file_openedAgain_holdsWhatWasRegistered()
    {
        const std::string file = path("kept.db");
        {
            cash::Ledger ledger(file);
            (void)ledger.registerPayment(payment(1));
            (void)ledger.registerPayment(payment(1, 7));
        }
        cash::Ledger ledger(file);
        QCOMPARE(ledger.payments().size(), std::size_t(1));
        QCOMPARE(ledger.conflicts().size(), std::size_t(2));
        QCOMPARE(qint64(ledger.stay("stay").paid), qint64(100));
        QCOMPARE(ledger.registerPayment(payment(1)).outcome, Registration::Outcome::Repeated);
        QCOMPARE(ledger.registerPayment(payment(1)).answer, std::string("paid 100"));
    }

    void payment_registered_hasReachedTheDisk()
    {
        cash::Ledger ledger(path("durable.db"));
        for (std::int64_t uin = 1; uin <= 5; ++uin) {
            const int before = DiskSyncs::count();
            (void)ledger.registerPayment(payment(uin));
            QVERIFY(DiskSyncs::count() > before);
        }
    }

    void file_written_hasAWriteAheadLog()
    {
        const std::string file = path("mode.db");
        const cash::Ledger ledger(file);
        cash::Database other(file);
        cash::Statement mode(other, "PRAGMA journal_mode");
        QVERIFY(mode.step());
        QCOMPARE(mode.text(0), std::string("wal"));
    }

    void file_thatCannotBeUsed_isRefusedAtOnce()
    {
        QVERIFY(!openingError(path("nowhere/ledger.db")).isEmpty());
        QVERIFY(!openingError(WorkDirectory::path().toStdString()).isEmpty());
        QFile file(QString::fromStdString(path("text.db")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(4096, 'x')) == 4096);
        file.close();
        QCOMPARE(openingError(path("text.db")), QByteArray("file is not a database"));
    }

    void file_ofAnotherService_isRefusedUntilThatEnds()
    {
        const std::string file = path("shared.db");
        {
            cash::Ledger ledger(file);
            QCOMPARE(openingError(file), QByteArray("another cash service uses it"));
            QCOMPARE(ledger.registerPayment(payment(1)).outcome, Registration::Outcome::Registered);
        }
        QCOMPARE(openingError(file), QByteArray());
    }

    void file_lockedByAnother_failsThePaymentAndRecordsNothing()
    {
        const std::string file = path("locked.db");
        cash::Ledger ledger(file, std::chrono::milliseconds(1));
        cash::Database other(file);
        other.run("BEGIN IMMEDIATE");
        QVERIFY_EXCEPTION_THROWN((void)ledger.registerPayment(payment(1)), cash::DatabaseError);
        other.run("ROLLBACK");
        QVERIFY(ledger.payments().empty());
        QCOMPARE(qint64(ledger.stay("stay").paid), qint64(0));
        QCOMPARE(ledger.registerPayment(payment(1)).outcome, Registration::Outcome::Registered);
    }

    void answer_thatThrows_recordsNothing()
    {
        cash::Ledger ledger(":memory:");
        cash::Payment bad = payment(1);
        bad.answer = [](const cash::Stay &) -> std::string { throw std::runtime_error("no answer"); };
        QVERIFY_EXCEPTION_THROWN((void)ledger.registerPayment(bad), cash::DatabaseError);
        QVERIFY(ledger.payments().empty());
        QCOMPARE(ledger.registerPayment(payment(1)).outcome, Registration::Outcome::Registered);
    }

    void registrations_ofManyThreads_areAllRecordedOnce()
    {
        constexpr int threads = 16;
        constexpr int each = 50;
        cash::Ledger ledger(path("many.db"));
        std::vector<std::thread> workers;
        std::atomic<int> registered = 0;
        for (int i = 0; i < threads; ++i) {
            workers.emplace_back([&ledger, &registered, i] {
                // Every payment is sent by two threads.
                for (int n = 0; n < each; ++n) {
                    const Registration result = ledger.registerPayment(payment(i / 2 * each + n));
                    registered += result.outcome == Registration::Outcome::Registered ? 1 : 0;
                }
            });
        }
        for (std::thread &worker : workers)
            worker.join();
        QCOMPARE(registered.load(), threads / 2 * each);
        QCOMPARE(int(ledger.payments().size()), threads / 2 * each);
        QCOMPARE(qint64(ledger.stay("stay").paid), qint64(threads / 2 * each * 100));
    }
};

TEST_MAIN(LedgerTest)
#include "tst_ledger.moc"
