// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"
#include "wireexchange.h"

#include <QNetworkProxy>

namespace {
/// Names a service that only a proxy can reach: Qt never asks a proxy for this machine itself.
void useDistantService()
{
    useService(80);
    ParkomatSettings().setCashServiceHost(QStringLiteral("cash.invalid"));
}

/// While it lives, the application's connections go through a proxy on this machine.
class ProxyInUse
{
public:
    ProxyInUse(quint16 port, const QString &user, const QString &password)
    {
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), port, user, password));
    }
    ~ProxyInUse() { QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy)); }
    ProxyInUse(const ProxyInUse &) = delete;
    ProxyInUse &operator=(const ProxyInUse &) = delete;
};
} // namespace

/// The client behind an HTTP proxy of the application.
class ParkomatAccessManagerProxyTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void proxy_asksForAName_getsTheConfiguredOne()
    {
        RawServer proxy;
        const QByteArray challenge = RawAnswer::http("407 Proxy", {}, {"Proxy-Authenticate: Basic realm=\"r\""});
        proxy.plan({challenge});
        proxy.plan({RawAnswer::http("200 OK", Answers::CHECK)});
        useDistantService();
        const ProxyInUse inUse(proxy.port(), QStringLiteral("name"), QStringLiteral("secret"));
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        WAIT_FOR(probe.seen(), QStringList(CHECKED));
        QCOMPARE(proxy.requests().size(), 2);
        for (const RawRequest &request : proxy.requests()) {
            QCOMPARE(request.line(), QByteArray("POST http://cash.invalid:80/api/ParkingCheck HTTP/1.1"));
            QCOMPARE(request.body, DOCUMENT.toUtf8());
        }
        QCOMPARE(proxy.requests().at(1).header("Proxy-Authorization"),
                 QList<QByteArray>{"Basic " + QByteArray("name:secret").toBase64()});
        QCOMPARE(proxy.complaint(), QString());
        WAIT_FOR(proxy.openConnections(), 0);
        MessageLog::drop();
    }

    void proxy_refusesTheName_givesOneError_data()
    {
        QTest::addColumn<QString>("user");
        QTest::newRow("wrong name") << QStringLiteral("name");
        QTest::newRow("no name") << QString();
    }

    void proxy_refusesTheName_givesOneError()
    {
        QFETCH(QString, user);
        RawServer proxy;
        proxy.planForAll({RawAnswer::http("407 Proxy", {}, {"Proxy-Authenticate: Basic realm=\"r\""})});
        useDistantService();
        const ProxyInUse inUse(proxy.port(), user, QStringLiteral("wrong"));
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        WAIT_FOR(probe.seen(), QStringList(QStringLiteral("error 105 Proxy requires authentication")));
        QVERIFY2(proxy.requests().size() <= 3, qPrintable(QString::number(proxy.requests().size())));
        WAIT_FOR(repliesOf(client), 0);
        WAIT_FOR(proxy.openConnections(), 0);
        MessageLog::drop();
    }

    void proxy_refused_givesOneError()
    {
        // Qt's code for a refused connection, not the one for a refused proxy.
        const RefusingPort port;
        useDistantService();
        const ProxyInUse inUse(port.number(), QString(), QString());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(QStringLiteral("ParkingCheck"), DOCUMENT);
        WAIT_FOR(probe.seen().size(), 1);
        QCOMPARE(probe.seen(), QStringList(QStringLiteral("error 1 Connection refused")));
        MessageLog::drop();
    }
};

TEST_MAIN(ParkomatAccessManagerProxyTest)
#include "tst_parkomataccessmanagerproxy.moc"
