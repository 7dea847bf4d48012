// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "proxyinuse.h"
#include "support/openresources.h"
#include "support/testcase.h"
#include "wireexchange.h"

#include <QPointer>

#include <memory>

/// What is left of a client that goes with requests in flight, or inside its own signal: nothing.
class ParkomatAccessManagerDestroyedTest : public TestCase
{
    Q_OBJECT

private:
    /// Posts, waits until the server has so many requests, and destroys the client.
    static void verifyDestroyed(const RawServer &server, int requests)
    {
        FreshJournal::make();
        const OpenResources before;
        auto client = std::make_unique<ParkomatAccessManager>();
        const ClientProbe probe(*client);
        client->postData(QStringLiteral("ParkInfoPay"), DOCUMENT);
        WAIT_FOR(server.requests().size(), requests);
        const QPointer<QNetworkAccessManager> manager(managerOf(*client));
        const QPointer<QNetworkReply> reply(client->findChild<QNetworkReply *>());
        QVERIFY(manager && reply);
        MessageLog::drop();
        client.reset();
        QVERIFY(!manager && !reply);
        WAIT_FOR(server.openConnections(), 0);
        QCOMPARE(before.left(), QStringList());
        QCOMPARE(probe.seen(), QStringList());
        QVERIFY(MessageLog::take().isEmpty());
        QVERIFY(FreshJournal::isThere());
        QCOMPARE(server.complaint(), QString());
    }

private Q_SLOTS:
    void initTestCase() { WireExchange::startThreadsOfQt(); }

    void destroyed_requestInFlight_leavesNothingBehind_data()
    {
        QTest::addColumn<QList<RawAnswer>>("answers");
        QTest::newRow("not answered") << QList<RawAnswer>{RawAnswer::held()};
        QTest::newRow("half answered") << QList<RawAnswer>{{RawAnswer::http("200 OK", Answers::PAY).chopped(5)}};
        QTest::newRow("closed and sent again") << QList<RawAnswer>{{{}, Then::Close}, RawAnswer::held()};
    }

    void destroyed_requestInFlight_leavesNothingBehind()
    {
        QFETCH(QList<RawAnswer>, answers);
        RawServer server;
        for (const RawAnswer &answer : answers)
            server.plan(answer);
        useService(server.port());
        verifyDestroyed(server, answers.size());
    }

    void destroyed_atOnce_leavesNothingBehind()
    {
        RawServer server;
        // Whether Qt gets so far as to send anything is its own affair.
        server.planForAll(RawAnswer::held());
        useService(server.port());
        verifyDestroyed(server, 0);
    }

    void destroyed_behindAProxysQuestion_leavesNothingBehind_data()
    {
        QTest::addColumn<RawAnswer>("answer");
        QTest::newRow("not answered") << RawAnswer::held();
        QTest::newRow("half answered") << RawAnswer{RawAnswer::http("200 OK", Answers::PAY).chopped(5)};
    }

    void destroyed_behindAProxysQuestion_leavesNothingBehind()
    {
        QFETCH(RawAnswer, answer);
        RawServer proxy;
        proxy.plan({RawAnswer::http("407 Proxy", Answers::PAY, {"Proxy-Authenticate: Basic realm=\"r\""})});
        proxy.plan(answer);
        useDistantService();
        const ProxyInUse inUse(proxy.port(), QStringLiteral("name"), QStringLiteral("secret"));
        verifyDestroyed(proxy, 2);
    }

    void destroyed_insideItsSignal_leavesNothingBehind_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("check") << RawAnswer::http("200 OK", Answers::CHECK);
        QTest::newRow("pay") << RawAnswer::http("200 OK", Answers::PAY);
        QTest::newRow("refused") << RawAnswer::http("200 OK", Answers::UNKNOWN_CARD);
        QTest::newRow("unknown") << RawAnswer::http("200 OK", {});
        QTest::newRow("transport error") << RawAnswer::http("500 Error", {});
    }

    void destroyed_insideItsSignal_leavesNothingBehind()
    {
        QFETCH(QByteArray, bytes);
        RawServer server;
        server.plan({bytes});
        useService(server.port());
        const OpenResources before;
        auto *client = new ParkomatAccessManager;
        const QPointer<QNetworkAccessManager> manager(managerOf(*client));
        QPointer<QNetworkReply> reply;
        bool wasManagerAlive = false;
        const auto destroy = [&] {
            delete client;
            wasManagerAlive = manager && reply;
        };
        connect(client, &ParkomatAccessManager::error, this, destroy);
        connect(client, &ParkomatAccessManager::parkingCheckResponse, this, destroy);
        connect(client, &ParkomatAccessManager::parkInfoPayResponse, this, destroy);
        client->postData(QStringLiteral("X"), DOCUMENT);
        reply = client->findChild<QNetworkReply *>();
        QVERIFY(reply);
        WAIT_FOR(manager.isNull(), true);
        // Qt still used them when the listener had returned.
        QVERIFY(wasManagerAlive);
        QVERIFY(!reply);
        WAIT_FOR(server.openConnections(), 0);
        QCOMPARE(before.left(), QStringList());
        MessageLog::drop();
    }

    void destroyed_insideTheFirstOfSeveralSignals_reportsNoMore_data()
    {
        QTest::addColumn<RawAnswer>("others");
        const QByteArray good = RawAnswer::http("200 OK", Answers::CHECK);
        QTest::newRow("others not answered") << RawAnswer::held();
        QTest::newRow("others half answered") << RawAnswer{good.chopped(5)};
        QTest::newRow("others answered too") << RawAnswer{good};
        QTest::newRow("others cut off") << RawAnswer{good.chopped(5), Then::Close};
    }

    void destroyed_insideTheFirstOfSeveralSignals_reportsNoMore()
    {
        QFETCH(RawAnswer, others);
        constexpr int posts = 4;
        RawServer server;
        server.planForAll(RawAnswer::held());
        useService(server.port());
        const OpenResources before;
        auto *client = new ParkomatAccessManager;
        const QPointer<QNetworkAccessManager> manager(managerOf(*client));
        // What is logged of an answer: by the parser once, by the client twice; of a failure, its code and text.
        QList<int> logged;
        const auto reported = [&](int lines) {
            logged.append(lines);
            delete client;
        };
        connect(client, &ParkomatAccessManager::parkingCheckResponse, this, [&] { reported(3); });
        connect(client, &ParkomatAccessManager::error, this, [&] { reported(1); });
        for (int i = 0; i < posts; ++i)
            client->postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        QList<QPointer<QNetworkReply>> replies;
        for (QNetworkReply *const reply : client->findChildren<QNetworkReply *>())
            replies.append(reply);
        QCOMPARE(replies.size(), posts);
        WAIT_FOR(server.requests().size(), posts);
        MessageLog::drop();
        server.send(server.requests().at(0).connection, {RawAnswer::http("200 OK", Answers::CHECK)});
        for (int i = 1; i < posts; ++i)
            server.send(server.requests().at(i).connection, others);
        WAIT_FOR(manager.isNull(), true);
        QCOMPARE(replies.count(nullptr), posts);
        WAIT_FOR(server.openConnections(), 0);
        QCOMPARE(before.left(), QStringList());
        QCOMPARE(logged.size(), 1);
        QCOMPARE(MessageLog::take().size(), logged.constFirst());
        QCOMPARE(server.complaint(), QString());
    }
};

TEST_MAIN(ParkomatAccessManagerDestroyedTest)
#include "tst_parkomataccessmanagerdestroyed.moc"
