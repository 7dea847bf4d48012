// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checkbreaktable.h"
#include "checkrun.h"
#include "checkserviceprocess.h"
#include "checksituations.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QSet>

#include <algorithm>

namespace {
const std::string AT_ONCE = "The same payment on four connections at once is one payment, confirmed on each";

/// The program, started as a user would.
Outcome checkProgram(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(CASH_SERVICE_PROGRAM), QStringList{QStringLiteral("check")} + arguments);
    const bool hasEnded = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit;
    return {hasEnded ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()).trimmed().split(QLatin1Char('\n'))};
}

QStringList curlLines(const Outcome &outcome)
{
    return outcome.lines.filter(QStringLiteral(" | curl "));
}
} // namespace

/// The check of other services, made of ours and of ours broken in one thing at a time.
class CheckTest : public TestCase
{
    Q_OBJECT

private:
    // Not a zone without an offset: one of the checks is about requests without it.
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void program_ourService_holds_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("as it is") << QStringList();
        QTest::newRow("answers in windows-1251")
            << QStringList{QStringLiteral("--fault"), QStringLiteral("any:encoding=windows-1251")};
        QTest::newRow("answers in UTF-16")
            << QStringList{QStringLiteral("--fault"), QStringLiteral("any:encoding=utf-16")};
        QTest::newRow("another path") << QStringList{QStringLiteral("--path"), QStringLiteral("/a/b")};
        QTest::newRow("no path") << QStringList{QStringLiteral("--path"), QStringLiteral("/")};
    }

    void program_ourService_holds()
    {
        QFETCH(QStringList, arguments);
        const ServiceProcess service(arguments);
        const std::size_t all = checkNames({}).size();
        // Twice: a run leaves a service that can be tested again.
        for (int run = 0; run < 2; ++run) {
            const Outcome outcome = checkProgram({service.url()});
            QCOMPARE(broken(outcome), QStringList());
            QCOMPARE(outcome.lines.last(), result(all, all));
            QCOMPARE(outcome.status, 0);
        }
    }

    void check_sameTerminalTwice_takesAnother()
    {
        const ServiceProcess service;
        CheckOptions options = optionsFor(service.url().toStdString());
        options.terminals = {"0042", "0042"};
        QCOMPARE(broken(check(options)), QStringList());
    }

    void program_faultyService_saysWhatBreaks()
    {
        const ServiceProcess service({QStringLiteral("--fault"), QStringLiteral("any:malformed=AnswerTime,now")});
        const Outcome outcome = checkProgram({service.url()});
        QCOMPARE(broken(outcome), QStringList(QStringLiteral("Times in an answer are dates and times that there are")));
        QVERIFY(outcome.lines.contains(QStringLiteral("        came:     \"now\"")));
        const std::size_t all = checkNames({}).size();
        QCOMPARE(outcome.lines.last(), result(all - 1, all));
        QCOMPARE(outcome.status, 1);
    }

    void check_payInFull_holdsOnce()
    {
        const ServiceProcess service;
        QCOMPARE(check(optionsFor(service.url().toStdString())).status, 0);
        const Outcome again = check(optionsFor(service.url().toStdString()));
        QVERIFY(again.lines.first().startsWith(QStringLiteral("cannot test: no card owes at least 500 hundredths")));
        QCOMPARE(again.status, 2);
    }

    void check_brokenService_breaksItsRule_data()
    {
        QTest::addColumn<int>("index");
        const std::vector<ServiceBreak> breaks = serviceBreaks();
        for (std::size_t i = 0; i < breaks.size(); ++i)
            QTest::newRow(breaks[i].name.c_str()) << static_cast<int>(i);
    }

    void check_brokenService_breaksItsRule()
    {
        QFETCH(int, index);
        const ServiceBreak serviceBreak = serviceBreaks().at(static_cast<std::size_t>(index));
        QStringList expected = {QString::fromStdString(serviceBreak.rule)};
        for (const std::string &rule : serviceBreak.alsoBroken)
            expected.append(QString::fromStdString(rule));
        expected.sort();

        const ServiceProcess real;
        const BrokenService service(real.origin(), serviceBreak.behaviour);
        const Outcome outcome = check(optionsFor(service.url()));
        QCOMPARE(broken(outcome).join(QLatin1Char('\n')), expected.join(QLatin1Char('\n')));
        const std::size_t all = checkNames(optionsFor({})).size();
        QCOMPARE(outcome.lines.last(), result(all - static_cast<std::size_t>(expected.size()), all));
        QVERIFY(!curlLines(outcome).isEmpty());
        QCOMPARE(outcome.status, 1);
    }

    void check_serviceThatRacesWithItself_breaksItsRule()
    {
        const std::vector<std::string> names = checkNames({});
        const auto itself = std::find(names.begin(), names.end(), AT_ONCE);
        QVERIFY(itself != names.begin() && itself != names.end());
        const std::string before = "holds   " + *std::prev(itself);
        const std::string after = "breaks  " + *itself;
        CheckOutput output;
        const ServiceProcess real;
        const BrokenService service(real.origin(), ServiceBreaks::racesWithItself([&] {
                                        return output.hasLine(before) && !output.hasLine(after);
                                    }));
        const Outcome outcome = check(optionsFor(service.url()), output);
        QCOMPARE(broken(outcome), QStringList(QString::fromStdString(AT_ONCE)));
        QCOMPARE(outcome.status, 1);
    }

    void checks_each_isBrokenBySomething()
    {
        QSet<QString> broken = {QString::fromStdString(AT_ONCE)};
        for (const ServiceBreak &serviceBreak : serviceBreaks())
            broken.insert(QString::fromStdString(serviceBreak.rule));
        for (const Situations::Situation &situation : Situations::all())
            broken.insert(QString::fromStdString(situation.rule));
        QSet<QString> names;
        for (const std::string &name : checkNames(optionsFor({})))
            names.insert(QString::fromStdString(name));
        QCOMPARE(broken, names);
    }

    void check_unbrokenCopy_holds()
    {
        const ServiceProcess real;
        const BrokenService service(real.origin(), ServiceBreaks::changesAnswer([](BrokenService::Reply &) {}));
        const Outcome outcome = check(optionsFor(service.url()));
        QCOMPARE(broken(outcome), QStringList());
        QCOMPARE(outcome.status, 0);
    }

    /// A shell that runs the lines of a breach posts what the check posted.
    void curlLine_run_postsTheSame()
    {
        const ServiceProcess real;
        std::mutex mutex;
        std::vector<std::string> refused;
        // Texts with all that a shell could take for itself.
        const auto refusesSome = [&](const BrokenService::Post &post, const BrokenService::Forward &forward) {
            const bool isOdd =
                post.body.find("&lt;A&amp;B") != std::string::npos || post.body.find("Касса") != std::string::npos;
            if (!isOdd)
                return forward(post);
            const std::lock_guard<std::mutex> lock(mutex);
            refused.push_back(post.operation + post.body);
            return ServiceBreaks::refusal(post);
        };
        const BrokenService service(real.origin(), refusesSome);
        CheckOptions options = optionsFor(service.url());
        options.partner = "50%s \\n 'x' `y` $z \"q\"\ttab";
        const Outcome outcome = check(options);
        const std::vector<std::string> posted = std::exchange(refused, {});
        const QStringList lines = curlLines(outcome);
        QCOMPARE(posted.size(), std::size_t(4));
        QCOMPARE(lines.size(), 4);

        for (const QString &line : lines)
            QCOMPARE(
                QProcess::execute(QStringLiteral("sh"), {QStringLiteral("-c"), line + QStringLiteral(" -o /dev/null")}),
                0);
        QCOMPARE(refused, posted);
    }

    void check_serviceThatStops_countsTheRestAsBroken()
    {
        const ServiceProcess real;
        constexpr int POSTS = 20;
        std::atomic<int> posts{0};
        BrokenService *self = nullptr;
        BrokenService service(real.origin(),
                              [&](const BrokenService::Post &post, const BrokenService::Forward &forward) {
                                  if (++posts == POSTS)
                                      self->stop();
                                  return forward(post);
                              });
        self = &service;
        const Outcome outcome = check(optionsFor(service.url()));
        QVERIFY(outcome.lines.contains(QStringLiteral("        not tried: the service has left off answering")));
        const std::size_t all = checkNames(optionsFor({})).size();
        const std::size_t holding = all - static_cast<std::size_t>(broken(outcome).size());
        QVERIFY(holding > 0 && holding < all);
        QCOMPARE(outcome.lines.last(), result(holding, all));
        QCOMPARE(outcome.status, 1);
    }

    void program_cannotTest_saysWhatToDo_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("card");
        QTest::addColumn<QString>("why");
        const QString card = QStringLiteral("78563412:000123456");
        QTest::newRow("no URL") << "here" << card
                                << R"("here" is no URL of a cash service: give http://HOST:PORT/PATH, )"
                                   "what stands before /ParkingCheck";
        QTest::newRow("nothing listens") << "http://127.0.0.1:1/api" << card
                                         << "nothing answers at http://127.0.0.1:1/api/ParkingCheck (no connection): "
                                            "start the service, or correct the URL";
        QTest::newRow("another path") << "SERVICE/v2" << card
                                      << "SERVICE/v2/ParkingCheck answers HTTP 404: correct the URL, it is what stands "
                                         "before /ParkingCheck";
        QTest::newRow("no card") << "SERVICE"
                                 << "7856341:1"
                                 << R"("7856341:1" is no card: give UID:ID, the UID as requests carry it, for example )"
                                    "78563412:000123456";
        QTest::newRow("a card that owes nothing") << "SERVICE"
                                                  << "03000010:3"
                                                  << "no card owes at least 500 hundredths: let one into the car park "
                                                     "and name it with --card UID:ID";
    }

    void program_cannotTest_saysWhatToDo()
    {
        QFETCH(QString, url);
        QFETCH(QString, card);
        QFETCH(QString, why);
        const ServiceProcess service;
        const QString place = QStringLiteral("SERVICE");
        const Outcome outcome = checkProgram({url.replace(place, service.url()), QStringLiteral("--card"), card});
        QCOMPARE(outcome.lines.first(), QStringLiteral("cannot test: ") + why.replace(place, service.url()));
        QCOMPARE(outcome.status, 2);
    }

    void program_noCardOwes_listsWhatEachSays()
    {
        const ServiceProcess service;
        const Outcome outcome = checkProgram({service.url(), QStringLiteral("--card"), QStringLiteral("04000010:4"),
                                              QStringLiteral("--card"), QStringLiteral("02000010:2")});
        QCOMPARE(
            outcome.lines.mid(1),
            QStringList({QStringLiteral("  04000010:4: HTTP 200, ResultCode 4, \"Карта заблокирована\", TotalCharge 0"),
                         QStringLiteral("  02000010:2: HTTP 200, ResultCode 2, \"Карта не найдена\", TotalCharge 0")}));
        QCOMPARE(outcome.status, 2);
    }

    void program_options_areSent()
    {
        const ServiceProcess real;
        std::mutex mutex;
        QSet<QString> sent;
        const BrokenService service(
            real.origin(), [&](const BrokenService::Post &post, const BrokenService::Forward &forward) {
                const std::lock_guard<std::mutex> lock(mutex);
                for (const char *name : {"PartnerId", "ParkingId", "TermId", "CardUid", "CardId"})
                    sent.insert(QLatin1String(name) + QLatin1Char(' ') +
                                QString::fromStdString(ServiceBreaks::element(post.body, name)));
                return forward(post);
            });
        // Each option before the URL: none of them takes it for one more value.
        const Outcome outcome = checkProgram(QString::fromStdString("--partner p --parking 12 --timeout 9 --term 7 "
                                                                    "--term 8 --card 09000010:5 --card 78563412:6 " +
                                                                    service.url())
                                                 .split(QLatin1Char(' ')));
        QCOMPARE(outcome.status, 0);
        for (const char *text :
             {"PartnerId p", "ParkingId 12", "TermId 7", "TermId 8", "CardUid 09000010", "CardId 5", "CardId 6"})
            QVERIFY2(sent.contains(QLatin1String(text)), text);
        QVERIFY(!sent.contains(QStringLiteral("TermId 0042")));
    }

    void program_badArguments_cannotTest()
    {
        QCOMPARE(checkProgram({}).status, 2);
        QCOMPARE(checkProgram({QStringLiteral("http://127.0.0.1:1"), QStringLiteral("--timeout"), QStringLiteral("0")})
                     .status,
                 2);
    }
};

TEST_MAIN(CheckTest)
#include "tst_check.moc"
