// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
// What the cash service gets done a second, beside its floors on the same machine at the same time: the rate at which
// the disk takes SQLite's commits, and a server that answers "hello". Rounds alternate, so that a machine that slows
// down slows both. Exit status 1, and a line on standard error, where a bound is not kept.
// Usage: service-benchmark CASH-SERVICE FOLDER, the folder being on the disk in question.
#include <httplib.h>
#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {
using Clock = std::chrono::steady_clock;

constexpr int CLIENTS = 8;
constexpr int ROUNDS = 5;
constexpr std::chrono::milliseconds ROUND(1000);

/// The cash service as a process of its own, for as long as the object lives.
class ServiceProcess
{
public:
    ServiceProcess(const std::string &program, const std::string &database)
    {
        int output[2] = {-1, -1};
        if (::pipe(output) != 0 || (m_process = ::fork()) < 0)
            throw std::runtime_error("cannot start a process");
        if (m_process == 0) {
            ::dup2(output[1], STDOUT_FILENO);
            ::close(output[0]);
            ::execl(program.c_str(), program.c_str(), "--listen", "127.0.0.1:0", "--db", database.c_str(), nullptr);
            ::_exit(127);
        }
        ::close(output[1]);
        readPort(output[0]);
        ::close(output[0]);
    }
    ~ServiceProcess()
    {
        ::kill(m_process, SIGTERM);
        ::waitpid(m_process, nullptr, 0);
    }
    ServiceProcess(const ServiceProcess &) = delete;
    ServiceProcess &operator=(const ServiceProcess &) = delete;

    [[nodiscard]] int port() const { return m_port; }

private:
    /// The service says where it listens on its first line: "Listening on http://127.0.0.1:PORT/api".
    void readPort(int output)
    {
        std::string line;
        char c = 0;
        while (::read(output, &c, 1) == 1 && c != '\n')
            line += c;
        const auto colon = line.rfind(':');
        if (colon == std::string::npos)
            throw std::runtime_error("the cash service did not say where it listens");
        m_port = std::stoi(line.substr(colon + 1));
    }

    pid_t m_process = -1;
    int m_port = 0;
};

/// A server with one answer, as small as the library allows. It keeps connections as long as the cash service does.
class HelloServer
{
public:
    HelloServer()
    {
        m_server.Post("/hello", [](const httplib::Request &, httplib::Response &response) {
            response.set_content("hello", "text/plain");
        });
        m_server.set_tcp_nodelay(true);
        m_server.set_keep_alive_max_count(std::numeric_limits<std::size_t>::max());
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~HelloServer()
    {
        m_server.stop();
        m_thread.join();
    }
    HelloServer(const HelloServer &) = delete;
    HelloServer &operator=(const HelloServer &) = delete;

    [[nodiscard]] int port() const { return m_port; }

private:
    httplib::Server m_server;
    std::thread m_thread;
    int m_port = 0;
};

std::string request(const std::string &operation, const std::string &resultCode, const std::string &payments)
{
    return "<?xml version=\"1.0\"?>\n<Request RecordVersion=\"2\" NumRequest=\"1\" Operation=\"" + operation + "\"" +
           resultCode +
           ">\n    <PartnerId>dravik</PartnerId>\n    <ParkingId>12</ParkingId>\n    <TermId>0042</TermId>\n"
           "    <SessionId>004224140509067001</SessionId>\n    <CardUid>78563412</CardUid>\n"
           "    <CardId>000123456</CardId>\n    <RequestTime>2024-03-07T14:05:09+03:00</RequestTime>\n" +
           payments + "</Request>\n";
}

std::string check()
{
    return request("ParkingCheck", " ResultCode=\"0\"", "");
}

/// A hundredth at a time, so that the demo's card has something left to pay for all the rounds.
std::string payment(int uin)
{
    return request("ParkInfoPay", "",
                   "    <Payments>\n        <Payment>\n            <Uin>" + std::to_string(uin) +
                       "</Uin>\n            <DateTime>2024-03-07T14:06:41+03:00</DateTime>\n"
                       "            <Amount>1</Amount>\n            <Type>partial</Type>\n        </Payment>\n"
                       "    </Payments>\n");
}

/// Posts from all clients at once for one round. @return answers a second. Throws when one is not @a expected.
double posts(int port, const std::string &path, const std::function<std::string()> &body, const std::string &expected)
{
    std::atomic<long> answers = 0;
    std::atomic<bool> isWrong = false;
    std::vector<std::thread> clients;
    const auto start = Clock::now();
    for (int i = 0; i < CLIENTS; ++i) {
        clients.emplace_back([&] {
            httplib::Client client("127.0.0.1", port);
            client.set_keep_alive(true);
            client.set_tcp_nodelay(true);
            while (Clock::now() - start < ROUND && !isWrong) {
                const auto answer = client.Post(path, body(), "application/soap+xml");
                if (!answer || answer->body.find(expected) == std::string::npos)
                    isWrong = true;
                else
                    ++answers;
            }
        });
    }
    for (std::thread &client : clients)
        client.join();
    if (isWrong)
        throw std::runtime_error("an answer of " + path + " was not what it must be");
    return static_cast<double>(answers) / std::chrono::duration<double>(Clock::now() - start).count();
}

/// One writer, one row a transaction, as durable as the service's.
class CommitFloor
{
public:
    explicit CommitFloor(const std::string &path)
    {
        sqlite3 *database = nullptr;
        const int result = sqlite3_open(path.c_str(), &database);
        m_database.reset(database);
        check(result == SQLITE_OK);
        run("PRAGMA journal_mode=WAL; CREATE TABLE row (id INTEGER PRIMARY KEY, body TEXT)");
        sqlite3_stmt *insert = nullptr;
        check(sqlite3_prepare_v2(database, "INSERT INTO row (body) VALUES (?)", -1, &insert, nullptr) == SQLITE_OK);
        m_insert.reset(insert);
        sqlite3_bind_text(insert, 1, m_body.c_str(), -1, SQLITE_STATIC);
        // Until the log has its full length a commit waits for the file system, too, which says nothing about SQLite.
        run("PRAGMA synchronous=OFF");
        for (int i = 0; i < 2000; ++i)
            commit();
        run("PRAGMA synchronous=FULL");
    }

    /// @return commits a second, in one round.
    double rate()
    {
        long done = 0;
        const auto start = Clock::now();
        for (; Clock::now() - start < ROUND; ++done)
            commit();
        return static_cast<double>(done) / std::chrono::duration<double>(Clock::now() - start).count();
    }

private:
    struct Close
    {
        void operator()(sqlite3 *database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
    };

    void check(bool isGood) const
    {
        if (!isGood)
            throw std::runtime_error(sqlite3_errmsg(m_database.get()));
    }
    void run(const char *sql) const
    {
        check(sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK);
    }
    void commit() const
    {
        check(sqlite3_step(m_insert.get()) == SQLITE_DONE);
        sqlite3_reset(m_insert.get());
    }

    const std::string m_body = payment(1);
    std::unique_ptr<sqlite3, Close> m_database;
    std::unique_ptr<sqlite3_stmt, Close> m_insert;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// Rounds of both in turn; the ratio is taken round by round. @return whether their median keeps the bound.
bool compare(const std::string &what, const std::string &floorName, double bound, const std::function<double()> &ours,
             const std::function<double()> &floor)
{
    std::vector<double> rates;
    std::vector<double> floors;
    std::vector<double> ratios;
    for (int i = 0; i < ROUNDS; ++i) {
        rates.push_back(ours());
        floors.push_back(floor());
        ratios.push_back(rates.back() / floors.back());
    }
    const double ratio = median(ratios);
    std::printf("%-30s%9.0f/s   %-28s%9.0f/s   ratio %.2f   at least %.2f\n", what.c_str(), median(rates),
                floorName.c_str(), median(floors), ratio, bound);
    std::fflush(stdout);
    if (ratio < bound)
        std::fprintf(stderr, "%s: %.2f of %s, at least %.2f are asked for\n", what.c_str(), ratio, floorName.c_str(),
                     bound);
    return ratio >= bound;
}

/// @return whether every bound is kept.
bool compareAll(const std::string &program, const std::string &folder)
{
    const ServiceProcess service(program, folder + "/service.db");
    const HelloServer hello;
    CommitFloor floor(folder + "/floor.db");
    std::atomic<int> uin = 0;
    std::cout << CLIENTS << " clients, medians of " << ROUNDS << " rounds of " << ROUND.count() << " ms" << std::endl;
    const bool isDiskKept = compare(
        "registrations", "SQLite commits, one writer", 0.7,
        [&] {
            return posts(
                service.port(), "/api/ParkInfoPay", [&] { return payment(++uin); }, "ResultCode=\"1\"");
        },
        [&] { return floor.rate(); });
    const bool isLibraryKept = compare(
        "ParkingCheck", "\"hello\" of the same library", 0.4,
        [&] { return posts(service.port(), "/api/ParkingCheck", check, "ParkingCheckResponse"); },
        [&] { return posts(hello.port(), "/hello", check, "hello"); });
    return isDiskKept && isLibraryKept;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::cerr << "usage: service-benchmark CASH-SERVICE FOLDER\n";
        return 2;
    }
    try {
        return compareAll(argv[1], argv[2]) ? 0 : 1;
    } catch (const std::exception &error) {
        std::cerr << "service-benchmark: " << error.what() << '\n';
        return 1;
    }
}
