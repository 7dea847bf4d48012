// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QDir>
#include <QElapsedTimer>

#include <atomic>
#include <iostream>
#include <set>
#include <sstream>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>

namespace {
std::atomic<bool> areThreadsOut = false;
}

// The C++ library finds this in place of the C library's.
extern "C" int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*function)(void *),
                              void *data)
{
    static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return areThreadsOut ? EAGAIN : real(thread, attributes, function, data);
}

namespace {
cash::Limits shortOfTime()
{
    cash::Limits limits;
    limits.request = std::chrono::milliseconds(300);
    limits.idle = std::chrono::milliseconds(300);
    return limits;
}

/// While it lives, standard error goes here.
class Errors
{
public:
    Errors() : m_before(std::cerr.rdbuf(m_text.rdbuf())) {}
    ~Errors() { std::cerr.rdbuf(m_before); }
    Errors(const Errors &) = delete;
    Errors &operator=(const Errors &) = delete;

    [[nodiscard]] QByteArray text() const { return QByteArray::fromStdString(m_text.str()); }

private:
    std::ostringstream m_text;
    std::streambuf *m_before;
};

int threadsOfThisProcess()
{
    return static_cast<int>(
        QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

cash::Limits manyConnections(int connections)
{
    cash::Limits limits;
    limits.connections = connections;
    return limits;
}
} // namespace

/// Many connections, and clients that are slow, silent or too many: who waits for whom.
class ConnectionsTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void client_thatStopsSending_isToldSoAndPutOff_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("in the first line") << QByteArray("POST /api/Pa");
        QTest::newRow("in the head") << CHECK_HEAD;
        QTest::newRow("in the body") << CHECK_HEAD + "Content-Length: 100\r\n\r\n<Req";
        QTest::newRow("in a chunk") << CHECK_HEAD + "Transfer-Encoding: chunked\r\n\r\n64\r\n<Req";
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
        client.send(CHECK_HEAD + "X: ");
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
            clients.back()->send(i % 2 == 0 ? CHECK_HEAD : QByteArray());
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

    void thread_thatCannotBeStarted_costsItsConnectionAlone()
    {
        const Errors errors;
        {
            const RunningService service;
            const QByteArray request = HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck());
            HttpClient early(service.port());
            early.send(request);
            QCOMPARE(early.read().status, 200);
            areThreadsOut = true;
            for (int i = 0; i < 3; ++i) {
                HttpClient late(service.port());
                QCOMPARE(late.read().status, 503);
                QVERIFY(late.isClosedByService());
            }
            early.send(request);
            QCOMPARE(early.read().status, 200);
            areThreadsOut = false;
            verifyStillServes(service);
        }
        QCOMPARE(errors.text(), QByteArray("cash-service: no thread can be started for another connection; it was "
                                           "refused, and so will be others, without a word here\n"));
    }

    void threads_withoutAConnection_endAfterTheIdleTime()
    {
        cash::Limits limits;
        limits.idle = std::chrono::milliseconds(100);
        const RunningService service(limits);
        const int before = threadsOfThisProcess();
        std::vector<std::unique_ptr<HttpClient>> clients;
        for (int i = 0; i < 20; ++i) {
            clients.push_back(std::make_unique<HttpClient>(service.port()));
            clients.back()->send(HttpClient::request("GET", "/admin", ""));
            QCOMPARE(clients.back()->read().status, 200);
        }
        QVERIFY(threadsOfThisProcess() > before);
        clients.clear();
        constexpr int limit = 30'000;
        QTRY_COMPARE_WITH_TIMEOUT(threadsOfThisProcess(), before, limit);
        verifyStillServes(service);
    }

    void stop_whileClientsAreConnected_endsAtOnce()
    {
        RunningService service;
        HttpClient silent(service.port());
        HttpClient slow(service.port());
        slow.send(CHECK_HEAD);
        verifyStillServes(service);
        QElapsedTimer timer;
        timer.start();
        service.stop();
        QVERIFY(timer.elapsed() < 2'500);
        QVERIFY(silent.isClosedByService());
        HttpClient late(service.port());
        QVERIFY(!late.isConnected());
    }
};

TEST_MAIN(ConnectionsTest)
#include "tst_connections.moc"
