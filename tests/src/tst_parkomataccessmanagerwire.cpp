// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "freshjournal.h"
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "support/openresources.h"
#include "support/testcase.h"
#include "wireexchange.h"

#include <QEventLoop>

/// The client's posts on the wire, one and several at once.
class ParkomatAccessManagerWireTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { WireExchange::startThreadsOfQt(); }

    void post_refused_givesOneError()
    {
        const RefusingPort port;
        useService(port.number());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        QVERIFY(client.postData(QStringLiteral("ParkingCheck"), DOCUMENT));
        QVERIFY(probe.seen().isEmpty());
        WAIT_FOR(probe.seen(), QStringList(QStringLiteral("error 1 Connection refused")));
        WAIT_FOR(repliesOf(client), 0);
        MessageLog::drop();
    }

    void post_impossibleUrl_givesOneError_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("seen");
        // Two blanks, as Qt says it of a host without a name.
        const QString noHost = QStringLiteral("error 3 Host  not found");
        QTest::newRow("empty host") << QString() << 80 << noHost;
        QTest::newRow("no host's characters") << QStringLiteral("a b") << 80 << noHost;
        QTest::newRow("port 0") << QStringLiteral("127.0.0.1") << 0 << QStringLiteral("error 1 Connection refused");
    }

    void post_impossibleUrl_givesOneError()
    {
        QFETCH(QString, host);
        QFETCH(int, port);
        QFETCH(QString, seen);
        ParkomatSettings settings;
        settings.setCashServiceHost(host);
        settings.setCashServicePort(static_cast<unsigned short>(port));
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        QVERIFY(client.postData(QStringLiteral("ParkingCheck"), DOCUMENT));
        QVERIFY(probe.seen().isEmpty());
        WAIT_FOR(probe.seen(), QStringList(seen));
        WAIT_FOR(repliesOf(client), 0);
        MessageLog::drop();
    }

    void post_document_isLoggedThenSentThenItsUrlIsLogged()
    {
        RawServer server;
        server.plan({RawAnswer::http("200 OK", Answers::UNKNOWN_CARD)});
        useService(server.port(), QStringLiteral("/a b/"));
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        QVERIFY(client.postData(QStringLiteral("Operation"), DOCUMENT));
        const QList<LogLine> lines = MessageLog::take();
        const QUrl url = client.prepareRequest(QStringLiteral("Operation"), QUrlQuery()).url();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0).text, DOCUMENT);
        QCOMPARE(lines.at(1).text, url.toString());
        for (const LogLine &line : lines) {
            QCOMPARE(line.level, QtWarningMsg);
            QCOMPARE(line.category, QStringLiteral("default"));
            QCOMPARE(line.file, QStringLiteral("src/parkomataccessmanager.cpp"));
            QCOMPARE(line.function,
                     QStringLiteral("bool ParkomatAccessManager::postData(const QString&, const QString&)"));
        }
        WAIT_FOR(probe.seen(), QStringList(REFUSED));
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(server.requests().constFirst().line(), QByteArray("POST /a%20b//Operation HTTP/1.1"));
        QCOMPARE(server.complaint(), QString());
        MessageLog::drop();
    }

    void post_request_goesToItsOperation()
    {
        RawServer server;
        server.plan({RawAnswer::http("200 OK", Answers::CHECK)});
        server.plan({RawAnswer::http("200 OK", Answers::PAY)});
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        const ParkomatCardData card;
        QVERIFY(client.postData(ParkingCheckRequest(card)));
        WAIT_FOR(probe.seen(), QStringList(CHECKED));
        QVERIFY(client.postData(ParkInfoPayRequest(card, Payment(), FixNumber())));
        WAIT_FOR(probe.seen(), QStringList({CHECKED, PAID}));
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(server.requests().at(0).line(), QByteArray("POST /api/ParkingCheck HTTP/1.1"));
        QVERIFY(server.requests().at(0).body.contains("Operation=\"ParkingCheck\""));
        QCOMPARE(server.requests().at(1).line(), QByteArray("POST /api/ParkInfoPay HTTP/1.1"));
        QVERIFY(server.requests().at(1).body.contains("Operation=\"ParkInfoPay\""));
        // Nothing is kept open: the second one came over a connection of its own.
        QCOMPARE(server.connections(), 2);
        QCOMPARE(server.complaint(), QString());
        MessageLog::drop();
    }

    void journal_check_isUntouchedAndPayAdvancesIt()
    {
        FreshJournal::make();
        RawServer server;
        server.plan({RawAnswer::http("200 OK", Answers::CHECK)});
        server.plan({RawAnswer::http("200 OK", Answers::UNKNOWN_CARD)});
        server.plan({RawAnswer::http("200 OK", Answers::PAY)});
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        bool wasFreshInSignal = false;
        connect(&client, &ParkomatAccessManager::parkInfoPayResponse, this,
                [&wasFreshInSignal] { wasFreshInSignal = FreshJournal::isThere(); });
        for (const QString &seen : {CHECKED, REFUSED}) {
            client.postData(QStringLiteral("X"), DOCUMENT);
            WAIT_FOR(probe.seen().value(probe.seen().size() - 1), seen);
            QVERIFY(FreshJournal::isThere());
        }
        client.postData(QStringLiteral("X"), DOCUMENT);
        WAIT_FOR(probe.seen(), QStringList({CHECKED, REFUSED, PAID}));
        QVERIFY(wasFreshInSignal);
        QVERIFY(!FreshJournal::isThere());
        MessageLog::drop();
    }

    void requests_inFlight_areReportedAsTheyAreAnswered()
    {
        RawServer server;
        server.plan(RawAnswer::held());
        server.plan(RawAnswer::held());
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        client.postData(QStringLiteral("ParkInfoPay"), DOCUMENT);
        WAIT_FOR(server.requests().size(), 2);
        const int pay = server.requests().at(0).line().contains("ParkInfoPay") ? 0 : 1;
        server.send(server.requests().at(pay).connection, {RawAnswer::http("200 OK", Answers::PAY)});
        WAIT_FOR(probe.seen(), QStringList(PAID));
        WAIT_FOR(repliesOf(client), 1);
        // The other one's connection must not be taken from it.
        QVERIFY(server.openConnections() >= 1);
        server.send(server.requests().at(1 - pay).connection, {RawAnswer::http("200 OK", Answers::CHECK)});
        WAIT_FOR(probe.seen(), QStringList({PAID, CHECKED}));
        WAIT_FOR(repliesOf(client), 0);
        WAIT_FOR(server.openConnections(), 0);
        QCOMPARE(server.complaint(), QString());
        MessageLog::drop();
    }

    void requests_tenAtOnce_areEachReportedOnce()
    {
        RawServer server;
        server.planForAll({RawAnswer::http("200 OK", Answers::CHECK)});
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        for (int i = 0; i < 10; ++i)
            client.postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        WAIT_FOR(probe.seen().size(), 10);
        WAIT_FOR(repliesOf(client), 0);
        WAIT_FOR(server.openConnections(), 0);
        QCOMPARE(probe.seen().count(CHECKED), 10);
        QCOMPARE(server.requests().size(), 10);
        MessageLog::drop();
    }

    void signal_withAnEventLoopInside_letsTheNextReplyThrough()
    {
        RawServer server;
        server.plan({RawAnswer::http("200 OK", Answers::CHECK)});
        server.plan({RawAnswer::http("200 OK", Answers::PAY)});
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        connect(&client, &ParkomatAccessManager::parkingCheckResponse, this, [&client] {
            QEventLoop loop;
            connect(&client, &ParkomatAccessManager::parkInfoPayResponse, &loop, &QEventLoop::quit);
            client.postData(QStringLiteral("ParkInfoPay"), DOCUMENT);
            loop.exec();
        });
        client.postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        WAIT_FOR(probe.seen(), QStringList({CHECKED, PAID}));
        WAIT_FOR(repliesOf(client), 0);
        WAIT_FOR(server.openConnections(), 0);
        QVERIFY(managerOf(client));
        QCOMPARE(server.complaint(), QString());
        MessageLog::drop();
    }

    void exchange_over_keepsNothingOpen()
    {
        RawServer server;
        server.planForAll({RawAnswer::http("200 OK", Answers::CHECK)});
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        const OpenResources before;
        for (int i = 1; i <= 3; ++i) {
            client.postData(QStringLiteral("X"), DOCUMENT);
            WAIT_FOR(probe.seen().size(), i);
            WAIT_FOR(server.openConnections(), 0);
            QCOMPARE(before.left(), QStringList());
            QCOMPARE(server.connections(), i);
        }
        MessageLog::drop();
    }
};

TEST_MAIN(ParkomatAccessManagerWireTest)
#include "tst_parkomataccessmanagerwire.moc"
