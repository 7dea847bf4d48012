// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"
#include "support/zone.h"
#include "tariff.h"

using cash::Hundredths;
using cash::Moment;

namespace {
constexpr Moment ENTRY = 1'709'800'509;
const cash::Tariff TARIFF = {5000, 15 * cash::MINUTE, 50000};
} // namespace

/// Money, time and what a stay costs.
class TariffTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void charge_stay_followsTheTariff_data()
    {
        QTest::addColumn<qint64>("stay");
        QTest::addColumn<qint64>("charge");
        QTest::addColumn<qint64>("covered");
        const auto row = [](const char *name, Moment stay, Hundredths charge, Moment covered) {
            QTest::newRow(name) << qint64(stay) << qint64(charge) << qint64(covered);
        };
        const Moment free = 15 * cash::MINUTE;
        row("not entered yet", -60, 0, free);
        row("just entered", 0, 0, free);
        row("at the end of the free quarter", free, 0, free);
        row("a second later", free + 1, 5000, cash::HOUR);
        row("a second short of an hour", cash::HOUR - 1, 5000, cash::HOUR);
        row("an hour", cash::HOUR, 5000, cash::HOUR);
        row("a second more", cash::HOUR + 1, 10000, 2 * cash::HOUR);
        row("two hours and a half", 9000, 15000, 3 * cash::HOUR);
        row("nine hours", 9 * cash::HOUR, 45000, 9 * cash::HOUR);
        row("the tenth hour reaches the maximum", 9 * cash::HOUR + 1, 50000, cash::DAY);
        row("eleven hours", 11 * cash::HOUR, 50000, cash::DAY);
        row("a day", cash::DAY, 50000, cash::DAY);
        row("a second more than a day", cash::DAY + 1, 55000, cash::DAY + cash::HOUR);
        row("thirty hours", 30 * cash::HOUR, 80000, 30 * cash::HOUR);
        row("two days", 2 * cash::DAY, 100000, 2 * cash::DAY);
        row("a day and ten hours", cash::DAY + 10 * cash::HOUR, 100000, 2 * cash::DAY);
    }

    void charge_stay_followsTheTariff()
    {
        QFETCH(const qint64, stay);
        QFETCH(const qint64, charge);
        QFETCH(const qint64, covered);
        QCOMPARE(qint64(TARIFF.charge(ENTRY, ENTRY + stay)), charge);
        QCOMPARE(qint64(TARIFF.coveredByCharge(ENTRY, ENTRY + stay) - ENTRY), covered);
    }

    void coveredBy_paid_buysWholeHoursAndDays_data()
    {
        QTest::addColumn<qint64>("paid");
        QTest::addColumn<qint64>("covered");
        const auto row = [](const char *name, Hundredths paid, Moment covered) {
            QTest::newRow(name) << qint64(paid) << qint64(covered);
        };
        row("nothing", 0, 15 * cash::MINUTE);
        row("less than nothing", -5000, 15 * cash::MINUTE);
        row("less than an hour", 4999, 15 * cash::MINUTE);
        row("an hour", 5000, cash::HOUR);
        row("three hours", 15000, 3 * cash::HOUR);
        row("a cent short of a day", 49999, 9 * cash::HOUR);
        row("a day", 50000, cash::DAY);
        row("a day and an hour", 55000, cash::DAY + cash::HOUR);
        row("more than anybody stays", std::numeric_limits<Hundredths>::max(), 36'500 * cash::DAY);
    }

    void coveredBy_paid_buysWholeHoursAndDays()
    {
        QFETCH(const qint64, paid);
        QFETCH(const qint64, covered);
        QCOMPARE(qint64(TARIFF.coveredBy(ENTRY, paid) - ENTRY), covered);
    }

    void tariff_ofNothing_chargesNothing()
    {
        const cash::Tariff nothing;
        QCOMPARE(qint64(nothing.charge(ENTRY, ENTRY + cash::DAY)), qint64(0));
        QCOMPARE(qint64(nothing.coveredBy(ENTRY, 100) - ENTRY), qint64(36'500 * cash::DAY));
    }

    void charge_beyond64Bits_staysAtTheLimit()
    {
        const cash::Tariff dear = {std::numeric_limits<Hundredths>::max() / 2, 0,
                                   std::numeric_limits<Hundredths>::max()};
        QCOMPARE(qint64(dear.charge(ENTRY, ENTRY + 3 * cash::HOUR)), std::numeric_limits<qint64>::max());
    }

    void money_sums_stayAtTheLimits()
    {
        const Hundredths highest = std::numeric_limits<Hundredths>::max();
        const Hundredths lowest = std::numeric_limits<Hundredths>::min();
        QCOMPARE(qint64(cash::sum(highest, 1)), qint64(highest));
        QCOMPARE(qint64(cash::sum(lowest, -1)), qint64(lowest));
        QCOMPARE(qint64(cash::sum(15000, -5000)), qint64(10000));
        QCOMPARE(qint64(cash::difference(lowest, 1)), qint64(lowest));
        QCOMPARE(qint64(cash::difference(highest, -1)), qint64(highest));
        QCOMPARE(qint64(cash::difference(5000, 15000)), qint64(-10000));
    }

    void amount_text_isReadInHundredths_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<qint64>("amount");
        const auto row = [](const char *text, qint64 amount) { QTest::newRow(text) << QByteArray(text) << amount; };
        constexpr qint64 none = -1;
        row("50", 5000);
        row("50.5", 5050);
        row("50.00", 5000);
        row("0.05", 5);
        row("9999999999.99", 999999999999);
        row("12345678901", none);
        row("", none);
        row(".5", none);
        row("5.", none);
        row("5.001", none);
        row("-5", none);
        row("5,00", none);
        row("5.0x", none);
    }

    void amount_text_isReadInHundredths()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const qint64, amount);
        QCOMPARE(qint64(cash::amountFromText(text.toStdString()).value_or(-1)), amount);
    }

    void amount_rendered_hasTwoDecimals()
    {
        QCOMPARE(cash::amountToText(15000), std::string("150.00"));
        QCOMPARE(cash::amountToText(0), std::string("0.00"));
        QCOMPARE(cash::amountToText(-5), std::string("-0.05"));
        QCOMPARE(cash::amountToText(99), std::string("0.99"));
    }

    void duration_text_isReadInMilliseconds_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<qint64>("milliseconds");
        const auto row = [](const char *text, qint64 ms) { QTest::newRow(text) << QByteArray(text) << ms; };
        constexpr qint64 none = -1;
        row("2h30m", 9'000'000);
        row("1d6h", 108'000'000);
        row("500ms", 500);
        row("5s500ms", 5'500);
        row("0m", 0);
        row("30m2h", none);
        row("1h1h", none);
        row("5", none);
        row("m", none);
        row("", none);
        row("5 s", none);
        row("-5s", none);
        row("5x", none);
        row("9999999999s", none);
        row("36500d", 3'153'600'000'000);
        row("36499d24h1ms", none);
        row("36501d", none);
        row("999999999d999999999h", none);
    }

    void duration_text_isReadInMilliseconds()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const qint64, milliseconds);
        const auto duration = cash::durationFromText(text.toStdString());
        QCOMPARE(duration ? qint64(duration->count()) : qint64(-1), milliseconds);
    }

    void moment_text_isLocalTime()
    {
        const Zone zone("Europe/Moscow");
        constexpr Moment moment = 1'709'809'509;
        QCOMPARE(cash::localText(moment), std::string("2024-03-07T14:05:09"));
        QCOMPARE(qint64(cash::momentFromLocalText("2024-03-07T14:05:09").value_or(0)), qint64(moment));
        QVERIFY(cash::momentFromLocalText("2000-01-01T00:00:00"));
        QVERIFY(cash::momentFromLocalText("2099-12-31T23:59:59"));
        QVERIFY(!cash::momentFromLocalText("1999-12-31T23:59:59"));
        QVERIFY(!cash::momentFromLocalText("2100-01-01T00:00:00"));
        QVERIFY(!cash::momentFromLocalText("2024-03-07T14:05:09+03:00"));
        QVERIFY(!cash::momentFromLocalText("2023-02-29T14:05:09"));
        QVERIFY(!cash::momentFromLocalText("2024-03-07 14:05:09"));
    }

    void clock_stopped_staysWhereItIs()
    {
        const cash::Clock clock = cash::stoppedClock(ENTRY);
        QCOMPARE(qint64(clock()), qint64(ENTRY));
        const Moment before = cash::systemClock()();
        QVERIFY(before > ENTRY);
    }
};

TEST_MAIN(TariffTest)
#include "tst_tariff.moc"
