// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/rawserver.h"
#include "support/testcase.h"

#include <QTcpSocket>

#include <cerrno>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
const QByteArray REQUEST = QByteArrayLiteral("POST /x HTTP/1.1\r\nHost: h\r\ncontent-length: 3\r\n\r\nabc");
}

/// The server that breaks HTTP on purpose must itself say exactly what it was told, and notice what was not planned.
class RawServerTest : public TestCase
{
    Q_OBJECT

private:
    /// Sends bytes over a fresh connection and reads until the server closes it.
    static QByteArray exchange(const RawServer &server, const QByteArray &bytes)
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, server.port());
        socket.write(bytes);
        // The server lives in this thread: only an event loop lets it answer.
        [&socket] { QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState); }();
        return socket.readAll();
    }

private Q_SLOTS:
    void request_whole_isKeptWithItsParts()
    {
        RawServer server;
        server.plan({QByteArrayLiteral("anything"), RawAnswer::Then::Close});
        QCOMPARE(exchange(server, REQUEST), QByteArray("anything"));
        QCOMPARE(server.requests().size(), 1);
        const RawRequest &request = server.requests().constFirst();
        QCOMPARE(request.line(), QByteArray("POST /x HTTP/1.1"));
        QCOMPARE(request.header("Content-Length"), QList<QByteArray>{"3"});
        QCOMPARE(request.header("Other"), QList<QByteArray>());
        QCOMPARE(request.body, QByteArray("abc"));
        QCOMPARE(server.complaint(), QString());
    }

    void answer_inPieces_isTheSameAnswer()
    {
        RawServer server;
        const QByteArray answer = RawAnswer::http("200 OK", "body", {"A: b"});
        server.plan({answer, RawAnswer::Then::Close, RawAnswer::When::RequestRead, 1});
        QCOMPARE(exchange(server, REQUEST), answer);
        QCOMPARE(answer, QByteArray("HTTP/1.1 200 OK\r\nA: b\r\nContent-Length: 4\r\n\r\nbody"));
    }

    void answer_early_needsNoRequest_data()
    {
        QTest::addColumn<int>("when");
        QTest::addColumn<QByteArray>("sent");
        QTest::newRow("connected") << static_cast<int>(RawAnswer::When::Connected) << QByteArray();
        QTest::newRow("head") << static_cast<int>(RawAnswer::When::HeadRead) << REQUEST.left(REQUEST.size() - 1);
    }

    void answer_early_needsNoRequest()
    {
        QFETCH(int, when);
        QFETCH(QByteArray, sent);
        RawServer server;
        server.plan({QByteArrayLiteral("early"), RawAnswer::Then::Close, static_cast<RawAnswer::When>(when)});
        QCOMPARE(exchange(server, sent), QByteArray("early"));
        QCOMPARE(server.complaint(), QString());
    }

    void answer_reset_endsWithoutAFarewell()
    {
        RawServer server;
        server.plan({{}, RawAnswer::Then::Reset});
        // By hand: Qt calls both kinds of end the same.
        const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(server.port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        QCOMPARE(::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        QCOMPARE(::send(socket, REQUEST.constData(), static_cast<size_t>(REQUEST.size()), 0), ssize_t(REQUEST.size()));
        QTRY_COMPARE(server.requests().size(), 1);
        char byte = 0;
        QCOMPARE(::recv(socket, &byte, 1, 0), ssize_t(-1));
        QCOMPARE(errno, ECONNRESET);
        ::close(socket);
    }

    void answer_held_isSentLater()
    {
        RawServer server;
        server.plan(RawAnswer::held());
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, server.port());
        socket.write(REQUEST);
        QTRY_COMPARE(server.requests().size(), 1);
        QCOMPARE(server.openConnections(), 1);
        server.send(0, {QByteArrayLiteral("late"), RawAnswer::Then::Close});
        QTRY_COMPARE(socket.bytesAvailable(), 4);
        QCOMPARE(socket.readAll(), QByteArray("late"));
        QTRY_COMPARE(server.openConnections(), 0);
    }

    void complaint_situation_isNamed_data()
    {
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QString>("complaint");
        QTest::newRow("surplus bytes") << REQUEST + "d" << QStringLiteral("bytes behind a request's end: d");
        QTest::newRow("no length") << QByteArrayLiteral("POST / HTTP/1.1\r\n\r\n")
                                   << QStringLiteral("a request with 0 lengths");
        QTest::newRow("two lengths") << QByteArrayLiteral("POST / HTTP/1.1\r\nContent-Length: 0\r\n"
                                                          "Content-Length: 0\r\n\r\n")
                                     << QStringLiteral("a request with 2 lengths");
    }

    void complaint_situation_isNamed()
    {
        QFETCH(QByteArray, sent);
        QFETCH(QString, complaint);
        RawServer server;
        server.plan({{}, RawAnswer::Then::Close});
        QCOMPARE(exchange(server, sent), QByteArray());
        QCOMPARE(server.complaint(), complaint);
    }

    void complaint_planAndRequestsDiffer_isMade()
    {
        RawServer server;
        server.plan({{}, RawAnswer::Then::Close});
        QCOMPARE(server.complaint(), QStringLiteral("1 planned answers that nobody asked for"));
        QCOMPARE(exchange(server, REQUEST), QByteArray());
        QCOMPARE(server.complaint(), QString());
        QTcpSocket unplanned;
        unplanned.connectToHost(QHostAddress::LocalHost, server.port());
        unplanned.write(REQUEST);
        QTRY_COMPARE(server.complaint(), QStringLiteral("a request that nothing was planned for"));
    }

    void planForAll_anyNumberOfRequests_isGood()
    {
        RawServer server;
        server.planForAll({QByteArrayLiteral("x"), RawAnswer::Then::Close});
        QCOMPARE(server.complaint(), QString());
        for (int i = 0; i < 3; ++i)
            QCOMPARE(exchange(server, REQUEST), QByteArray("x"));
        QCOMPARE(server.connections(), 3);
        QCOMPARE(server.complaint(), QString());
    }
};

TEST_MAIN(RawServerTest)
#include "tst_rawserver.moc"
