// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "proxyinuse.h"
#include "relayedexchange.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <csignal>

namespace {
using RelayedExchange::Parts;
using RelayedExchange::Row;

const QString FAULT = QStringLiteral("--fault");
const QString HELD = QStringLiteral("any:delay=1h");
const QString UNREACHABLE = QStringLiteral("error 1 Connection refused");
} // namespace

/// The client and the cash service's program, whose connections break off anywhere, or which ends itself.
class ParkomatAccessManagerServiceEndingsTest : public TestCase
{
    Q_OBJECT

private:
    /// @param kept how much of an answer comes through before the end.
    template <typename Kept>
    static void add(const char *name, const ServiceKind &kind, const Kept &kept, const QString &seen, int mostTimes = 1)
    {
        for (const Then then : {Then::Close, Then::Reset}) {
            const auto change = [kept, then](const QByteArray &answer) { return RawAnswer{kept(answer), then}; };
            QTest::addRow("%s: %s %s", kind.name, then == Then::Close ? "closed" : "reset", name)
                << Row{kind, change, seen, mostTimes};
        }
    }

    static void addKinds()
    {
        QTest::addColumn<ServiceKind>("kind");
        for (const ServiceKind &kind : SERVICE_KINDS)
            QTest::newRow(kind.name) << kind;
    }

private Q_SLOTS:
    void ending_onTheWay_givesOneSignal_data()
    {
        QTest::addColumn<Row>("row");
        for (const ServiceKind &kind : SERVICE_KINDS) {
            add(
                "before the head", kind, [](const QByteArray &) { return QByteArray(); }, CLOSED, SENT_AGAIN);
            add(
                "in the status line", kind, [](const QByteArray &answer) { return answer.left(6); }, CLOSED,
                SENT_AGAIN);
            add(
                "in the head", kind, [](const QByteArray &answer) { return Parts(answer).head.chopped(3); }, CLOSED,
                SENT_AGAIN);
            add(
                "behind the head", kind, [](const QByteArray &answer) { return Parts(answer).head + "\r\n\r\n"; },
                CLOSED);
            add(
                "in the body", kind, [](const QByteArray &answer) { return answer.chopped(5); }, CLOSED);
            add(
                "behind the answer", kind, [](const QByteArray &answer) { return answer; }, kind.seen);
            add(
                "in a body without a length", kind,
                [](const QByteArray &answer) { return Parts(answer).as("200 OK", Parts(answer).cut(), {}); },
                kind.seenIfCut);
        }
    }

    void ending_onTheWay_givesOneSignal()
    {
        QFETCH(RelayedExchange::Row, row);
        RelayedExchange::verify(row);
    }

    void service_killedBefore_isRefused_data() { addKinds(); }

    void service_killedBefore_isRefused()
    {
        QFETCH(ServiceKind, kind);
        CashService service;
        useService(service.port());
        service.kill();
        ServiceExchange(kind).verify(UNREACHABLE);
    }

    void service_killedInADelay_givesOneError_data() { addKinds(); }

    void service_killedInADelay_givesOneError()
    {
        QFETCH(ServiceKind, kind);
        CashService service({FAULT, HELD});
        const Relay relay(service.port());
        useService(relay.port());
        ServiceExchange exchange(kind);
        WAIT_FOR(service.exchanges(), 1);
        service.kill();
        exchange.verify(CLOSED);
        // Qt has posted again, to a service that is not there any more.
        const int times = relay.requests().size();
        QVERIFY2(times >= 2 && times <= SENT_AGAIN, qPrintable(QString::number(times)));
        QCOMPARE(relay.unanswered(), times);
        QCOMPARE(relay.complaint(), QString());
    }

    void service_killedWithAPayment_hasItOrNot_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("payments");
        QTest::newRow("recorded") << QStringLiteral("ParkInfoPay@after:delay=1h") << 1;
        QTest::newRow("not recorded") << QStringLiteral("ParkInfoPay@before:delay=1h") << 0;
    }

    void service_killedWithAPayment_hasItOrNot()
    {
        QFETCH(QString, fault);
        QFETCH(int, payments);
        const QStringList database = {QStringLiteral("--db"), WorkDirectory::path() + QStringLiteral("/cash.db")};
        CashService service(database + QStringList{FAULT, fault});
        useService(service.port());
        ServiceExchange exchange(PAY_KIND);
        WAIT_FOR(service.exchanges(), 1);
        WAIT_FOR(service.payments().size(), payments);
        service.kill();
        // Nobody is there for what Qt posts again, and the journal stays as it is even where the payment is kept.
        exchange.verify(UNREACHABLE);
        QCOMPARE(CashService(database).payments().size(), payments);
    }

    void service_endedInADelay_answersFirst_data() { addKinds(); }

    void service_endedInADelay_answersFirst()
    {
        QFETCH(ServiceKind, kind);
        CashService service({FAULT, HELD});
        useService(service.port());
        ServiceExchange exchange(kind);
        WAIT_FOR(service.exchanges(), 1);
        QCOMPARE(service.endBy(SIGTERM), 0);
        exchange.verify(kind.seen);
    }

    void proxy_asksForTheName_passesItOn_data() { addKinds(); }

    void proxy_asksForTheName_passesItOn()
    {
        QFETCH(ServiceKind, kind);
        const CashService service;
        Relay proxy(service.port());
        proxy.askForName("name", "secret");
        useDistantService();
        {
            const ProxyInUse inUse(proxy.port(), QStringLiteral("name"), QStringLiteral("secret"));
            ServiceExchange(kind).verify(kind.seen);
        }
        QCOMPARE(proxy.requests().size(), 2);
        QCOMPARE(proxy.complaint(), QString());
        QCOMPARE(service.requests(kind.operation()).size(), 1);
        QCOMPARE(service.payments().size(), kind.isRegistered() ? 1 : 0);
    }

    void proxy_refusesTheName_isNoWayToTheService_data() { addKinds(); }

    void proxy_refusesTheName_isNoWayToTheService()
    {
        QFETCH(ServiceKind, kind);
        const CashService service;
        Relay proxy(service.port());
        proxy.askForName("name", "secret");
        useDistantService();
        {
            const ProxyInUse inUse(proxy.port(), QStringLiteral("name"), QStringLiteral("wrong"));
            ServiceExchange(kind).verify(QStringLiteral("error 105 Proxy requires authentication"));
        }
        QCOMPARE(proxy.complaint(), QString());
        QCOMPARE(service.exchanges(), 0);
        QCOMPARE(service.payments().size(), 0);
    }
};

TEST_MAIN(ParkomatAccessManagerServiceEndingsTest)
#include "tst_parkomataccessmanagerserviceendings.moc"
