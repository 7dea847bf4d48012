// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/relay.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <QTcpSocket>

Q_DECLARE_METATYPE(RawAnswer)

namespace {
const QByteArray HEAD = QByteArrayLiteral("POST /x HTTP/1.1\r\nHost: h\r\nContent-Length: 3");
const QByteArray REQUEST = HEAD + "\r\n\r\nabc";

/// A client that has sent bytes over a fresh connection.
class Client
{
public:
    Client(const Relay &relay, const QByteArray &bytes)
    {
        m_socket.connectToHost(QHostAddress::LocalHost, relay.port());
        m_socket.write(bytes);
    }

    /// What has come when the connection is closed.
    QByteArray readAll()
    {
        waitUntil([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; });
        return m_socket.state() == QAbstractSocket::UnconnectedState ? m_socket.readAll() : "it is still open";
    }
    [[nodiscard]] qint64 received() const { return m_socket.bytesAvailable(); }

private:
    QTcpSocket m_socket;
};

RawAnswer thenClosed(const QByteArray &bytes)
{
    return {bytes, RawAnswer::Then::Close};
}
} // namespace

/// What stands between a client and a service must change nothing but what it was told to, and notice what breaks it.
class RelayTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void request_whole_goesOnAsItIs()
    {
        RawServer service;
        const QByteArray answer = RawAnswer::http("200 OK", "body", {"A: b"});
        service.plan({answer});
        const Relay relay(service.port(), thenClosed);
        QCOMPARE(Client(relay, REQUEST).readAll(), answer);
        QCOMPARE(service.requests().size(), 1);
        QCOMPARE(service.requests().constFirst().head, HEAD);
        QCOMPARE(service.requests().constFirst().body, QByteArray("abc"));
        QCOMPARE(relay.requests().size(), 1);
        QCOMPARE(relay.unanswered(), 0);
        QCOMPARE(relay.complaint(), QString());
        QCOMPARE(service.complaint(), QString());
        WAIT_FOR(service.openConnections(), 0);
    }

    void answer_changed_isWhatTheClientGets()
    {
        RawServer service;
        // In pieces: what is changed is whole all the same.
        service.plan({RawAnswer::http("200 OK", "body"), RawAnswer::Then::StayOpen, RawAnswer::When::RequestRead, 1});
        const Relay relay(service.port(), [](const QByteArray &answer) { return thenClosed(answer.right(4) + '!'); });
        QCOMPARE(Client(relay, REQUEST).readAll(), QByteArray("body!"));
        QCOMPARE(relay.complaint(), QString());
    }

    void answer_unchanged_leavesTheConnectionOpen()
    {
        RawServer service;
        service.plan({RawAnswer::http("200 OK", {})});
        const Relay relay(service.port());
        const Client client(relay, REQUEST);
        WAIT_FOR(client.received(), RawAnswer::http("200 OK", {}).size());
        QCOMPARE(relay.openConnections(), 1);
    }

    void service_endsTheConnection_endsTheClientsToo_data()
    {
        QTest::addColumn<RawAnswer>("answer");
        QTest::newRow("closed, no answer") << thenClosed({});
        QTest::newRow("reset, no answer") << RawAnswer{{}, RawAnswer::Then::Reset};
        QTest::newRow("closed in the answer") << thenClosed(RawAnswer::http("200 OK", "body").chopped(1));
        QTest::newRow("closed at once") << RawAnswer{{}, RawAnswer::Then::Close, RawAnswer::When::Connected};
    }

    void service_endsTheConnection_endsTheClientsToo()
    {
        QFETCH(RawAnswer, answer);
        RawServer service;
        service.plan(answer);
        const Relay relay(service.port());
        QCOMPARE(Client(relay, REQUEST).readAll(), QByteArray());
        QCOMPARE(relay.unanswered(), 1);
        QCOMPARE(relay.complaint(), QString());
    }

    void service_gone_endsTheClients()
    {
        QTcpSocket bound;
        QVERIFY(bound.bind(QHostAddress(QHostAddress::LocalHost)));
        const Relay relay(bound.localPort());
        QCOMPARE(Client(relay, REQUEST).readAll(), QByteArray());
        QCOMPARE(relay.requests().size(), 1);
        QCOMPARE(relay.unanswered(), 1);
    }

    void complaint_situation_isNamed_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("complaint");
        const QByteArray good = RawAnswer::http("200 OK", "body");
        QTest::newRow("an answer without a length")
            << REQUEST << QByteArray("HTTP/1.1 200 OK\r\n\r\n") << QStringLiteral("an answer with 0 lengths");
        QTest::newRow("an answer with two lengths") << REQUEST << RawAnswer::http("200 OK", {}, {"Content-Length: 0"})
                                                    << QStringLiteral("an answer with 2 lengths");
        QTest::newRow("bytes behind the answer")
            << REQUEST << good + "xy" << QStringLiteral("bytes behind an answer's end: xy");
        QTest::newRow("bytes behind the request")
            << REQUEST + "d" << good << QStringLiteral("bytes behind a request's end: d");
    }

    void complaint_situation_isNamed()
    {
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, answer);
        QFETCH(QString, complaint);
        RawServer service;
        service.plan({answer});
        const Relay relay(service.port(), thenClosed);
        QVERIFY(!Client(relay, request).readAll().isEmpty());
        QCOMPARE(relay.complaint(), complaint);
    }

    void proxy_name_isAskedForAndTakenAway()
    {
        const QByteArray asked = "POST http://h:80/x/y HTTP/1.1\r\nHost: h:80\r\nContent-Length: 3";
        RawServer service;
        service.plan({RawAnswer::http("200 OK", "body")});
        Relay relay(service.port(), thenClosed);
        relay.askForName("name", "secret");
        const QByteArray question = RawAnswer::http("407 Proxy", {}, {"Proxy-Authenticate: Basic realm=\"relay\""});
        for (const QByteArray &told :
             {QByteArray(), "\r\nProxy-Authorization: Basic " + QByteArray("name:x").toBase64()}) {
            const Client client(relay, asked + told + "\r\n\r\nabc");
            WAIT_FOR(client.received(), question.size());
        }
        QVERIFY(service.requests().isEmpty());
        const QByteArray right = "\r\nproxy-authorization: Basic " + QByteArray("name:secret").toBase64();
        QCOMPARE(Client(relay, asked + "\r\nProxy-Connection: Keep-Alive" + right + "\r\n\r\nabc").readAll(),
                 RawAnswer::http("200 OK", "body"));
        QCOMPARE(service.requests().size(), 1);
        QCOMPARE(service.requests().constFirst().head,
                 QByteArray("POST /x/y HTTP/1.1\r\nHost: h:80\r\nContent-Length: 3"));
        QCOMPARE(service.requests().constFirst().body, QByteArray("abc"));
        QCOMPARE(relay.requests().size(), 3);
        QCOMPARE(relay.complaint(), QString());
    }
};

TEST_MAIN(RelayTest)
#include "tst_relay.moc"
