// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "localmoment.h"
#include "parkomattimestamp.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/zone.h"

#include <array>
#include <thread>

/// Time stamps as they go to the cash service.
class ParkomatTimeStampTest : public TestCase
{
    Q_OBJECT

private:
    static QString offsetNow() { return ParkomatTimeStamp::offset(QDateTime::currentDateTime()); }

private Q_SLOTS:
    void offset_zone_isThatOfStandardTime_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QString>("offset");
        const QDateTime winter(QDate(2024, 1, 15), QTime(12, 0), Qt::UTC);
        const QDateTime summer(QDate(2024, 7, 15), QTime(12, 0), Qt::UTC);
        QTest::newRow("east") << QByteArray("Europe/Moscow") << winter << "+03:00";
        QTest::newRow("winter") << QByteArray("Europe/Berlin") << winter << "+01:00";
        QTest::newRow("summer time") << QByteArray("Europe/Berlin") << summer << "+01:00";
        QTest::newRow("half an hour") << QByteArray("Asia/Kolkata") << winter << "+05:30";
        QTest::newRow("quarter of an hour") << QByteArray("Asia/Kathmandu") << winter << "+05:45";
        QTest::newRow("west") << QByteArray("America/St_Johns") << summer << "-03:30";
        QTest::newRow("southern summer time") << QByteArray("Australia/Sydney") << winter << "+10:00";
        QTest::newRow("zero") << QByteArray("UTC") << winter << "";
        QTest::newRow("zero in summer time") << QByteArray("Europe/London") << summer << "";
        // Named otherwise by Qt; "UTC" is taken out of that name, too, and nothing else.
        QTest::newRow("rule in place of a name") << QByteArray("MSK-3") << winter << "MSK";
        QTest::newRow("rule with UTC twice in its name") << QByteArray("AUTCBUTC-3") << winter << "AB";
        QTest::newRow("unknown name") << QByteArray("Nowhere/Nothing") << winter << "";
    }

    void offset_zone_isThatOfStandardTime()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDateTime, now);
        QFETCH(QString, offset);
        const Zone inZone(zone);
        TestClock::freeze(now);
        QCOMPARE(offsetNow(), offset);
        QCOMPARE(offsetNow(), offset);
    }

    void offset_zoneChanged_isNoticedAtOnce()
    {
        TestClock::freeze(QDateTime(QDate(2024, 1, 15), QTime(12, 0), Qt::UTC));
        const Zone moscow("Europe/Moscow");
        QCOMPARE(offsetNow(), QStringLiteral("+03:00"));
        const Zone kolkata("Asia/Kolkata");
        QCOMPARE(offsetNow(), QStringLiteral("+05:30"));
    }

    void offset_severalThreads_allReadTheSame()
    {
        const Zone zone("Europe/Moscow");
        const QDateTime first(QDate(2024, 1, 15), QTime(12, 0), Qt::UTC);
        std::array<bool, 4> isRight = {};
        std::array<std::thread, 4> threads;
        for (std::size_t i = 0; i < threads.size(); ++i) {
            threads.at(i) = std::thread([&isRight, &first, i] {
                bool isEachRight = true;
                // Another quarter of an hour each time: the remembered text is replaced while others read it.
                for (int call = 0; call < 200; ++call)
                    isEachRight =
                        ParkomatTimeStamp::offset(first.addSecs(900 * call)) == QLatin1String("+03:00") && isEachRight;
                isRight.at(i) = isEachRight;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        for (const bool isThreadRight : isRight)
            QVERIFY(isThreadRight);
    }

    void localMoment_zoneChangedInTheEnvironmentAlone_isNoticed()
    {
        const Zone utc("UTC");
        TestClock::freeze(QDateTime(QDate(2024, 1, 15), QTime(22, 0), Qt::UTC));
        QCOMPARE(LocalMoment::now().time(), QTime(22, 0));
        qputenv("TZ", "Asia/Kolkata");
        const LocalMoment moment = LocalMoment::now();
        QCOMPARE(moment.date(), QDate(2024, 1, 16));
        QCOMPARE(moment.time(), QTime(3, 30));
    }

    void offset_ruleOfTheZoneChanged_isNoticedInTheNextQuarterOfAnHour()
    {
        // On 27 March 2011 at 02:00 the zone took what had been its summer time for its standard time.
        const Zone zone("Europe/Moscow");
        TestClock::freeze(QDateTime(QDate(2011, 3, 26), QTime(22, 59, 59), Qt::UTC));
        QCOMPARE(offsetNow(), QStringLiteral("+03:00"));
        TestClock::freeze(QDateTime(QDate(2011, 3, 26), QTime(23, 0, 0), Qt::UTC));
        QCOMPARE(offsetNow(), QStringLiteral("+04:00"));
    }

    void render_moment_isLocalTimeWithTheOffset()
    {
        const Zone zone("Europe/Moscow");
        const QString offset = QStringLiteral("+03:00");
        const QString expected = QStringLiteral("2024-03-07T14:05:09+03:00");
        const QTime withMilliseconds(14, 5, 9, 999);
        QCOMPARE(ParkomatTimeStamp::render(QDateTime(QDate(2024, 3, 7), withMilliseconds), offset), expected);
        QCOMPARE(ParkomatTimeStamp::render(QDateTime(QDate(2024, 3, 7), QTime(11, 5, 9), Qt::UTC), offset), expected);
        QCOMPARE(
            ParkomatTimeStamp::render(QDateTime(QDate(2024, 3, 7), QTime(16, 35, 9), Qt::OffsetFromUTC, 19800), offset),
            expected);
    }

    void render_noOffset_hasNoSuffix()
    {
        const Zone zone("UTC");
        QCOMPARE(ParkomatTimeStamp::render(QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)), QString()),
                 QStringLiteral("2024-03-07T14:05:09"));
    }

    void render_yearThatHasNoSuchForm_isTheOffsetAlone_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<QString>("text");
        QTest::newRow("last with that form") << 9999 << "9999-03-07T14:05:09+03:00";
        QTest::newRow("first beyond") << 10000 << "+03:00";
        QTest::newRow("far beyond") << 12000 << "+03:00";
        QTest::newRow("first of all") << 1 << "0001-03-07T14:05:09+03:00";
        QTest::newRow("before the first") << -5 << "+03:00";
    }

    void render_yearThatHasNoSuchForm_isTheOffsetAlone()
    {
        QFETCH(int, year);
        QFETCH(QString, text);
        const QDateTime moment(QDate(year, 3, 7), QTime(14, 5, 9));
        QVERIFY(moment.isValid());
        QCOMPARE(ParkomatTimeStamp::render(moment, QStringLiteral("+03:00")), text);
    }

    void render_invalidMoment_isTheOffsetAlone()
    {
        QCOMPARE(ParkomatTimeStamp::render(QDateTime(), QStringLiteral("+03:00")), QStringLiteral("+03:00"));
    }
};

TEST_MAIN(ParkomatTimeStampTest)
#include "tst_parkomattimestamp.moc"
