// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientprobe.h"
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "support/cashservice.h"
#include "support/testcase.h"

#include <QNetworkReply>

namespace {
/// As the card reader gives it, by the UID in decimal.
ParkomatCardData card(const QString &uid)
{
    return ParkomatCardData(QVariant(QVariantMap{{QStringLiteral("id"), uid},
                                                 {QStringLiteral("cardId"), QStringLiteral("0000123456")},
                                                 {QStringLiteral("pdata"), QString(32, QLatin1Char('0'))}}));
}

const QString DEMO_CARD = QStringLiteral("305419896");
const QString BLOCKED_CARD = QStringLiteral("268435460");

ParkInfoPayRequest payment(const QString &uid, qint64 hundredths)
{
    Payment pay(70001, QDateTime::currentDateTime(), 18156);
    pay.setSumm(FixNumber(100, hundredths));
    return ParkInfoPayRequest(card(uid), pay, FixNumber(100, qint64(15'000)));
}

/// Without the session's identifier, which nobody can know beforehand.
QString withoutSession(const QString &seen)
{
    const QStringList words = seen.split(QLatin1Char(' '));
    if (words.constFirst() == QLatin1String("pay"))
        return words.constFirst();
    return words.constFirst() == QLatin1String("check") ? words.constFirst() + QLatin1Char(' ') + words.constLast()
                                                        : seen;
}
} // namespace

/// The client and the cash service's program: two implementations of the protocol that share no code.
class ParkomatAccessManagerServiceTest : public TestCase
{
    Q_OBJECT

private:
    /// One exchange. @return what the client signalled, without the session's identifier.
    template <typename Request>
    static QStringList exchange(const Request &request)
    {
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(request);
        waitUntil([&] { return !probe.seen().isEmpty() && client.findChild<QNetworkReply *>() == nullptr; });
        MessageLog::drop();
        QStringList seen;
        for (const QString &each : probe.seen())
            seen.append(withoutSession(each));
        return seen;
    }

private Q_SLOTS:
    void payment_settingsByDefault_isCheckedPaidAndOver()
    {
        const CashService service;
        // Only the port is not the default one: that may be taken.
        ParkomatSettings().setCashServicePort(service.port());
        QCOMPARE(exchange(ParkingCheckRequest(card(DEMO_CARD))), QStringList(QStringLiteral("check 150.00")));
        QCOMPARE(exchange(payment(DEMO_CARD, 15'000)), QStringList(QStringLiteral("pay")));
        QCOMPARE(exchange(ParkingCheckRequest(card(DEMO_CARD))),
                 QStringList(QStringLiteral("error 3 Парковка уже оплачена")));
    }

    void payment_partial_leavesTheRest()
    {
        const CashService service;
        useService(service.port());
        QCOMPARE(exchange(payment(DEMO_CARD, 4'000)), QStringList(QStringLiteral("pay")));
        QCOMPARE(exchange(ParkingCheckRequest(card(DEMO_CARD))), QStringList(QStringLiteral("check 110.00")));
    }

    void requests_oneClient_areAnsweredEach()
    {
        const CashService service;
        useService(service.port(), QStringLiteral("/api"));
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(ParkingCheckRequest(card(DEMO_CARD)));
        client.postData(ParkingCheckRequest(card(BLOCKED_CARD)));
        WAIT_FOR(probe.seen().size(), 2);
        QStringList seen = {withoutSession(probe.seen().at(0)), withoutSession(probe.seen().at(1))};
        seen.sort();
        QCOMPARE(seen, QStringList({QStringLiteral("check 150.00"), QStringLiteral("error 4 Карта заблокирована")}));
        client.postData(payment(DEMO_CARD, 15'000));
        WAIT_FOR(probe.seen().size(), 3);
        QCOMPARE(withoutSession(probe.seen().at(2)), QStringLiteral("pay"));
        MessageLog::drop();
    }

    void check_seededCard_isAnsweredByItsState_data()
    {
        QTest::addColumn<QString>("uid");
        QTest::addColumn<QString>("seen");
        QTest::newRow("demo") << DEMO_CARD << QStringLiteral("check 150.00");
        QTest::newRow("partly paid") << QStringLiteral("268435463") << QStringLiteral("check 100.00");
        QTest::newRow("parked long") << QStringLiteral("268435465") << QStringLiteral("check 800.00");
        QTest::newRow("unknown") << QStringLiteral("268435458") << QStringLiteral("error 2 Карта не найдена");
        QTest::newRow("paid") << QStringLiteral("268435459") << QStringLiteral("error 3 Парковка уже оплачена");
        QTest::newRow("blocked") << BLOCKED_CARD << QStringLiteral("error 4 Карта заблокирована");
        QTest::newRow("maintenance") << QStringLiteral("268435461")
                                     << QStringLiteral("error 5 Сервис временно недоступен");
        // Deliberately: a UID this small goes out empty.
        QTest::newRow("UID below 10000000 hexadecimal")
            << QStringLiteral("255") << QStringLiteral("error 2 Карта не найдена");
    }

    void check_seededCard_isAnsweredByItsState()
    {
        QFETCH(QString, uid);
        QFETCH(QString, seen);
        const CashService service;
        useService(service.port());
        QCOMPARE(exchange(ParkingCheckRequest(card(uid))), QStringList(seen));
    }

    void fault_ofTheService_givesOneSignal_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("seen");
        const QString unknown = QStringLiteral("error -1 Unknown response");
        QTest::newRow("status 503") << QStringLiteral("any:status=503") << QStringLiteral("error 403");
        QTest::newRow("status 404") << QStringLiteral("any:status=404") << QStringLiteral("error 203");
        QTest::newRow("status 302") << QStringLiteral("any:status=302") << unknown;
        QTest::newRow("empty") << QStringLiteral("any:empty") << unknown;
        QTest::newRow("another operation") << QStringLiteral("any:operation=CloseShift") << unknown;
        QTest::newRow("the other operation") << QStringLiteral("ParkingCheck:operation") << QStringLiteral("pay");
        QTest::newRow("a result code") << QStringLiteral("any:result=7,Почему") << QStringLiteral("error 7 Почему");
        QTest::newRow("windows-1251") << QStringLiteral("any:encoding=windows-1251") << QStringLiteral("check 150.00");
        QTest::newRow("utf-16") << QStringLiteral("any:encoding=utf-16") << QStringLiteral("check 150.00");
        QTest::newRow("a field left out") << QStringLiteral("any:missing=TotalCharge") << QStringLiteral("check 0.00");
        QTest::newRow("late") << QStringLiteral("any:delay=50ms") << QStringLiteral("check 150.00");
    }

    void fault_ofTheService_givesOneSignal()
    {
        QFETCH(QString, fault);
        QFETCH(QString, seen);
        const CashService service({QStringLiteral("--fault"), fault});
        useService(service.port());
        const QStringList all = exchange(ParkingCheckRequest(card(DEMO_CARD)));
        QCOMPARE(all.size(), 1);
        QVERIFY2(all.constFirst() == seen || all.constFirst().startsWith(seen + QLatin1Char(' ')),
                 qPrintable(all.constFirst()));
    }
};

TEST_MAIN(ParkomatAccessManagerServiceTest)
#include "tst_parkomataccessmanagerservice.moc"
