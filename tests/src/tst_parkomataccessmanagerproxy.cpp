// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "proxyinuse.h"
#include "support/testcase.h"
#include "wireexchange.h"

#include <QCryptographicHash>

namespace {
using WireExchange::addColumns;
using WireExchange::addRow;
using WireExchange::Kind;
using WireExchange::KINDS;

const QString NAME = QStringLiteral("name");
const QString PASSWORD = QStringLiteral("secret");
const QString REQUIRED = QStringLiteral("error 105 Proxy requires authentication");
const char BASIC[] = "Proxy-Authenticate: Basic realm=\"r\"";
const char DIGEST[] = "Proxy-Authenticate: Digest realm=\"r\", nonce=\"n\"";
const char UNHEARD_OF[] = "Proxy-Authenticate: Unheard-Of realm=\"r\"";

QByteArray urlOf(const QString &operation)
{
    return "http://cash.invalid:80/api/" + operation.toUtf8();
}

QByteArray challenge(const QByteArray &header, const QByteArray &body = {})
{
    return RawAnswer::http("407 Proxy", body, {header});
}

QByteArray md5(const QByteArray &text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
}

/// What the right name and password give for DIGEST. Qt counts in the URL's path alone, as towards a service.
QByteArray digestFor(const QString &operation)
{
    return "response=\"" + md5(md5("name:r:secret") + ":n:" + md5("POST:/api/" + operation.toUtf8())) + '"';
}

void verifyRequest(const RawRequest &request, const QString &operation)
{
    QCOMPARE(request.line(), "POST " + urlOf(operation) + " HTTP/1.1");
    QCOMPARE(request.header("Host"), QList<QByteArray>{"cash.invalid:80"});
    QCOMPARE(request.body, DOCUMENT.toUtf8());
}
} // namespace

/// The client behind an HTTP proxy of the application.
class ParkomatAccessManagerProxyTest : public TestCase
{
    Q_OBJECT

private:
    /// Posts once through the proxy and verifies that there is one signal, and nothing left of the exchange.
    static void exchange(const RawServer &proxy, const QString &operation, const QString &seen)
    {
        FreshJournal::make();
        useDistantService();
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(operation, DOCUMENT);
        WAIT_FOR(probe.seen().size(), 1);
        WAIT_FOR(repliesOf(client), 0);
        WAIT_FOR(proxy.openConnections(), 0);
        QCOMPARE(probe.seen(), QStringList(seen));
        verifyJournal(seen);
        for (const RawRequest &request : proxy.requests())
            verifyRequest(request, operation);
        QCOMPARE(proxy.complaint(), QString());
        MessageLog::drop();
    }

private Q_SLOTS:
    void proxy_asksForAName_getsTheConfiguredOne_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QByteArray>("asked");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("seen");
        QTest::addColumn<QByteArray>("authorization");
        const QByteArray basic = "Basic " + QByteArray("name:secret").toBase64();
        for (const Kind &kind : KINDS) {
            const auto row = [&kind](const char *name, const QByteArray &asked, const QByteArray &authorization) {
                QTest::addRow("%s: %s", kind.name, name)
                    << kind.operation << asked << kind.body << kind.seen << authorization;
            };
            row("basic", challenge(BASIC), basic);
            row("basic with a good body", challenge(BASIC, kind.body), basic);
            row("digest", challenge(DIGEST), digestFor(kind.operation));
            row("digest with a good body", challenge(DIGEST, kind.body), digestFor(kind.operation));
        }
    }

    void proxy_asksForAName_getsTheConfiguredOne()
    {
        QFETCH(QString, operation);
        QFETCH(QByteArray, asked);
        QFETCH(QByteArray, answer);
        QFETCH(QString, seen);
        QFETCH(QByteArray, authorization);
        RawServer proxy;
        proxy.plan({asked});
        proxy.plan({RawAnswer::http("200 OK", answer)});
        const ProxyInUse inUse(proxy.port(), NAME, PASSWORD);
        exchange(proxy, operation, seen);
        QCOMPARE(proxy.requests().size(), 2);
        QCOMPARE(proxy.requests().at(0).header("Proxy-Authorization"), QList<QByteArray>());
        const QList<QByteArray> told = proxy.requests().at(1).header("Proxy-Authorization");
        QCOMPARE(told.size(), 1);
        QVERIFY2(told.constFirst().contains(authorization), told.constFirst());
    }

    void proxy_refusesTheName_givesOneError_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QByteArray>("answer");
        // How the configured name, even an empty one, is told in the second request; empty: there is none.
        QTest::addColumn<QByteArray>("told");
        const auto rows = [](const QByteArray &kind, const QByteArray &body) {
            for (const QString &user : {NAME, QString()}) {
                const QByteArray name = user.toUtf8();
                const auto row = [&](const char *header, const QByteArray &told) {
                    QTest::addRow("%s, \"%s\", %s", kind.constData(), name.constData(), header)
                        << user << challenge(header, body) << told;
                };
                row(BASIC, "Basic " + (name + ":wrong").toBase64());
                row(DIGEST, "Digest username=\"" + name + '"');
                row(UNHEARD_OF, {});
                row("X: y", {});
            }
        };
        for (const Kind &kind : KINDS)
            rows(kind.name, kind.body);
        rows("no body", {});
    }

    void proxy_refusesTheName_givesOneError()
    {
        QFETCH(QString, user);
        QFETCH(QByteArray, answer);
        QFETCH(QByteArray, told);
        RawServer proxy;
        proxy.planForAll({answer});
        const ProxyInUse inUse(proxy.port(), user, QStringLiteral("wrong"));
        exchange(proxy, QStringLiteral("ParkInfoPay"), REQUIRED);
        // It has no other name to tell, so it is asked no further.
        QCOMPARE(proxy.requests().size(), told.isEmpty() ? 1 : 2);
        if (!told.isEmpty()) {
            const QByteArray authorization = proxy.requests().at(1).header("Proxy-Authorization").value(0);
            QVERIFY2(authorization.startsWith(told), authorization);
        }
    }

    void proxy_answer_givesOneSignal_data()
    {
        addColumns();
        for (const Kind &kind : KINDS) {
            const QByteArray good = RawAnswer::http("200 OK", kind.body);
            kind.addAnswer("passed on", good, kind.seen);
            kind.addAnswer("401 with a good body",
                           RawAnswer::http("401 Unauthorized", kind.body, {"WWW-Authenticate: Basic realm=\"r\""}),
                           QStringLiteral("error 204 Host requires authentication"));
            kind.addAnswer("502 with a good body", RawAnswer::http("502 Bad Gateway", kind.body),
                           QStringLiteral("error 499 Error transferring %1 - server replied: Bad Gateway"));
            kind.addRow("closed in the body", {good.chopped(5), Then::Close}, CLOSED);
            kind.addRow("reset in the body", {good.chopped(5), Then::Reset}, CLOSED);
        }
        const QByteArray status = QByteArrayLiteral("HTTP/1.1 200 OK\r\n");
        addRow("closed before the head", {{}, Then::Close}, CLOSED, SENT_AGAIN);
        addRow("reset before the head", {{}, Then::Reset}, CLOSED, SENT_AGAIN);
        addRow("closed in the head", {status + "Content-Le", Then::Close}, CLOSED, SENT_AGAIN);
        addRow("reset in the head", {status + "Content-Le", Then::Reset}, CLOSED, SENT_AGAIN);
        addRow("closed behind the head", {status + "Content-Length: 10\r\n\r\n", Then::Close}, CLOSED);
        addRow("reset behind the head", {status + "Content-Length: 10\r\n\r\n", Then::Reset}, CLOSED);
        addRow("closed in the head of a challenge", {challenge(BASIC).chopped(2), Then::Close}, CLOSED, SENT_AGAIN);
    }

    void proxy_answer_givesOneSignal()
    {
        QFETCH(QString, operation);
        QFETCH(RawAnswer, answer);
        QFETCH(QString, seen);
        QFETCH(int, mostTimes);
        RawServer proxy;
        proxy.planForAll(answer);
        const ProxyInUse inUse(proxy.port(), NAME, PASSWORD);
        exchange(proxy, operation,
                 seen.contains(QLatin1String("%1")) ? seen.arg(QString::fromUtf8(urlOf(operation))) : seen);
        const int times = proxy.requests().size();
        QVERIFY2(times >= (mostTimes > 1 ? 2 : 1) && times <= mostTimes, qPrintable(QString::number(times)));
    }

    void proxy_refused_givesOneError()
    {
        // Qt's code for a refused connection, not the one for a refused proxy.
        const RefusingPort port;
        FreshJournal::make();
        useDistantService();
        const ProxyInUse inUse(port.number());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(QStringLiteral("ParkInfoPay"), DOCUMENT);
        WAIT_FOR(probe.seen().size(), 1);
        WAIT_FOR(repliesOf(client), 0);
        QCOMPARE(probe.seen(), QStringList(QStringLiteral("error 1 Connection refused")));
        verifyJournal(probe.seen().constFirst());
        MessageLog::drop();
    }
};

TEST_MAIN(ParkomatAccessManagerProxyTest)
#include "tst_parkomataccessmanagerproxy.moc"
