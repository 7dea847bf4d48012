// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "adminapi.h"
#include "database.h"
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <thread>

namespace {
QJsonObject json(const HttpClient::Answer &answer)
{
    return QJsonDocument::fromJson(answer.body).object();
}

QJsonObject admin(const RunningService &service, const char *path)
{
    return json(HttpClient::exchange(service.port(), "GET", path));
}

cash::Limits shortOfTime()
{
    cash::Limits limits;
    limits.request = std::chrono::milliseconds(300);
    limits.idle = std::chrono::milliseconds(300);
    return limits;
}

cash::Limits manyConnections(int connections)
{
    cash::Limits limits;
    limits.connections = connections;
    return limits;
}

const QByteArray HEAD = "POST /api/ParkingCheck HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/soap+xml\r\n";
} // namespace

/// HTTP: what is taken, what is not, who waits for whom; and /admin.
class ServerTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    static void verifyStillServes(const RunningService &service)
    {
        QCOMPARE(resultCode(HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).body), QByteArray("1"));
    }

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
        row("no length", HEAD + "\r\n", 411);
        row("two lengths in one", HEAD + "Content-Length: 1, 1\r\n\r\nx", 400);
        row("length below zero", HEAD + "Content-Length: -1\r\n\r\n", 400);
        row("length that is no number", HEAD + "Content-Length: x\r\n\r\n", 400);
        row("length and chunks", HEAD + "Content-Length: 1\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400);
        row("two lengths", HEAD + "Content-Length: 1\r\nContent-Length: 1\r\n\r\nx", 400);
        row("another coding", HEAD + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", 501);
        row("two codings", HEAD + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 501);
        row("length beyond the limit, no body", HEAD + "Content-Length: 65537\r\n\r\n", 413);
        row("length of 64 bits", HEAD + "Content-Length: 18446744073709551615\r\n\r\n", 413);
        row("length beyond 64 bits", HEAD + "Content-Length: 18446744073709551617\r\n\r\n", 413);
        row("with a range", QByteArray(good).replace("Host:", "Range: bytes=0-3\r\nHost:"), 200);
        row("packed", HEAD + "Content-Length: 1\r\nContent-Encoding: gzip\r\n\r\nx", 415);
        row("body at the limit", HEAD + "Content-Length: 65536\r\n\r\n" + QByteArray(65'536, 'x'), 200);
        row("body beyond the limit", HEAD + "Content-Length: 65537\r\n\r\n" + QByteArray(65'537, 'x'), 413);
        row("endless chunks",
            HEAD + "Transfer-Encoding: chunked\r\n\r\n" +
                QByteArray("400\r\n" + QByteArray(1'024, 'x') + "\r\n").repeated(80),
            413);
        row("head beyond the limit", HEAD + "X: " + QByteArray(8'192, 'x') + "\r\n\r\n", 431);
        row("many headers", HEAD + QByteArray("X: y\r\n").repeated(2'000) + "\r\n", 431);
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
        client.send(HEAD + "Transfer-Encoding: chunked\r\n\r\n" + QByteArray::number(body.size(), 16) + "\r\n" + body +
                    "\r\n0\r\n\r\n");
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
    }

    void request_thatWaitsForAGoOn_isTakenAndNotedWhole()
    {
        const RunningService service;
        HttpClient client(service.port());
        const QByteArray body = Requests::parkingCheck();
        const QByteArray head =
            HEAD + "Expect: 100-continue\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n";
        client.send(head);
        QCOMPARE(client.read().status, 100);
        client.send(body);
        QCOMPARE(resultCode(client.read().body), QByteArray("1"));
        const QJsonArray list = admin(service, "/admin/requests").value(QStringLiteral("requests")).toArray();
        QCOMPARE(list.size(), 1);
        const QJsonObject request = list.at(0).toObject().value(QStringLiteral("request")).toObject();
        QCOMPARE(QByteArray::fromBase64(request.value(QStringLiteral("bytes")).toString().toLatin1()), head + body);
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
        row("DELETE with a length", "DELETE /admin/requests HTTP/1.1\r\n" + length, 200);
        row("CONNECT with a length", "CONNECT /api/ParkingCheck HTTP/1.1\r\n" + length, 400);
        row("two lengths", HEAD + "Content-Length: 0\r\n" + length, 400);
        row("no length", HEAD, 411);
        row("another coding", HEAD + "Transfer-Encoding: identity\r\n", 501);
        row("a form without a boundary",
            "POST /api/ParkingCheck HTTP/1.1\r\nContent-Type: multipart/form-data\r\n" + length, 400);
        row("another HTTP", "POST /api/ParkingCheck HTTP/3\r\n" + length, 400);
        row("a range that is none", HEAD + "Range: bytes=x\r\n" + length, 416);
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

    void client_thatStopsSending_isToldSoAndPutOff_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("in the first line") << QByteArray("POST /api/Pa");
        QTest::newRow("in the head") << HEAD;
        QTest::newRow("in the body") << HEAD + "Content-Length: 100\r\n\r\n<Req";
        QTest::newRow("in a chunk") << HEAD + "Transfer-Encoding: chunked\r\n\r\n64\r\n<Req";
    }

    void client_thatStopsSending_isToldSoAndPutOff()
    {
        QFETCH(const QByteArray, bytes);
        const RunningService service(shortOfTime());
        HttpClient client(service.port());
        client.send(bytes);
        QCOMPARE(client.read().status, 408);
        QVERIFY(client.isClosedByService());
    }

    void client_thatDripsForEver_isPutOffInTime()
    {
        const RunningService service(shortOfTime());
        HttpClient client(service.port());
        client.send(HEAD + "X: ");
        QElapsedTimer timer;
        timer.start();
        HttpClient::Answer answer;
        // Each byte comes well within any limit for a single one.
        while (answer.status == 0 && timer.elapsed() < 10'000) {
            client.send("x");
            answer = client.read(20);
        }
        QCOMPARE(answer.status, 408);
    }

    void client_thatSaysNothing_isPutOff()
    {
        const RunningService service(shortOfTime());
        HttpClient client(service.port());
        QVERIFY(client.isConnected());
        QVERIFY(client.isClosedByService());
    }

    void clients_slowAndSilent_holdUpNobody()
    {
        const RunningService service;
        std::vector<std::unique_ptr<HttpClient>> clients;
        for (int i = 0; i < 100; ++i) {
            clients.push_back(std::make_unique<HttpClient>(service.port()));
            clients.back()->send(i % 2 == 0 ? HEAD : QByteArray());
        }
        QElapsedTimer timer;
        timer.start();
        verifyStillServes(service);
        // Far below the five and ten seconds that the silent ones may take.
        QVERIFY2(timer.elapsed() < 2'000, qPrintable(QString::number(timer.elapsed())));
    }

    void client_thatReadsNothing_holdsUpNobody()
    {
        const RunningService service(shortOfTime());
        HttpClient client(service.port());
        const QByteArray request = HttpClient::request("GET", "/admin", "");
        client.send(request.repeated(200));
        verifyStillServes(service);
    }

    void connections_beyondTheLimit_areRefusedAndLaterServed()
    {
        const RunningService service(manyConnections(2));
        auto first = std::make_unique<HttpClient>(service.port());
        HttpClient second(service.port());
        const QByteArray request = HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck());
        first->send(request);
        second.send(request);
        QCOMPARE(first->read().status, 200);
        QCOMPARE(second.read().status, 200);
        HttpClient third(service.port());
        QCOMPARE(third.read().status, 503);
        QVERIFY(third.isClosedByService());
        first.reset();
        bool isServed = false; // QTRY_VERIFY asks again after it has got its answer
        QTRY_VERIFY(isServed =
                        isServed || HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).status == 200);
    }

    void contentType_inAnyWriting_isTheSame_data()
    {
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<QByteArray>("code");
        const auto row = [](const char *contentType, const char *code) {
            QTest::newRow(contentType) << QByteArray(contentType) << QByteArray(code);
        };
        row("application/soap+xml", "1");
        row("Application/SOAP+XML", "1");
        row("application/soap+xml ; charset=utf-8", "1");
        row("application/soap+xmls", "0");
        row("application/soap +xml", "0");
        row(";", "0");
    }

    void contentType_inAnyWriting_isTheSame()
    {
        QFETCH(const QByteArray, contentType);
        QFETCH(const QByteArray, code);
        const RunningService service;
        HttpClient client(service.port());
        client.send(HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck(), contentType));
        QCOMPARE(resultCode(client.read().body), code);
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
            QVERIFY(json(told).value(QStringLiteral("error")).toString().startsWith(QLatin1String("the database")));
            QVERIFY(!told.head.contains("EXCEPTION_WHAT"));
        }
    }

    void clients_atOnce_loseAndDoubleNoPayment()
    {
        constexpr int clients = 32;
        constexpr int each = 20;
        RunningService service({}, (WorkDirectory::path() + QStringLiteral("/clients.db")).toStdString());
        std::atomic<int> succeeded = 0;
        std::vector<std::thread> threads;
        for (int client = 0; client < clients; ++client) {
            threads.emplace_back([&service, &succeeded, client] {
                for (int i = 0; i < each; ++i) {
                    const QByteArray body = Requests::parkInfoPay(Requests::numbered(client * each + i));
                    const QByteArray first = HttpClient::parkInfoPay(service.port(), body).body;
                    const QByteArray second = HttpClient::parkInfoPay(service.port(), body).body;
                    succeeded += resultCode(first) == "1" && first == second ? 1 : 0;
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(succeeded.load(), clients * each);
        const std::vector<cash::LogRow> payments = service.ledger().payments();
        QCOMPARE(int(payments.size()), clients * each);
        std::set<std::int64_t> uins;
        for (const cash::LogRow &payment : payments)
            uins.insert(payment.uin);
        QCOMPARE(int(uins.size()), clients * each);
        const QByteArray answer = HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).body;
        QCOMPARE(resultCode(answer), QByteArray("3"));
    }

    void stop_whileClientsAreConnected_endsAtOnce()
    {
        RunningService service;
        HttpClient silent(service.port());
        HttpClient slow(service.port());
        slow.send(HEAD);
        verifyStillServes(service);
        QElapsedTimer timer;
        timer.start();
        service.stop();
        QVERIFY(timer.elapsed() < 2'500);
        QVERIFY(silent.isClosedByService());
        HttpClient late(service.port());
        QVERIFY(!late.isConnected());
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

    void admin_requests_areTheBytesInOrder()
    {
        const RunningService service;
        HttpClient client(service.port());
        const QByteArray first = HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck())
                                     .replace("Host:", "zeta: 1\r\nALPHA:  2\r\nHost:");
        const QByteArray second = HttpClient::request("POST", "/api/ParkInfoPay", "\xFF");
        client.send(first);
        const HttpClient::Answer firstAnswer = client.read();
        client.send(second);
        (void)client.read();
        client.send(HttpClient::request("GET", "/nowhere", ""));
        (void)client.read();
        const QJsonObject seen = admin(service, "/admin/requests");
        QCOMPARE(seen.value(QStringLiteral("count")).toInt(), 3);
        const QJsonArray list = seen.value(QStringLiteral("requests")).toArray();
        QCOMPARE(list.size(), 3);
        const QJsonObject request = list.at(0).toObject().value(QStringLiteral("request")).toObject();
        QCOMPARE(QByteArray::fromBase64(request.value(QStringLiteral("bytes")).toString().toLatin1()), first);
        QCOMPARE(request.value(QStringLiteral("startLine")).toString(),
                 QStringLiteral("POST /api/ParkingCheck HTTP/1.1"));
        const QJsonArray headers = request.value(QStringLiteral("headers")).toArray();
        QCOMPARE(headers.at(0).toArray(), QJsonArray({QStringLiteral("zeta"), QStringLiteral("1")}));
        QCOMPARE(headers.at(1).toArray(), QJsonArray({QStringLiteral("ALPHA"), QStringLiteral("2")}));
        QCOMPARE(request.value(QStringLiteral("body")).toString().toUtf8(), Requests::parkingCheck());
        const QJsonObject answer = list.at(0).toObject().value(QStringLiteral("answer")).toObject();
        QCOMPARE(QByteArray::fromBase64(answer.value(QStringLiteral("bytes")).toString().toLatin1()),
                 firstAnswer.head + firstAnswer.body);
        const QJsonObject last = list.at(2).toObject();
        QCOMPARE(last.value(QStringLiteral("number")).toInt(), 3);
        QVERIFY(last.value(QStringLiteral("answer"))
                    .toObject()
                    .value(QStringLiteral("startLine"))
                    .toString()
                    .contains(QLatin1String("404")));
    }

    void admin_requestsDeleted_countFromZero()
    {
        const RunningService service;
        verifyStillServes(service);
        QCOMPARE(HttpClient::exchange(service.port(), "DELETE", "/admin/requests").status, 200);
        QCOMPARE(admin(service, "/admin/requests").value(QStringLiteral("count")).toInt(), 0);
        verifyStillServes(service);
        const QJsonObject seen = admin(service, "/admin/requests");
        QCOMPARE(seen.value(QStringLiteral("count")).toInt(), 1);
        QCOMPARE(
            seen.value(QStringLiteral("requests")).toArray().at(0).toObject().value(QStringLiteral("number")).toInt(),
            2);
    }

    void admin_requests_keepTheLastThousand()
    {
        cash::Journal journal;
        for (int i = 0; i < 1'001; ++i)
            journal.addAnswer(journal.begin("r" + std::to_string(i)), "a");
        journal.addAnswer(1, "late");
        QCOMPARE(journal.count(), std::uint64_t(1'001));
        const std::vector<cash::Exchange> kept = journal.exchanges();
        QCOMPARE(kept.size(), std::size_t(1'000));
        QCOMPARE(kept.front().request, std::string("r1"));
        QCOMPARE(kept.front().answer, std::string("a"));
    }

    void admin_sessionsAndPayments_areListed()
    {
        const RunningService service;
        Requests::Values values;
        values.amount = "5000";
        (void)HttpClient::parkInfoPay(service.port(), Requests::parkInfoPay(values));
        values.amount = "6000";
        (void)HttpClient::parkInfoPay(service.port(), Requests::parkInfoPay(values));
        const QJsonArray sessions = admin(service, "/admin/sessions").value(QStringLiteral("sessions")).toArray();
        QCOMPARE(sessions.size(), 10);
        const QJsonObject demo = sessions.last().toObject();
        QCOMPARE(demo.value(QStringLiteral("uid")).toString(), QStringLiteral("12345678"));
        QCOMPARE(demo.value(QStringLiteral("cardUid")).toString(), QStringLiteral("78563412"));
        QCOMPARE(demo.value(QStringLiteral("owed")).toInt(), 10000);
        QCOMPARE(demo.value(QStringLiteral("paid")).toInt(), 5000);
        QCOMPARE(demo.value(QStringLiteral("state")).toString(), QStringLiteral("parked"));
        const QJsonObject payments = admin(service, "/admin/payments");
        QCOMPARE(payments.value(QStringLiteral("count")).toInt(), 1);
        const QJsonObject payment = payments.value(QStringLiteral("payments")).toArray().at(0).toObject();
        QCOMPARE(payment.value(QStringLiteral("uin")).toInt(), 1187);
        QCOMPARE(payment.value(QStringLiteral("amount")).toInt(), 5000);
        QCOMPARE(payment.value(QStringLiteral("time")).toString(), QStringLiteral("2024-03-07T14:05:09"));
        const QJsonObject conflicts = admin(service, "/admin/conflicts");
        QCOMPARE(conflicts.value(QStringLiteral("count")).toInt(), 2);
    }

    void admin_faults_areSetListedAndRemoved()
    {
        const RunningService service;
        const auto set = [&service](const QByteArray &body) {
            return HttpClient::exchange(service.port(), "POST", "/admin/faults", body);
        };
        const HttpClient::Answer added = set(R"({"rule": "ParkingCheck:status=500"})");
        QCOMPARE(added.status, 201);
        QCOMPARE(json(added).value(QStringLiteral("id")).toInt(), 1);
        QCOMPARE(set(R"({"rule": "any#2:empty"})").status, 201);
        QCOMPARE(HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).status, 500);
        const QJsonArray faults = admin(service, "/admin/faults").value(QStringLiteral("faults")).toArray();
        QCOMPARE(faults.size(), 2);
        QCOMPARE(faults.at(0).toObject().value(QStringLiteral("rule")).toString(),
                 QStringLiteral("ParkingCheck:status=500"));
        QCOMPARE(faults.at(0).toObject().value(QStringLiteral("struck")).toInt(), 1);
        QCOMPARE(faults.at(1).toObject().value(QStringLiteral("seen")).toInt(), 1);
        QCOMPARE(faults.at(1).toObject().value(QStringLiteral("struck")).toInt(), 0);
        QCOMPARE(HttpClient::exchange(service.port(), "DELETE", "/admin/faults/1").status, 200);
        QCOMPARE(HttpClient::exchange(service.port(), "DELETE", "/admin/faults/1").status, 404);
        QCOMPARE(json(HttpClient::exchange(service.port(), "DELETE", "/admin/faults"))
                     .value(QStringLiteral("removed"))
                     .toInt(),
                 1);
        verifyStillServes(service);
    }

    void admin_faultWrong_isRefusedAndSaysWhy_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("error");
        QTest::newRow("no JSON") << QByteArray("ParkingCheck:empty") << QStringLiteral("the body is no rule");
        QTest::newRow("no rule") << QByteArray("{}") << QStringLiteral("the body is no rule");
        QTest::newRow("a number") << QByteArray(R"({"rule": 1})") << QStringLiteral("the body is no rule");
        QTest::newRow("a list") << QByteArray(R"(["any:empty"])") << QStringLiteral("the body is no rule");
        QTest::newRow("wrong") << QByteArray(R"({"rule": "any:burn"})") << QStringLiteral("there is no fault \"burn\"");
    }

    void admin_faultWrong_isRefusedAndSaysWhy()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QString, error);
        const RunningService service;
        const HttpClient::Answer answer = HttpClient::exchange(service.port(), "POST", "/admin/faults", body);
        QCOMPARE(answer.status, 400);
        QVERIFY(json(answer).value(QStringLiteral("error")).toString().contains(error));
    }

    void admin_path_saysWhatThereIs_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<int>("status");
        const auto row = [](const char *method, const char *path, int status) {
            QTest::addRow("%s %s", method, path) << QByteArray(method) << QByteArray(path) << status;
        };
        row("GET", "/admin", 200);
        row("GET", "/admin/", 404);
        row("GET", "/admin/nothing", 404);
        row("GET", "/administration", 404);
        row("POST", "/admin/payments", 404);
        row("DELETE", "/admin/payments", 404);
        row("DELETE", "/admin/faults/x", 404);
        row("DELETE", "/admin/faults/", 404);
        row("DELETE", "/admin/faultsy", 404);
    }

    void admin_path_saysWhatThereIs()
    {
        QFETCH(const QByteArray, method);
        QFETCH(const QByteArray, path);
        QFETCH(const int, status);
        const RunningService service;
        QCOMPARE(HttpClient::exchange(service.port(), method, path).status, status);
        QCOMPARE(admin(service, "/admin/requests").value(QStringLiteral("count")).toInt(),
                 path == "/administration" ? 1 : 0);
    }

    void admin_ofAnotherMachine_isForbidden_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<bool>("isLoopback");
        QTest::newRow("127.0.0.1") << QByteArray("127.0.0.1") << true;
        QTest::newRow("127.8.9.10") << QByteArray("127.8.9.10") << true;
        QTest::newRow("::1") << QByteArray("::1") << true;
        QTest::newRow("mapped") << QByteArray("::ffff:127.0.0.1") << true;
        QTest::newRow("mapped other") << QByteArray("::ffff:10.0.0.1") << false;
        QTest::newRow("10.0.0.1") << QByteArray("10.0.0.1") << false;
        QTest::newRow("1127.0.0.1") << QByteArray("1127.0.0.1") << false;
        QTest::newRow("::2") << QByteArray("::2") << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }

    void admin_ofAnotherMachine_isForbidden()
    {
        QFETCH(const QByteArray, address);
        QFETCH(const bool, isLoopback);
        QCOMPARE(cash::AdminApi::isLoopback(address.toStdString()), isLoopback);
        cash::Ledger ledger(":memory:");
        cash::Service service(cash::seededCarPark(NOW), ledger, cash::stoppedClock(NOW));
        cash::Journal journal;
        cash::AdminApi api(service, journal);
        httplib::Request request;
        request.method = "GET";
        request.path = "/admin/payments";
        request.remote_addr = address.toStdString();
        httplib::Response response;
        api.answer(request, response);
        QCOMPARE(response.status, isLoopback ? 200 : 403);
    }
};

TEST_MAIN(ServerTest)
#include "tst_server.moc"
