// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "serviceexchange.h"
#include "support/testcase.h"

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
        waitUntil([&] { return !probe.seen().isEmpty() && repliesOf(client) == 0; });
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
        QCOMPARE(exchange(checkOf(DEMO_CARD)), QStringList(QStringLiteral("check 150.00")));
        QCOMPARE(exchange(paymentOf(DEMO_CARD, 15'000)), QStringList(QStringLiteral("pay")));
        QCOMPARE(exchange(checkOf(DEMO_CARD)), QStringList(QStringLiteral("error 3 Парковка уже оплачена")));
    }

    void payment_partial_leavesTheRest()
    {
        const CashService service;
        useService(service.port());
        QCOMPARE(exchange(paymentOf(DEMO_CARD, 4'000)), QStringList(QStringLiteral("pay")));
        QCOMPARE(exchange(checkOf(DEMO_CARD)), QStringList(QStringLiteral("check 110.00")));
    }

    void requests_oneClient_areAnsweredEach()
    {
        const CashService service;
        useService(service.port(), QStringLiteral("/api"));
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(checkOf(DEMO_CARD));
        client.postData(checkOf(BLOCKED_CARD));
        WAIT_FOR(probe.seen().size(), 2);
        QStringList seen = {withoutSession(probe.seen().at(0)), withoutSession(probe.seen().at(1))};
        seen.sort();
        QCOMPARE(seen, QStringList({QStringLiteral("check 150.00"), QStringLiteral("error 4 Карта заблокирована")}));
        client.postData(paymentOf(DEMO_CARD, 15'000));
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
        QCOMPARE(exchange(checkOf(uid)), QStringList(seen));
    }

    void fault_ofTheService_givesOneSignal_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("seen");
        const auto row = [](const char *name, const char *fault, const char *seen) {
            QTest::newRow(name) << QString::fromUtf8(fault) << QString::fromUtf8(seen);
        };
        const char unknown[] = "error -1 Unknown response";
        row("status 200", "any:status=200", unknown);
        row("status 204", "any:status=204", unknown);
        row("status 301", "any:status=301", unknown);
        row("status 302", "any:status=302", unknown);
        row("status 401", "any:status=401", "error 204 Host requires authentication");
        row("status 404", "any:status=404", "error 203");
        row("status 407", "any:status=407", "error 105 Proxy requires authentication");
        row("status 500", "any:status=500", "error 401");
        row("status 503", "any:status=503", "error 403");
        row("empty", "any:empty", unknown);
        row("empty the next time", "any#2:empty", "check 150.00");
        row("another operation", "any:operation=CloseShift", unknown);
        row("the other operation", "ParkingCheck:operation", "pay");
        row("a result code", "any:result=7,Почему", "error 7 Почему");
        row("windows-1251", "any:encoding=windows-1251", "check 150.00");
        row("utf-16", "any:encoding=utf-16", "check 150.00");
        row("a field left out", "any:missing=TotalCharge", "check 0.00");
        // Of two fields with one name the last one counts, whatever it says.
        row("a field twice", "any:doubled=TotalCharge,1", "check 0.01");
        row("a field twice, the last one no amount", "any:doubled=TotalCharge", "check 0.00");
        row("a malformed amount", "any:malformed=TotalCharge", "check 0.00");
        row("an amount with decimals", "any:malformed=TotalCharge,150.00", "check 0.00");
        row("an empty amount", "any:malformed=TotalCharge,", "check 0.00");
        row("a malformed time", "any:malformed=StartTime", "check 150.00");
        row("a malformed result code", "any:malformed=ResultCode,one", "error 0");
        row("another card", "any:card=10000007", "check 100.00");
        row("a card that is not there", "any:card=ABCDEF01", "error 2 Карта не найдена");
        row("late", "any:delay=50ms", "check 150.00");
    }

    void fault_ofTheService_givesOneSignal()
    {
        QFETCH(QString, fault);
        QFETCH(QString, seen);
        const CashService service({QStringLiteral("--fault"), fault});
        useService(service.port());
        ServiceExchange(CHECK_KIND).verify(seen);
    }

    void fault_ofAPayment_isRegisteredOrNot_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("seen");
        QTest::addColumn<int>("owed");
        const auto row = [](const QByteArray &fault, const char *seen, int owed) {
            QTest::newRow(fault) << QString::fromUtf8(fault) << QString::fromUtf8(seen) << owed;
        };
        constexpr int all = 15'000;
        const char unknown[] = "error -1 Unknown response";
        // What the client reports does not tell whether the service has the payment.
        row("ParkInfoPay:empty", unknown, 0);
        row("ParkInfoPay@before:empty", unknown, all);
        for (const auto &[status, code] : QList<QPair<int, const char *>>{{204, unknown},
                                                                          {301, unknown},
                                                                          {401, "error 204"},
                                                                          {404, "error 203"},
                                                                          {407, "error 105"},
                                                                          {500, "error 401"},
                                                                          {503, "error 403"}}) {
            const QByteArray action = "status=" + QByteArray::number(status);
            row("ParkInfoPay@after:" + action, code, 0);
            row("ParkInfoPay@before:" + action, code, all);
        }
        row("ParkInfoPay@after:result=7,Почему", "error 7 Почему", 0);
        row("ParkInfoPay@before:result=7,Почему", "error 7 Почему", all);
        row("ParkInfoPay@before:malformed=ResultCode,one", "error 0", all);
        row("ParkInfoPay@before:operation=CloseShift", unknown, all);
        row("ParkInfoPay@before:operation", "check 0.00", all);
        row("ParkInfoPay@after:operation", "check 0.00", 0);
        row("ParkInfoPay@before:encoding=utf-16", "pay", all);
        row("ParkInfoPay@before:delay=50ms", "pay", 0);
        row("ParkInfoPay:doubled=SessionId,x", "pay", 0);
        row("ParkInfoPay:malformed=AnswerTime", "pay", 0);
        row("ParkInfoPay:card=10000007", "pay", 0);
        row("ParkInfoPay#2@before:empty", "pay", 0);
        row("ParkingCheck@before:empty", "pay", 0);
    }

    void fault_ofAPayment_isRegisteredOrNot()
    {
        QFETCH(QString, fault);
        QFETCH(QString, seen);
        QFETCH(int, owed);
        const CashService service({QStringLiteral("--fault"), fault});
        useService(service.port());
        ServiceExchange(PAY_KIND).verify(seen);
        QCOMPARE(service.owed(QStringLiteral("12345678")), owed);
        QCOMPARE(service.payments().size(), owed == 0 ? 1 : 0);
    }
};

TEST_MAIN(ParkomatAccessManagerServiceTest)
#include "tst_parkomataccessmanagerservice.moc"
