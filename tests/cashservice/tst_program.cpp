// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "carpark.h"
#include "database.h"
#include "requests.h"
#include "runningservice.h"
#include "serviceprocess.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QFile>
#include <QTcpServer>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

namespace {
QString inWorkDirectory(const char *name)
{
    return WorkDirectory::path() + QLatin1Char('/') + QLatin1String(name);
}

struct Ended
{
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

/// Runs the program to its end.
Ended run(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(CASH_SERVICE_PROGRAM), arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

/// Answers of success, head and body, by the numbers of the payments.
using Answers = std::map<int, QByteArray>;

QByteArray answerTo(int port, int uin)
{
    const HttpClient::Answer answer = HttpClient::parkInfoPay(port, Requests::parkInfoPay(Requests::numbered(uin)));
    return answer.head + answer.body;
}

/// What clients of a service that dies have been told.
class Load
{
public:
    /// Registers payments with @a clients threads until nothing answers any more.
    Load(int port, int clients, int firstUin) : m_nextUin(firstUin)
    {
        for (int i = 0; i < clients; ++i)
            m_threads.emplace_back([this, port] { registerPayments(port); });
    }

    [[nodiscard]] Answers wait()
    {
        for (std::thread &thread : m_threads)
            thread.join();
        m_threads.clear();
        return m_answered;
    }

    [[nodiscard]] int answered() const { return m_count; }
    [[nodiscard]] bool isUnderWay() const { return m_ended < static_cast<int>(m_threads.size()); }
    [[nodiscard]] int nextUin() const { return m_nextUin; }

private:
    void registerPayments(int port)
    {
        for (;;) {
            const int uin = m_nextUin++;
            const QByteArray answer = answerTo(port, uin);
            if (resultCode(answer) != "1") {
                ++m_ended;
                return;
            }
            const std::lock_guard lock(m_mutex);
            m_answered.emplace(uin, answer);
            ++m_count;
        }
    }

    std::atomic<int> m_nextUin;
    std::atomic<int> m_count = 0;
    std::atomic<int> m_ended = 0;
    std::mutex m_mutex;
    Answers m_answered;
    std::vector<std::thread> m_threads;
};
} // namespace

/// The program: its command line, its first line, its end, and what is left of a killed one.
class ProgramTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void program_started_saysWhereItListensAndAnswers()
    {
        const ServiceProcess service;
        QCOMPARE(service.firstLine(), "Listening on http://127.0.0.1:" + QByteArray::number(service.port()) + "/api\n");
        QVERIFY(service.port() > 0);
        const QByteArray answer = HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).body;
        QCOMPARE(resultCode(answer), QByteArray("1"));
        QCOMPARE(elementText(answer, "TotalCharge"), QByteArray("15000"));
    }

    void path_thatOnlyBeginsLikeAdmin_isTaken()
    {
        const ServiceProcess service({QStringLiteral("--path"), QStringLiteral("/administration")});
        QVERIFY(service.firstLine().endsWith("/administration\n"));
        QCOMPARE(HttpClient::exchange(service.port(), "POST", "/administration/ParkingCheck", Requests::parkingCheck())
                     .status,
                 200);
    }

    void program_ended_byASignal_isContent_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void program_ended_byASignal_isContent()
    {
        QFETCH(const int, signal);
        ServiceProcess service({QStringLiteral("--fault"), QStringLiteral("any:delay=1h")});
        HttpClient waiting(service.port());
        waiting.send(HttpClient::request("POST", "/api/ParkInfoPay", Requests::parkInfoPay()));
        HttpClient silent(service.port());
        QCOMPARE(service.endBy(signal), 0);
        QCOMPARE(service.errors(), QByteArray());
    }

    void options_given_areObeyed()
    {
        QFile park(inWorkDirectory("park.yaml"));
        QVERIFY(park.open(QIODevice::WriteOnly));
        park.write("parking: north\n"
                   "tariff: {per-hour: 1.00, free: 0m, daily-maximum: 10}\n"
                   "cards: [{uid: 12345678, entered: 2024-03-07T13:05:00}]\n");
        park.close();
        const ServiceProcess service({QStringLiteral("--path"), QStringLiteral("v2"), QStringLiteral("--parking"),
                                      park.fileName(), QStringLiteral("--clock"), QStringLiteral("2024-03-07T14:05:09"),
                                      QStringLiteral("--fault"), QStringLiteral("ParkingCheck#1:empty"),
                                      QStringLiteral("--fault"),
                                      QStringLiteral("ParkingCheck#2:malformed=CanStop,no")});
        QVERIFY(service.firstLine().endsWith("/v2\n"));
        const auto ask = [&service] {
            return HttpClient::exchange(service.port(), "POST", "/v2/ParkingCheck", Requests::parkingCheck());
        };
        QCOMPARE(ask().body, QByteArray());
        QCOMPARE(elementText(ask().body, "CanStop"), QByteArray("no"));
        const QByteArray answer = ask().body;
        QCOMPARE(elementText(answer, "ParkingId"), QByteArray("north"));
        QCOMPARE(elementText(answer, "TotalCharge"), QByteArray("200"));
        QCOMPARE(elementText(answer, "AnswerTime"), QByteArray("2024-03-07T14:05:09"));
        QCOMPARE(elementText(answer, "CanStop"), QByteArray("0"));
    }

    void help_asked_listsTheCardsAndTheFaults()
    {
        const Ended ended = run({QStringLiteral("--help")});
        QCOMPARE(ended.status, 0);
        for (const auto &[uid, card] : cash::seededCarPark(0).cards) {
            QVERIFY2(ended.output.contains(QByteArray::fromStdString(cash::uidText(uid))), ended.output.constData());
            QVERIFY2(ended.output.contains(QByteArray::fromStdString(card.note)), ended.output.constData());
        }
        for (const char *text : {"127.0.0.1:13006", "/api", "--listen", "--path", "--db", "--parking", "--clock",
                                 "--fault", "OPERATION[#COUNT][@STAGE]:ACTION[=VALUE]", "GET /admin"})
            QVERIFY2(ended.output.contains(text), text);
    }

    void start_impossible_saysWhy_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("errors");
        const auto row = [](const char *name, const QStringList &arguments, const QString &errors) {
            QTest::newRow(name) << arguments << errors;
        };
        const QString listen = QStringLiteral("--listen");
        const QString anywhere = QStringLiteral("127.0.0.1:0");
        for (const char *address :
             {"", "13006", "localhost", "127.0.0.1:", "127.0.0.1:x", "127.0.0.1:70000", "127.0.0.1:-1", ":80"})
            row(QByteArray("address ") + address, {listen, QLatin1String(address)},
                QStringLiteral(
                    "cash-service: --listen \"%1\" is no address; write HOST:PORT, for example 127.0.0.1:13006\n")
                    .arg(QLatin1String(address)));
        row("host that is not there", {listen, QStringLiteral("192.0.2.1:0")},
            QStringLiteral("cash-service: cannot listen on 192.0.2.1:0: Cannot assign requested address\n"));
        for (const char *time :
             {"noon", "0000-01-01T00:00:00", "1999-12-31T23:59:59", "2100-01-01T00:00:00", "99999999-01-01T00:00:00"})
            row(QByteArray("clock ") + time, {listen, anywhere, QStringLiteral("--clock"), QLatin1String(time)},
                QStringLiteral(
                    "cash-service: --clock \"%1\" is no local time; write one like 2024-03-07T14:05:09, of the "
                    "years 2000 to 2099\n")
                    .arg(QLatin1String(time)));
        row("path", {listen, anywhere, QStringLiteral("--path"), QStringLiteral("/admin")},
            QStringLiteral("cash-service: --path \"/admin\": /admin is taken; write another, for example /api\n"));
        row("path below admin", {listen, anywhere, QStringLiteral("--path"), QStringLiteral("admin/api/")},
            QStringLiteral("cash-service: --path \"admin/api/\": /admin is taken; write another, for example /api\n"));
        for (const char *path : {"/a b", "/a?b", "/a#b", "/a%20b", "/\xC3\xA4"})
            row(QByteArray("path ") + path, {listen, anywhere, QStringLiteral("--path"), QString::fromUtf8(path)},
                QStringLiteral("cash-service: --path \"%1\": write it of Latin letters, digits, \"-._~\" and \"/\"\n")
                    .arg(QString::fromUtf8(path)));
        for (const char *option : {"--db", "--clock", "--parking"})
            row(QByteArray("empty ") + option, {listen, anywhere, QLatin1String(option), QString()},
                QStringLiteral("cash-service: %1: the value is empty; write one, or leave the option out\n"
                               "Run with --help for more information.\n")
                    .arg(QLatin1String(option)));
        row("parking directory", {listen, anywhere, QStringLiteral("--parking"), WorkDirectory::path()},
            QStringLiteral("cash-service: %1: cannot be read; is it a file?\n").arg(WorkDirectory::path()));
        row("database in no folder", {listen, anywhere, QStringLiteral("--db"), QStringLiteral("/nowhere/x.db")},
            QStringLiteral("cash-service: --db \"/nowhere/x.db\" cannot be used: unable to open database file\n"));
        row("parking file missing",
            {listen, anywhere, QStringLiteral("--parking"), QStringLiteral("/nowhere/park.yaml")},
            QStringLiteral("cash-service: /nowhere/park.yaml: cannot be read\n"));
        row("fault", {listen, anywhere, QStringLiteral("--fault"), QStringLiteral("any:burn")},
            QStringLiteral("cash-service: fault \"any:burn\": there is no fault \"burn\"; there are "));
        row("option", {QStringLiteral("--lisen"), anywhere}, QStringLiteral("cash-service: The following argument"));
        const QString url = QStringLiteral("http://127.0.0.1:9/api");
        for (const char *option : {"--listen", "--path", "--db", "--parking", "--clock", "--fault"})
            row(QByteArray("before check ") + option,
                {QLatin1String(option), QStringLiteral("x"), QStringLiteral("check"), url},
                QStringLiteral("cash-service: %1: means nothing to check; leave it out\n"
                               "Run with --help for more information.\n")
                    .arg(QLatin1String(option)));
        row("behind check", {QStringLiteral("check"), url, listen, anywhere},
            QStringLiteral("cash-service: The following argument"));
        row("check without a URL", {QStringLiteral("check")}, QStringLiteral("cash-service: URL is required"));
    }

    void start_impossible_saysWhy()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const QString, errors);
        const Ended ended = run(arguments);
        QCOMPARE(ended.status, 2);
        QCOMPARE(ended.output, QByteArray());
        const QString found = QString::fromUtf8(ended.errors);
        if (errors.endsWith(QLatin1Char('\n')))
            QCOMPARE(found, errors);
        else
            QVERIFY2(found.startsWith(errors), qPrintable(found));
    }

    void start_onABusyPort_saysSo()
    {
        QTcpServer busy;
        QVERIFY(busy.listen(QHostAddress::LocalHost));
        const QString address = QStringLiteral("127.0.0.1:%1").arg(busy.serverPort());
        const Ended ended = run({QStringLiteral("--listen"), address});
        QCOMPARE(ended.status, 2);
        QCOMPARE(QString::fromUtf8(ended.errors),
                 QStringLiteral("cash-service: cannot listen on %1: Address already in use\n").arg(address));
    }

    void start_withABrokenDatabase_saysSo()
    {
        QFile file(inWorkDirectory("broken.db"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(4096, 'x')) == 4096);
        file.close();
        const Ended ended =
            run({QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"), QStringLiteral("--db"), file.fileName()});
        QCOMPARE(ended.status, 2);
        QCOMPARE(
            QString::fromUtf8(ended.errors),
            QStringLiteral("cash-service: --db \"%1\" cannot be used: file is not a database\n").arg(file.fileName()));
    }

    /// SQLite opens such a file for reading alone, whoever runs the service.
    void start_withADatabaseThatCannotBeWritten_saysSo()
    {
        const QString path = inWorkDirectory("foreign.db");
        {
            const cash::Ledger ledger(path.toStdString());
        }
        QFile file(path);
        constexpr int versionOfWriting = 18;
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(versionOfWriting) && file.putChar(3));
        file.close();
        const Ended ended =
            run({QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"), QStringLiteral("--db"), path});
        QCOMPARE(ended.status, 2);
        QCOMPARE(ended.output, QByteArray());
        QCOMPARE(QString::fromUtf8(ended.errors),
                 QStringLiteral("cash-service: --db \"%1\" cannot be used: attempt to write a readonly database\n")
                     .arg(path));
    }

    void start_withABrokenParkingFile_saysAllMistakesAtOnce()
    {
        QFile file(inWorkDirectory("park.yaml"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("parking: north\ntariff: {per-hour: x, free: y, daily-maximum: 10}\ncards: []\n");
        file.close();
        const Ended ended = run(
            {QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"), QStringLiteral("--parking"), file.fileName()});
        QCOMPARE(ended.status, 2);
        QCOMPARE(QString::fromUtf8(ended.errors),
                 QStringLiteral("cash-service: %1:2:20: \"x\" is no amount; write one like 50.00\n"
                                "%1:2:29: \"y\" is no time; write one like 15m, or 0m; at most 36500d\n")
                     .arg(file.fileName()));
    }

    /// Each round goes on with the database that the one before has left.
    void program_killedUnderLoad_losesNoAnsweredPayment()
    {
        const QString database = inWorkDirectory("killed.db");
        const QStringList arguments = {QStringLiteral("--db"), database};
        Answers answered;
        int nextUin = 1;
        for (const int enough : {1, 20, 60, 130, 250}) {
            ServiceProcess service(arguments);
            QVERIFY(service.port() > 0);
            Load load(service.port(), 8, nextUin);
            while (load.answered() < enough && load.isUnderWay())
                std::this_thread::yield();
            service.kill();
            const Answers inThisRound = load.wait();
            QVERIFY(static_cast<int>(inThisRound.size()) >= enough);
            answered.insert(inThisRound.begin(), inThisRound.end());
            nextUin = load.nextUin();
            verifyHolds(database, answered);
        }
        // A service that has not seen them answers with the same bytes: nothing may differ, the time of the answer
        // neither.
        const ServiceProcess service(arguments);
        for (const auto &[uin, answer] : answered)
            QCOMPARE(answerTo(service.port(), uin), answer);
        // What was sent and not answered may be registered or not: sent again it is, and once.
        for (int uin = 1; uin < nextUin; ++uin)
            answered.emplace(uin, answerTo(service.port(), uin));
        verifyHolds(database, answered);
    }

private:
    static void verifyHolds(const QString &file, const Answers &answered)
    {
        cash::Database database(file.toStdString());
        cash::Statement check(database, "PRAGMA integrity_check");
        QVERIFY(check.step());
        QCOMPARE(check.text(0), std::string("ok"));
        cash::Statement count(database, "SELECT COUNT(*) FROM payments WHERE uin = ?");
        for (const auto &[uin, answer] : answered) {
            QCOMPARE(resultCode(answer), QByteArray("1"));
            count.bind(1, std::int64_t(uin));
            QVERIFY(count.step());
            QCOMPARE(qint64(count.number(0)), qint64(1));
            count.reset();
        }
        // What was paid for the stays is what the payments come to.
        cash::Statement sums(database, "SELECT (SELECT SUM(paid) FROM stays) = (SELECT SUM(amount) FROM payments)");
        QVERIFY(sums.step());
        QCOMPARE(qint64(sums.number(0)), qint64(1));
    }
};

TEST_MAIN(ProgramTest)
#include "tst_program.moc"
