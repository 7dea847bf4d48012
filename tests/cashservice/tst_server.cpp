// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "database.h"
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QFile>
#include <QJsonArray>

/// HTTP: what is taken, what is not, and how it is answered.
class ServerTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void request_ofHttpTrouble_getsItsStatus_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const QByteArray &bytes, int status) {
            QTest::newRow(name) << bytes << status;
        };
        const QByteArray good = HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck());
        row("good", good, 200);
        row("with a query", QByteArray(good).replace("Check HTTP", "Check?a=b HTTP"), 200);
        row("another path", QByteArray(good).replace("/api/", "/apis/"), 404);
        row("a path below", QByteArray(good).replace("Check HTTP", "Check/ HTTP"), 404);
        row("a doubled slash", QByteArray(good).replace("/api/", "/api//"), 404);
        row("another operation", QByteArray(good).replace("Check HTTP", "Checks HTTP"), 404);
        row("an operation in lower case", QByteArray(good).replace("ParkingCheck HTTP", "parkingcheck HTTP"), 404);
        row("GET", HttpClient::request("GET", "/api/ParkingCheck", ""), 405);
        row("GET elsewhere", HttpClient::request("GET", "/", ""), 404);
        row("PUT", HttpClient::request("PUT", "/api/ParkInfoPay", "x"), 405);
        row("DELETE", HttpClient::request("DELETE", "/api/ParkInfoPay", ""), 405);
        row("no method", "PARK /api/ParkingCheck HTTP/1.1\r\n\r\n", 400);
        row("no HTTP", "hello\r\n\r\n", 400);
        row("no length", CHECK_HEAD + "\r\n", 411);
        row("two lengths in one", CHECK_HEAD + "Content-Length: 1, 1\r\n\r\nx", 400);
        row("length below zero", CHECK_HEAD + "Content-Length: -1\r\n\r\n", 400);
        row("length that is no number", CHECK_HEAD + "Content-Length: x\r\n\r\n", 400);
        row("length and chunks", CHECK_HEAD + "Content-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400);
        row("two lengths", CHECK_HEAD + "Content-Length: 1\r\nContent-Length: 1\r\n\r\nx", 400);
        row("another coding", CHECK_HEAD + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", 501);
        row("two codings", CHECK_HEAD + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n",
            501);
        row("length beyond the limit, no body", CHECK_HEAD + "Content-Length: 65537\r\n\r\n", 413);
        row("length of 64 bits", CHECK_HEAD + "Content-Length: 18446744073709551615\r\n\r\n", 413);
        row("length beyond 64 bits", CHECK_HEAD + "Content-Length: 18446744073709551617\r\n\r\n", 413);
        row("with a range", QByteArray(good).replace("Host:", "Range: bytes=0-3\r\nHost:"), 200);
        row("packed", CHECK_HEAD + "Content-Length: 1\r\nContent-Encoding: gzip\r\n\r\nx", 415);
        row("body at the limit", CHECK_HEAD + "Content-Length: 65536\r\n\r\n" + QByteArray(65'536, 'x'), 200);
        row("body beyond the limit", CHECK_HEAD + "Content-Length: 65537\r\n\r\n" + QByteArray(65'537, 'x'), 413);
        row("endless chunks",
            CHECK_HEAD + "Transfer-Encoding: chunked\r\n\r\n" +
                QByteArray("400\r\n" + QByteArray(1'024, 'x') + "\r\n").repeated(80),
            413);
        row("head beyond the limit", CHECK_HEAD + "X: " + QByteArray(8'192, 'x') + "\r\n\r\n", 431);
        row("many headers", CHECK_HEAD + QByteArray("X: y\r\n").repeated(2'000) + "\r\n", 431);
        row("address beyond the limit", "GET /" + QByteArray(9'000, 'x') + " HTTP/1.1\r\n\r\n", 431);
        row("a line that does not end", QByteArray(20'000, 'x'), 431);
    }

    void request_ofHttpTrouble_getsItsStatus()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const int, status);
        const RunningService service;
        HttpClient client(service.port());
        client.send(bytes);
        QCOMPARE(client.read().status, status);
        verifyStillServes(service);
    }

    void request_inChunks_isTaken()
    {
        const RunningService service;
        HttpClient client(service.port());
        const QByteArray body = Requests::parkingCheck();
        client.send(CHECK_HEAD + "Transfer-Encoding: chunked\r\n\r\n" + QByteArray::number(body.size(), 16) + "\r\n" +
                    body + "\r\n0\r\n\r\n");
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
    }

    void request_thatWaitsForAGoOn_isTakenAndNotedWhole()
    {
        const RunningService service;
        HttpClient client(service.port());
        const QByteArray body = Requests::parkingCheck();
        const QByteArray head =
            CHECK_HEAD + "Expect: 100-continue\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n";
        client.send(head);
        QCOMPARE(client.read().status, 100);
        client.send(body);
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
        const QJsonArray list =
            adminJson(service.port(), "/admin/requests").value(QStringLiteral("requests")).toArray();
        QCOMPARE(list.size(), 1);
        const QJsonObject request = list.at(0).toObject().value(QStringLiteral("request")).toObject();
        QCOMPARE(QByteArray::fromBase64(request.value(QStringLiteral("bytes")).toString().toLatin1()), head + body);
    }

    void request_tooLongThatWaitsForAGoOn_isToldSoInstead()
    {
        const RunningService service;
        HttpClient client(service.port());
        client.send(CHECK_HEAD + "Expect: 100-continue\r\nContent-Length: 65537\r\n\r\n");
        const HttpClient::Answer answer = client.read();
        QCOMPARE(answer.status, 413);
        QCOMPARE(answer.body, QByteArray("413 Payload Too Large\n"));
        QCOMPARE(HttpClient::header(answer.head, "connection"), QByteArray("close"));
        QVERIFY(client.isClosedByService());
        const QJsonObject seen = adminJson(service.port(), "/admin/requests");
        QCOMPARE(seen.value(QStringLiteral("count")).toInt(), 1);
    }

    void connection_kept_servesOneRequestAfterTheOther()
    {
        const RunningService service;
        HttpClient client(service.port());
        const QByteArray request = HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck());
        client.send(request);
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
        // The next two come at once.
        client.send(request + request);
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
    }

    void connection_thatSaysClose_isClosed_data()
    {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("in a header") << QByteArray("HTTP/1.1") << QByteArray("Connection: close\r\n");
        QTest::newRow("by its version") << QByteArray("HTTP/1.0") << QByteArray();
    }

    void connection_thatSaysClose_isClosed()
    {
        QFETCH(const QByteArray, version);
        QFETCH(const QByteArray, header);
        const RunningService service;
        HttpClient client(service.port());
        client.send(HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck())
                        .replace("HTTP/1.1", version)
                        .replace("Host:", header + "Host:"));
        const HttpClient::Answer answer = client.read();
        QCOMPARE(answer.status, 200);
        QCOMPARE(HttpClient::header(answer.head, "connection"), QByteArray("close"));
        QCOMPARE(HttpClient::header(answer.head, "keep-alive"), QByteArray());
        QVERIFY(client.isClosedByService());
    }

    void body_ofARequestThatHasNone_isNotTheNextRequest_data()
    {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const QByteArray &head, int status) {
            QTest::newRow(name) << head << status;
        };
        const QByteArray size =
            QByteArray::number(HttpClient::request("POST", "/api/ParkInfoPay", Requests::parkInfoPay()).size());
        const QByteArray length = "Content-Length: " + size + "\r\n";
        const QByteArray get = "GET /api/ParkingCheck HTTP/1.1\r\n";
        row("GET with a length", get + length, 405);
        row("GET in chunks", get + "Transfer-Encoding: chunked\r\n", 405);
        row("GET with a blank behind the name", get + "Content-Length : " + size + "\r\n", 405);
        row("GET with a bare line feed", get + "Content-Length: " + size + "\nA: b\r\n", 405);
        row("OPTIONS with a length", "OPTIONS /api/ParkingCheck HTTP/1.1\r\n" + length, 405);
        row("OPTIONS in chunks", "OPTIONS /api/ParkingCheck HTTP/1.1\r\nTransfer-Encoding: chunked\r\n", 405);
        row("DELETE with a length", "DELETE /admin/requests HTTP/1.1\r\nHost: localhost\r\n" + length, 200);
        row("CONNECT with a length", "CONNECT /api/ParkingCheck HTTP/1.1\r\n" + length, 400);
        row("two lengths", CHECK_HEAD + "Content-Length: 0\r\n" + length, 400);
        row("no length", CHECK_HEAD, 411);
        row("another coding", CHECK_HEAD + "Transfer-Encoding: identity\r\n", 501);
        row("a form without a boundary",
            "POST /api/ParkingCheck HTTP/1.1\r\nContent-Type: multipart/form-data\r\n" + length, 400);
        row("another HTTP", "POST /api/ParkingCheck HTTP/3\r\n" + length, 400);
        row("a range that is none", CHECK_HEAD + "Range: bytes=x\r\n" + length, 416);
    }

    void body_ofARequestThatHasNone_isNotTheNextRequest()
    {
        QFETCH(const QByteArray, head);
        QFETCH(const int, status);
        RunningService service;
        HttpClient client(service.port());
        client.send(head + "\r\n" + HttpClient::request("POST", "/api/ParkInfoPay", Requests::parkInfoPay()));
        const HttpClient::Answer answer = client.read();
        QCOMPARE(answer.status, status);
        QCOMPARE(HttpClient::header(answer.head, "connection"), QByteArray("close"));
        QCOMPARE(HttpClient::header(answer.head, "keep-alive"), QByteArray());
        QVERIFY(client.isClosedByService());
        QVERIFY(service.ledger().payments().empty());
    }

    void answer_withMoreToFollow_saysForHowLong()
    {
        cash::Limits limits;
        limits.idle = std::chrono::seconds(7);
        const RunningService service(limits);
        const QByteArray head = HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).head;
        QCOMPARE(HttpClient::header(head, "keep-alive"), QByteArray("timeout=7"));
        QCOMPARE(HttpClient::header(head, "connection"), QByteArray());
    }

    void database_broken_isToldToEveryClient_data()
    {
        QTest::addColumn<QByteArray>("cardUid");
        QTest::newRow("a card that would be paid for") << QByteArray("78563412");
        QTest::newRow("a card that would be refused") << QByteArray("00000000");
    }

    void database_broken_isToldToEveryClient()
    {
        QFETCH(const QByteArray, cardUid);
        const std::string file = (WorkDirectory::path() + QStringLiteral("/broken.db")).toStdString();
        QFile::remove(QString::fromStdString(file));
        const RunningService service({}, file);
        cash::Database(file).run("DROP TABLE payments; DROP TABLE log");
        Requests::Values values;
        values.cardUid = cardUid;
        const HttpClient::Answer answer = HttpClient::parkInfoPay(service.port(), Requests::parkInfoPay(values));
        QCOMPARE(answer.status, 200);
        QCOMPARE(resultCode(answer.body), QByteArray("5"));
        for (const char *path : {"/admin/payments", "/admin/conflicts"}) {
            const HttpClient::Answer told = HttpClient::exchange(service.port(), "GET", path);
            QCOMPARE(told.status, 500);
            QVERIFY(jsonOf(told).value(QStringLiteral("error")).toString().startsWith(QLatin1String("the database")));
            QVERIFY(!told.head.contains("EXCEPTION_WHAT"));
        }
    }

    void port_thatIsTaken_isNotShared()
    {
        const RunningService service;
        cash::Ledger ledger(":memory:");
        cash::Service other(cash::seededCarPark(NOW), ledger, cash::stoppedClock(NOW));
        cash::Server server(other, "/api");
        try {
            server.start("127.0.0.1", service.port());
            QFAIL("the port was shared");
        } catch (const cash::ListenError &error) {
            QVERIFY(QByteArray(error.what()).contains("Address already in use"));
        }
    }

    void path_inAnyForm_isTheSame_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("url");
        QTest::newRow("with slash") << QByteArray("/api") << QByteArray("/api");
        QTest::newRow("without") << QByteArray("api") << QByteArray("/api");
        QTest::newRow("slash behind") << QByteArray("/api/") << QByteArray("/api");
        QTest::newRow("two steps") << QByteArray("a/b.c") << QByteArray("/a/b.c");
        QTest::newRow("none") << QByteArray("/") << QByteArray("");
    }

    void path_inAnyForm_isTheSame()
    {
        QFETCH(const QByteArray, path);
        QFETCH(const QByteArray, url);
        cash::Ledger ledger(":memory:");
        cash::Service service(cash::seededCarPark(NOW), ledger, cash::stoppedClock(NOW));
        cash::Server server(service, path.toStdString());
        server.start("127.0.0.1", 0);
        QCOMPARE(QByteArray::fromStdString(server.url()),
                 "http://127.0.0.1:" + QByteArray::number(server.port()) + url);
        QCOMPARE(HttpClient::exchange(server.port(), "POST", url + "/ParkingCheck", Requests::parkingCheck()).status,
                 200);
    }
};

TEST_MAIN(ServerTest)
#include "tst_server.moc"
