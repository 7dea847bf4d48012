// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "connectionthreads.h"
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/waiting.h"
#include "support/zone.h"

#include <QDir>

#include <array>
#include <atomic>
#include <future>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>

#include <dlfcn.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

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
/// So long that a test which waits for one of them fails.
cash::Limits withoutHurry()
{
    cash::Limits limits;
    limits.request = std::chrono::hours(1);
    limits.idle = std::chrono::hours(1);
    return limits;
}

cash::Limits shortRequests()
{
    cash::Limits limits = withoutHurry();
    limits.request = std::chrono::milliseconds(300);
    return limits;
}

cash::Limits shortIdleness()
{
    cash::Limits limits = withoutHurry();
    limits.idle = std::chrono::milliseconds(100);
    return limits;
}

cash::Limits fewConnections(int connections)
{
    cash::Limits limits = withoutHurry();
    limits.connections = connections;
    return limits;
}

constexpr int MANY = 5'000;
/// Their answers are more than the system keeps for the service.
const QByteArray MORE_THAN_FITS = HttpClient::request("GET", "/admin/sessions", "").repeated(MANY);

/// A client that sends and does not read: its system takes next to nothing for it.
class DeafClient
{
public:
    explicit DeafClient(int port)
    {
        const int room = 8'192;
        setsockopt(m_socket, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
        const int load = 1'048'576;
        setsockopt(m_socket, SOL_SOCKET, SO_SNDBUF, &load, sizeof load);
        const int segment = 1'024; // far less than the room, else what is read later comes drop by drop
        setsockopt(m_socket, IPPROTO_TCP, TCP_MAXSEG, &segment, sizeof segment);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<in_port_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_isConnected = connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    }
    ~DeafClient() { close(m_socket); }
    DeafClient(const DeafClient &) = delete;
    DeafClient &operator=(const DeafClient &) = delete;

    [[nodiscard]] bool isConnected() const { return m_isConnected; }

    /// @return whether the system has taken all of it.
    [[nodiscard]] bool send(const QByteArray &bytes)
    {
        return ::send(m_socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), MSG_DONTWAIT) ==
               bytes.size();
    }

    /// Reads at last, until the service has closed the connection. @return nothing where it has not.
    [[nodiscard]] QByteArray readToEnd() const
    {
        constexpr int limit = 60'000;
        pollfd polled = {m_socket, POLLIN, 0};
        QByteArray received;
        std::array<char, 65'536> piece = {};
        while (poll(&polled, 1, limit) == 1) {
            const ssize_t size = recv(m_socket, piece.data(), piece.size(), 0);
            if (size <= 0)
                return received;
            received.append(piece.data(), static_cast<int>(size));
        }
        return QByteArray();
    }

private:
    int m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bool m_isConnected = false;
};

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
        const RunningService service(shortRequests());
        HttpClient client(service.port());
        client.send(bytes);
        QCOMPARE(client.read().status, 408);
        QVERIFY(client.isClosedByService());
    }

    void client_thatDripsForEver_isPutOffInTime()
    {
        const RunningService service(shortRequests());
        HttpClient client(service.port());
        client.send(CHECK_HEAD + "X: ");
        const QDeadlineTimer deadline(60'000);
        HttpClient::Answer answer;
        // Each byte comes well within any limit for a single one.
        while (answer.status == 0 && !deadline.hasExpired()) {
            client.send("x");
            answer = client.read(20);
        }
        QCOMPARE(answer.status, 408);
    }

    void client_thatSaysNothing_isPutOff()
    {
        const RunningService service(shortIdleness());
        HttpClient client(service.port());
        QVERIFY(client.isConnected());
        QVERIFY(client.isClosedByService());
    }

    void clients_slowAndSilent_holdUpNobody()
    {
        const RunningService service(withoutHurry());
        std::vector<std::unique_ptr<HttpClient>> clients;
        for (int i = 0; i < 100; ++i) {
            clients.push_back(std::make_unique<HttpClient>(service.port()));
            clients.back()->send(i % 2 == 0 ? CHECK_HEAD : QByteArray());
        }
        verifyStillServes(service);
    }

    void client_thatReadsNothing_holdsUpNobody()
    {
        RunningService service(withoutHurry());
        DeafClient client(service.port());
        QVERIFY(client.isConnected());
        QVERIFY(client.send(MORE_THAN_FITS));
        verifyStillServes(service);
        // Nor the end.
        service.stop();
    }

    void client_thatReadsNothing_isPutOff()
    {
        cash::Limits limits;
        limits.request = std::chrono::seconds(2);
        limits.idle = std::chrono::seconds(2);
        const RunningService service(limits);
        const int threads = threadsOfThisProcess();
        DeafClient client(service.port());
        QVERIFY(client.isConnected());
        QVERIFY(client.send(MORE_THAN_FITS));
        WAIT_FOR(threadsOfThisProcess() > threads, true);
        WAIT_FOR(threadsOfThisProcess(), threads);
        const int answers = client.readToEnd().count("HTTP/1.1 200 OK");
        QVERIFY2(answers > 0 && answers < MANY, qPrintable(QString::number(answers)));
    }

    void connections_beyondTheLimit_areRefusedAndLaterServed()
    {
        const RunningService service(fewConnections(2));
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
        QTRY_VERIFY_WITH_TIMEOUT(
            isServed = isServed || HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).status == 200,
            30'000);
    }

    /// Each payment is sent by four clients at once, and by each of them twice.
    void clients_atOnce_loseAndDoubleNoPayment()
    {
        constexpr int clients = 32;
        constexpr int racing = 4;
        constexpr int each = 20;
        constexpr int payments = clients / racing * each;
        RunningService service({}, (WorkDirectory::path() + QStringLiteral("/clients.db")).toStdString());
        std::mutex mutex;
        std::map<int, QList<QByteArray>> answers;
        std::vector<std::thread> threads;
        for (int client = 0; client < clients; ++client) {
            threads.emplace_back([&, client] {
                for (int i = 0; i < 2 * each; ++i) {
                    const int uin = client / racing * each + i / 2;
                    const QByteArray body = Requests::parkInfoPay(Requests::numbered(uin));
                    const QByteArray answer = HttpClient::parkInfoPay(service.port(), body).body;
                    const std::lock_guard lock(mutex);
                    answers[uin].append(answer);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(int(answers.size()), payments);
        for (const auto &[uin, ofOne] : answers) {
            QCOMPARE(resultCode(ofOne.first()), QByteArray("1"));
            QCOMPARE(ofOne.count(ofOne.first()), 2 * racing);
        }
        std::set<std::int64_t> uins;
        for (const cash::LogRow &payment : service.ledger().payments())
            uins.insert(payment.uin);
        QCOMPARE(int(uins.size()), payments);
        QCOMPARE(int(service.ledger().payments().size()), payments);
        const QByteArray answer = HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).body;
        QCOMPARE(resultCode(answer), QByteArray("3"));
    }

    void thread_thatCannotBeStarted_costsItsConnectionAlone()
    {
        const Errors errors;
        {
            const RunningService service(withoutHurry());
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
        constexpr int connections = 20;
        std::atomic<int> served = 0;
        std::promise<void> end;
        const std::shared_future<void> isOver = end.get_future().share();
        const int before = threadsOfThisProcess();
        cash::ConnectionThreads threads(
            [&served, isOver](int) {
                ++served;
                isOver.wait();
            },
            std::chrono::milliseconds(1));
        for (int i = 0; i < connections; ++i)
            QVERIFY(threads.take(i));
        WAIT_FOR(served.load(), connections);
        QCOMPARE(threadsOfThisProcess(), before + connections);
        end.set_value();
        WAIT_FOR(threadsOfThisProcess(), before);
        QVERIFY(threads.take(connections));
        WAIT_FOR(served.load(), connections + 1);
    }

    void stop_whileClientsAreConnected_endsAtOnce()
    {
        RunningService service(withoutHurry());
        HttpClient silent(service.port());
        HttpClient slow(service.port());
        slow.send(CHECK_HEAD);
        verifyStillServes(service);
        service.stop();
        QVERIFY(silent.isClosedByService());
        HttpClient late(service.port());
        QVERIFY(!late.isConnected());
    }
};

TEST_MAIN(ConnectionsTest)
#include "tst_connections.moc"
