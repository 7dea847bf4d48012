// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "clientprobe.h"
#include "freshjournal.h"
#include "support/messagelog.h"
#include "support/rawserver.h"

#include <QNetworkReply>
#include <QTcpSocket>
#include <QTest>

Q_DECLARE_METATYPE(RawAnswer)

// What the tests of the client and a service on a raw socket have in common.

using Then = RawAnswer::Then;
using When = RawAnswer::When;

inline const QString DOCUMENT = QStringLiteral("<?xml version=\"1.0\"?>\n<Request>карта</Request>\n");
inline const QString CHECKED = QStringLiteral("check s1 150.00");
inline const QString PAID = QStringLiteral("pay s2");
inline const QString REFUSED = QStringLiteral("error 5 no such card");
inline const QString UNKNOWN = QStringLiteral("error -1 Unknown response");
inline const QString CLOSED = QStringLiteral("error 2 Connection closed");
// Qt by itself posts again when the connection ends before a status line was read, in at most four attempts.
constexpr int SENT_AGAIN = 4;

inline const QByteArray CHUNKED_HEAD = QByteArrayLiteral("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");

inline QByteArray chunked(const QByteArray &body, int chunkSize)
{
    QByteArray bytes;
    for (int i = 0; i < body.size(); i += chunkSize) {
        const QByteArray chunk = body.mid(i, chunkSize);
        bytes += QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n";
    }
    return bytes + "0\r\n\r\n";
}

/// Only what was seen as a registered payment may have advanced the journal, and once; it was a FreshJournal before.
inline void verifyJournal(const QString &seen)
{
    QCOMPARE(!FreshJournal::isThere(), seen.startsWith(QLatin1String("pay")));
    // A second advance finds no record any more, and says so.
    const QList<LogLine> said = MessageLog::takeIf(
        [](const LogLine &line) { return line.file == QLatin1String("src/parkomatdatastorage.cpp"); });
    QVERIFY2(said.isEmpty(), said.isEmpty() ? "" : qPrintable(toString(said.constFirst())));
}

inline int repliesOf(const ParkomatAccessManager &client)
{
    return client.findChildren<QNetworkReply *>().size();
}

/// While it lives, connections to its port of this machine are refused: it is bound, but nobody listens.
class RefusingPort
{
public:
    RefusingPort()
    {
        if (!m_holder.bind(QHostAddress(QHostAddress::LocalHost)))
            qFatal("no free port: %s", qPrintable(m_holder.errorString()));
    }

    [[nodiscard]] quint16 number() const { return m_holder.localPort(); }

private:
    QTcpSocket m_holder;
};

/// Rows of answers and what a client makes of them, and one exchange that verifies a row.
namespace WireExchange {
inline void addColumns()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<RawAnswer>("answer");
    // "%1" stands for the request's URL.
    QTest::addColumn<QString>("seen");
    QTest::addColumn<int>("mostTimes");
}

/// @param mostTimes how often Qt may post; if more than once, then it does so twice at least.
inline void addRow(const QByteArray &name, const RawAnswer &answer, const QString &seen, int mostTimes = 1)
{
    QTest::newRow(name) << QStringLiteral("ParkInfoPay") << answer << seen << mostTimes;
}

/// What the service has to say: whatever happens to an answer is tried with each.
struct Kind
{
    const char *name;
    QString operation;
    QByteArray body;
    QString seen;
    /// What is seen of a body that breaks off behind the root's start tag, as cut() does.
    QString seenIfCut;

    [[nodiscard]] QByteArray cut() const { return body.left(body.indexOf('>', body.indexOf("<Response")) + 4); }

    void addRow(const QByteArray &rowName, const RawAnswer &answer, const QString &rowSeen, int mostTimes = 1) const
    {
        QTest::addRow("%s: %s", name, rowName.constData()) << operation << answer << rowSeen << mostTimes;
    }
    void addAnswer(const QByteArray &rowName, const QByteArray &bytes, const QString &rowSeen) const
    {
        addRow(rowName, {bytes}, rowSeen);
    }
};

inline const QList<Kind> KINDS = {
    {"check", QStringLiteral("ParkingCheck"), Answers::CHECK, CHECKED, QStringLiteral("check  0.00")},
    {"pay", QStringLiteral("ParkInfoPay"), Answers::PAY, PAID, QStringLiteral("pay ")},
    {"refused", QStringLiteral("ParkInfoPay"), Answers::REFUSED_PAYMENT, REFUSED, QStringLiteral("error 5 ")}};

/// With the first manager Qt starts threads of its own that serve the whole process from then on: a test that counts
/// what is left does not count them.
inline void startThreadsOfQt()
{
    const MessageLog log;
    RawServer server;
    server.plan({RawAnswer::http("200 OK", Answers::CHECK)});
    useService(server.port());
    ParkomatAccessManager client;
    const ClientProbe probe(client);
    client.postData(QStringLiteral("X"), DOCUMENT);
    WAIT_FOR(probe.seen(), QStringList(CHECKED));
}

inline void verifyRequest(const RawRequest &request, const QString &operation, quint16 port)
{
    QCOMPARE(request.line(), "POST /api/" + operation.toUtf8() + " HTTP/1.1");
    QCOMPARE(request.header("Host"), QList<QByteArray>{"127.0.0.1:" + QByteArray::number(port)});
    QCOMPARE(request.header("Content-Type"), QList<QByteArray>{"application/soap+xml"});
    QCOMPARE(request.header("Content-Length"), QList<QByteArray>{QByteArray::number(DOCUMENT.toUtf8().size())});
    QCOMPARE(request.body, DOCUMENT.toUtf8());
}

/// Posts once and verifies what the row says about it, on both sides and in the journal.
inline void verify()
{
    QFETCH(QString, operation);
    QFETCH(RawAnswer, answer);
    QFETCH(QString, seen);
    QFETCH(int, mostTimes);
    FreshJournal::make();
    RawServer server;
    server.planForAll(answer);
    useService(server.port());
    ParkomatAccessManager client;
    const ClientProbe probe(client);
    QVERIFY(client.postData(operation, DOCUMENT));
    WAIT_FOR(probe.seen().size(), 1);
    WAIT_FOR(repliesOf(client), 0);
    WAIT_FOR(server.openConnections(), 0);
    const QString url = QStringLiteral("http://127.0.0.1:%1/api/%2").arg(server.port()).arg(operation);
    QCOMPARE(probe.seen(), QStringList(seen.contains(QLatin1String("%1")) ? seen.arg(url) : seen));
    verifyJournal(seen);
    QCOMPARE(server.complaint(), QString());
    const int times = server.requests().size();
    QVERIFY2(times >= (mostTimes > 1 ? 2 : 1) && times <= mostTimes, qPrintable(QString::number(times)));
    for (const RawRequest &request : server.requests())
        verifyRequest(request, operation, server.port());
    MessageLog::drop();
}
} // namespace WireExchange
