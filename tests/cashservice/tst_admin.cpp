// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "adminapi.h"
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QJsonArray>

/// /admin: what the service has seen and holds, and faults that are set while it runs.
class AdminTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
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
        const QJsonObject seen = adminJson(service.port(), "/admin/requests");
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
        QCOMPARE(adminJson(service.port(), "/admin/requests").value(QStringLiteral("count")).toInt(), 0);
        verifyStillServes(service);
        const QJsonObject seen = adminJson(service.port(), "/admin/requests");
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
        const QJsonArray sessions =
            adminJson(service.port(), "/admin/sessions").value(QStringLiteral("sessions")).toArray();
        QCOMPARE(sessions.size(), 10);
        const QJsonObject demo = sessions.last().toObject();
        QCOMPARE(demo.value(QStringLiteral("uid")).toString(), QStringLiteral("12345678"));
        QCOMPARE(demo.value(QStringLiteral("cardUid")).toString(), QStringLiteral("78563412"));
        QCOMPARE(demo.value(QStringLiteral("owed")).toInt(), 10000);
        QCOMPARE(demo.value(QStringLiteral("paid")).toInt(), 5000);
        QCOMPARE(demo.value(QStringLiteral("state")).toString(), QStringLiteral("parked"));
        const QJsonObject payments = adminJson(service.port(), "/admin/payments");
        QCOMPARE(payments.value(QStringLiteral("count")).toInt(), 1);
        const QJsonObject payment = payments.value(QStringLiteral("payments")).toArray().at(0).toObject();
        QCOMPARE(payment.value(QStringLiteral("uin")).toInt(), 1187);
        QCOMPARE(payment.value(QStringLiteral("amount")).toInt(), 5000);
        QCOMPARE(payment.value(QStringLiteral("time")).toString(), QStringLiteral("2024-03-07T14:05:09"));
        const QJsonObject conflicts = adminJson(service.port(), "/admin/conflicts");
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
        QCOMPARE(jsonOf(added).value(QStringLiteral("id")).toInt(), 1);
        QCOMPARE(set(R"({"rule": "any#2:empty"})").status, 201);
        QCOMPARE(HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).status, 500);
        const QJsonArray faults = adminJson(service.port(), "/admin/faults").value(QStringLiteral("faults")).toArray();
        QCOMPARE(faults.size(), 2);
        QCOMPARE(faults.at(0).toObject().value(QStringLiteral("rule")).toString(),
                 QStringLiteral("ParkingCheck:status=500"));
        QCOMPARE(faults.at(0).toObject().value(QStringLiteral("struck")).toInt(), 1);
        QCOMPARE(faults.at(1).toObject().value(QStringLiteral("seen")).toInt(), 1);
        QCOMPARE(faults.at(1).toObject().value(QStringLiteral("struck")).toInt(), 0);
        QCOMPARE(HttpClient::exchange(service.port(), "DELETE", "/admin/faults/1").status, 200);
        QCOMPARE(HttpClient::exchange(service.port(), "DELETE", "/admin/faults/1").status, 404);
        QCOMPARE(jsonOf(HttpClient::exchange(service.port(), "DELETE", "/admin/faults"))
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
        QVERIFY(jsonOf(answer).value(QStringLiteral("error")).toString().contains(error));
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
        QCOMPARE(adminJson(service.port(), "/admin/requests").value(QStringLiteral("count")).toInt(),
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
        request.set_header("Host", "localhost");
        httplib::Response response;
        api.answer(request, response);
        QCOMPARE(response.status, isLoopback ? 200 : 403);
    }

    void admin_underAnotherName_isForbidden_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const char *host, int status) {
            QTest::newRow(name) << QByteArray(host) << status;
        };
        row("127.0.0.1", "Host: 127.0.0.1\r\n", 200);
        row("127.0.0.1 with a port", "Host: 127.0.0.1:13006\r\n", 200);
        row("localhost", "Host: localhost\r\n", 200);
        row("localhost with a port", "Host: LocalHost:1\r\n", 200);
        row("[::1]", "Host: [::1]\r\n", 200);
        row("[::1] with a port", "Host: [::1]:13006\r\n", 200);
        row("a name that leads here", "Host: service.example:13006\r\n", 403);
        row("a name that begins alike", "Host: localhost.example\r\n", 403);
        row("a number that begins alike", "Host: 127.0.0.1.example:13006\r\n", 403);
        row("a name that ends alike", "Host: my.localhost\r\n", 403);
        row("a port that is none", "Host: localhost:x\r\n", 403);
        row("an empty port", "Host: localhost:\r\n", 403);
        row("a user before it", "Host: localhost:1@service.example\r\n", 403);
        row("an empty name", "Host:\r\n", 403);
        row("none", "", 403);
        row("two", "Host: localhost\r\nHost: localhost\r\n", 403);
    }

    void admin_underAnotherName_isForbidden()
    {
        QFETCH(const QByteArray, host);
        QFETCH(const int, status);
        const RunningService service;
        HttpClient client(service.port());
        client.send("GET /admin/payments HTTP/1.1\r\n" + host + "\r\n");
        const HttpClient::Answer answer = client.read();
        QCOMPARE(answer.status, status);
        QCOMPARE(jsonOf(answer).contains(QStringLiteral("error")), status == 403);
        // The protocol itself is for any name.
        client.send(HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck())
                        .replace("Host: localhost", "Host: service.example"));
        QCOMPARE(client.read().status, 200);
    }
};

TEST_MAIN(AdminTest)
#include "tst_admin.moc"
