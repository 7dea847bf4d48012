// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"
#include "wireexchange.h"

Q_DECLARE_METATYPE(QUrlQuery)

/// What the client makes of the settings: the request for an operation.
class ParkomatAccessManagerUrlTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void prepareRequest_settings_makeTheUrl_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QByteArray>("url");
        const auto row = [](const char *name, const char *host, int port, const char *path, const char *operation,
                            const char *url) {
            QTest::newRow(name) << QString::fromUtf8(host) << port << QString::fromUtf8(path)
                                << QString::fromUtf8(operation) << QByteArray(url);
        };
        row("relative path", "cash.example", 13006, "api", "ParkingCheck",
            "http://cash.example:13006/api/ParkingCheck");
        row("absolute path", "cash.example", 80, "/api", "ParkInfoPay", "http://cash.example:80/api/ParkInfoPay");
        row("several folders", "h", 1, "a/b/c", "X", "http://h:1/a/b/c/X");
        row("slash at the end", "h", 1, "/api/", "X", "http://h:1/api//X");
        row("two slashes in front", "h", 1, "//api", "X", "http://h:1//api/X");
        row("a slash alone", "h", 1, "/", "X", "http://h:1//X");
        row("empty path", "h", 1, "", "X", "http://h:1/X");
        row("dots", "h", 1, "/a/../b/./c", "X", "http://h:1/a/../b/./c/X");
        row("not ASCII", "h", 1, "касса", "X", "http://h:1/%D0%BA%D0%B0%D1%81%D1%81%D0%B0/X");
        row("blanks", "h", 1, " a b", "X", "http://h:1/%20a%20b/X");
        row("question mark", "h", 1, "/a?b", "X", "http://h:1/a%3Fb/X");
        row("hash", "h", 1, "/a#b", "X", "http://h:1/a%23b/X");
        row("per cent is itself", "h", 1, "/a%2Fb", "X", "http://h:1/a%252Fb/X");
        row("operation as it is", "h", 1, "/a", "b/c d", "http://h:1/a/b/c%20d");
        row("empty operation", "h", 1, "/a", "", "http://h:1/a/");
        row("IPv4 address", "10.0.0.7", 1, "/a", "X", "http://10.0.0.7:1/a/X");
        row("IPv6 address", "::1", 1, "/a", "X", "http://[::1]:1/a/X");
        row("IPv6 address in brackets", "[::1]", 1, "/a", "X", "http://[::1]:1/a/X");
        row("host not ASCII", "касса.рф", 1, "/a", "X", "http://xn--80aa2a3aa.xn--p1ai:1/a/X");
        row("port 0", "h", 0, "/a", "X", "http://h:0/a/X");
        row("largest port", "h", 65535, "/a", "X", "http://h:65535/a/X");
        row("port beyond 16 bits", "h", 70000, "/a", "X", "http://h:4464/a/X");
        row("empty host", "", 1, "/a", "X", "http://:1/a/X");
        row("no host's characters", "a b", 1, "/a", "X", "http://:1/a/X");
        row("per cent in the host is itself", "h%41", 1, "/a", "X", "http://:1/a/X");
    }

    void prepareRequest_settings_makeTheUrl()
    {
        QFETCH(QString, host);
        QFETCH(int, port);
        QFETCH(QString, path);
        QFETCH(QString, operation);
        QFETCH(QByteArray, url);
        ParkomatSettings settings;
        settings.setCashServiceHost(host);
        settings.setCashServicePort(static_cast<unsigned short>(port));
        settings.setCashServicePath(path);
        const ParkomatAccessManager client;
        const QNetworkRequest request = client.prepareRequest(operation, QUrlQuery());
        QCOMPARE(request.url().toEncoded(), url);
        QCOMPARE(request.header(QNetworkRequest::ContentTypeHeader).toByteArray(), QByteArray("application/soap+xml"));
        QCOMPARE(request.rawHeaderList(), QList<QByteArray>{"Content-Type"});
    }

    void prepareRequest_nothingSet_isTheDefaultService()
    {
        const ParkomatAccessManager client;
        QCOMPARE(client.prepareRequest(ParkomatSettings::PARKING_CHECK, QUrlQuery()).url().toEncoded(),
                 QByteArray("http://localhost:13006/api/ParkingCheck"));
    }

    void prepareRequest_settingsChanged_seesThem()
    {
        const ParkomatAccessManager client;
        useService(1);
        QCOMPARE(client.prepareRequest(QStringLiteral("X"), QUrlQuery()).url().port(), 1);
        useService(2);
        QCOMPARE(client.prepareRequest(QStringLiteral("X"), QUrlQuery()).url().port(), 2);
    }

    void timeOut_client_setsNone()
    {
        const RefusingPort port;
        useService(port.number());
        ParkomatAccessManager client;
        QCOMPARE(client.prepareRequest(QStringLiteral("X"), QUrlQuery()).transferTimeout(), 0);
        QCOMPARE(managerOf(client)->transferTimeout(), 0);
        client.postData(QStringLiteral("X"), DOCUMENT);
        const auto *const reply = client.findChild<QNetworkReply *>();
        QVERIFY(reply);
        QCOMPARE(reply->request().transferTimeout(), 0);
        MessageLog::drop();
    }

    void prepareRequest_query_isAppendedUnlessEmpty_data()
    {
        QTest::addColumn<QUrlQuery>("query");
        QTest::addColumn<bool>("hasQuery");
        QTest::addColumn<QByteArray>("encoded");
        QTest::newRow("none") << QUrlQuery() << false << QByteArray();
        QTest::newRow("one") << QUrlQuery(QStringLiteral("a=b")) << true << QByteArray("a=b");
        QTest::newRow("two") << QUrlQuery(QStringLiteral("a=b&c=d e")) << true << QByteArray("a=b&c=d%20e");
        QTest::newRow("a name alone") << QUrlQuery(QStringLiteral("a")) << true << QByteArray("a");
    }

    void prepareRequest_query_isAppendedUnlessEmpty()
    {
        QFETCH(QUrlQuery, query);
        QFETCH(bool, hasQuery);
        QFETCH(QByteArray, encoded);
        const ParkomatAccessManager client;
        const QUrl url = client.prepareRequest(QStringLiteral("X"), query).url();
        QCOMPARE(url.hasQuery(), hasQuery);
        QCOMPARE(url.query(QUrl::FullyEncoded).toUtf8(), encoded);
        QCOMPARE(url.path(), QStringLiteral("/api/X"));
    }
};

TEST_MAIN(ParkomatAccessManagerUrlTest)
#include "tst_parkomataccessmanagerurl.moc"
