// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/zone.h"

#include <utility>

namespace {
ParkomatCardData card(const QString &id)
{
    ParkomatCardData data;
    data.setUid(QStringLiteral("305419896"));
    data.setId(id);
    return data;
}

Payment payment(qint64 hundredths)
{
    Payment pay(1187, QDateTime(QDate(2024, 3, 7), QTime(14, 6, 41)), 18156);
    pay.setSumm(FixNumber(100, hundredths));
    return pay;
}

QString elementText(const QString &xml, const QString &name)
{
    const QString start = QLatin1Char('<') + name + QLatin1Char('>');
    const int from = xml.indexOf(start) + start.size();
    return xml.mid(from, xml.indexOf(QStringLiteral("</"), from) - from);
}
} // namespace

/// The requests as values, and what each rendering draws afresh. The documents themselves are held by golden files.
class RequestsTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void parkingCheck_card_isGivenAndReplaced()
    {
        ParkingCheckRequest request(card(QStringLiteral("1")));
        QCOMPARE(request.card().id(), QStringLiteral("1"));
        request.setCard(card(QStringLiteral("2")));
        QCOMPARE(request.card().id(), QStringLiteral("2"));
    }

    void parkingCheck_equality_goesByCard()
    {
        const ParkingCheckRequest request(card(QStringLiteral("1")));
        QVERIFY(request == ParkingCheckRequest(card(QStringLiteral("1"))));
        QVERIFY(!(request != ParkingCheckRequest(card(QStringLiteral("1")))));
        QVERIFY(request != ParkingCheckRequest(card(QStringLiteral("2"))));
    }

    void parkingCheck_copyAndMove_keepTheCard()
    {
        ParkingCheckRequest request(card(QStringLiteral("1")));
        ParkingCheckRequest copy(request);
        QVERIFY(copy == request);
        const ParkingCheckRequest moved(std::move(copy));
        QVERIFY(moved == request);
        ParkingCheckRequest assigned(card(QStringLiteral("2")));
        assigned = std::move(request);
        QVERIFY(assigned == moved);
    }

    void parkInfoPay_fields_areGivenAndReplaced()
    {
        ParkInfoPayRequest request(card(QStringLiteral("1")), payment(15000), FixNumber(100, 14000));
        QCOMPARE(request.card().id(), QStringLiteral("1"));
        QVERIFY(request.pay() == payment(15000));
        QVERIFY(request.totalCharge() == FixNumber(100, 14000));
        request.setCard(card(QStringLiteral("2")));
        request.setPay(payment(1));
        request.setTotalCharge(FixNumber(100, 2));
        QCOMPARE(request.card().id(), QStringLiteral("2"));
        QVERIFY(request.pay() == payment(1));
        QVERIFY(request.totalCharge() == FixNumber(100, 2));
    }

    void parkInfoPay_equality_goesByAllThree()
    {
        const auto request = [](const QString &id, qint64 paid, qint64 charge) {
            return ParkInfoPayRequest(card(id), payment(paid), FixNumber(100, charge));
        };
        const QString id = QStringLiteral("1");
        QVERIFY(request(id, 2, 3) == request(id, 2, 3));
        QVERIFY(!(request(id, 2, 3) != request(id, 2, 3)));
        QVERIFY(request(id, 2, 3) != request(QStringLiteral("2"), 2, 3));
        QVERIFY(request(id, 2, 3) != request(id, 4, 3));
        QVERIFY(request(id, 2, 3) != request(id, 2, 4));
    }

    void parkInfoPay_copyAndMove_keepAllThree()
    {
        ParkInfoPayRequest request(card(QStringLiteral("1")), payment(2), FixNumber(100, 3));
        ParkInfoPayRequest copy(request);
        QVERIFY(copy == request);
        const ParkInfoPayRequest moved(std::move(copy));
        QVERIFY(moved == request);
        ParkInfoPayRequest assigned(card(QStringLiteral("2")), payment(1), FixNumber());
        assigned = std::move(request);
        QVERIFY(assigned == moved);
    }

    void toXml_aSecondLater_hasAnotherTimeAndSession()
    {
        const ParkingCheckRequest request(card(QStringLiteral("1")));
        const QDateTime now(QDate(2024, 3, 7), QTime(14, 5, 9));
        TestClock::freeze(now);
        const QString first = request.toXml();
        TestClock::freeze(now.addSecs(1));
        const QString second = request.toXml();
        MessageLog::drop();
        QCOMPARE(elementText(first, QStringLiteral("RequestTime")), QStringLiteral("2024-03-07T14:05:09+03:00"));
        QCOMPARE(elementText(second, QStringLiteral("RequestTime")), QStringLiteral("2024-03-07T14:05:10+03:00"));
        QVERIFY(elementText(first, QStringLiteral("SessionId")) != elementText(second, QStringLiteral("SessionId")));
    }

    void toXml_clockGoesOnMeanwhile_isOfTheFirstReading()
    {
        const QDateTime now(QDate(2024, 12, 31), QTime(23, 59, 50));
        QList<QDateTime> moments;
        for (int second = 0; second < 20; ++second)
            moments.append(now.addSecs(second));
        TestClock::play(moments);
        const QString xml = ParkingCheckRequest(card(QStringLiteral("1"))).toXml();
        QVERIFY(TestClock::readings() > 1);
        MessageLog::drop();
        QCOMPARE(elementText(xml, QStringLiteral("RequestTime")), QStringLiteral("2024-12-31T23:59:50+03:00"));
    }

    void type_totalAgainstCharge_isFullOrPartial_data()
    {
        QTest::addColumn<qint64>("paid");
        QTest::addColumn<FixNumber>("charge");
        QTest::addColumn<QString>("type");
        QTest::newRow("equal") << qint64(15000) << FixNumber(100, 15000) << "full";
        QTest::newRow("a hundredth less") << qint64(14999) << FixNumber(100, 15000) << "partial";
        QTest::newRow("a hundredth more") << qint64(15001) << FixNumber(100, 15000) << "full";
        QTest::newRow("equal at another scale") << qint64(15000) << FixNumber(10, 1500) << "full";
        QTest::newRow("a thousandth less") << qint64(15000) << FixNumber(1000, 150001) << "partial";
        QTest::newRow("nothing paid, nothing owed") << qint64(0) << FixNumber() << "full";
        QTest::newRow("nothing paid, credit") << qint64(0) << FixNumber(100, -1) << "full";
    }

    void type_totalAgainstCharge_isFullOrPartial()
    {
        QFETCH(qint64, paid);
        QFETCH(FixNumber, charge);
        QFETCH(QString, type);
        const QString xml = ParkInfoPayRequest(card(QStringLiteral("1")), payment(paid), charge).toXml();
        MessageLog::drop();
        QCOMPARE(elementText(xml, QStringLiteral("Type")), type);
        QCOMPARE(elementText(xml, QStringLiteral("Amount")), QString::number(paid));
    }

    void amount_commission_isPartOfTheTotal()
    {
        Payment pay = payment(10000);
        pay.setComission(FixNumber(100, 250), false, false);
        const QString xml = ParkInfoPayRequest(card(QStringLiteral("1")), pay, FixNumber(100, 10250)).toXml();
        MessageLog::drop();
        QCOMPARE(elementText(xml, QStringLiteral("Amount")), QStringLiteral("10250"));
        QCOMPARE(elementText(xml, QStringLiteral("Type")), QStringLiteral("full"));
    }
};

TEST_MAIN(RequestsTest)
#include "tst_requests.moc"
