// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/scenario.h"

#include "kiosk/ordinaryuser.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <sys/stat.h>

using kiosk::readScenario;
using kiosk::readStep;
using kiosk::Scenario;
using kiosk::ScenarioError;
using kiosk::Step;
using kiosk::Verb;

namespace {
QString write(const QByteArray &text)
{
    QFile file(WorkDirectory::path() + QStringLiteral("/s.yaml"));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

QStringList mistakesOfFile(const QString &path)
{
    try {
        Q_UNUSED(readScenario(path));
    } catch (const ScenarioError &error) {
        return error.mistakes();
    }
    return {};
}

/// Without the folder.
QStringList mistakesOf(const QByteArray &text)
{
    return mistakesOfFile(write(text)).replaceInStrings(WorkDirectory::path() + QLatin1Char('/'), QString());
}

Step step(const QString &text)
{
    return readStep(text, QStringLiteral("step"));
}
} // namespace

class ScenarioTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void file_withEverything_isRead()
    {
        const QByteArray text = "# what it shows\n"
                                "settings: {csPort: 8080, PartnerId: ''}\n"
                                "host: {onlineCheckTimeout: 3, autoCloseMessagesAfter: 0, plugin: kept, comission: 5}\n"
                                "steps:\n"
                                "  - start\n"
                                "  - press: ok\n";
        const Scenario scenario = readScenario(write(text));
        QCOMPARE(scenario.settings, (QVariantMap{{QStringLiteral("csPort"), QStringLiteral("8080")},
                                                 {QStringLiteral("PartnerId"), QString(QLatin1String(""))}}));
        QCOMPARE(scenario.host.onlineCheckTimeout, 3);
        QCOMPARE(scenario.host.autoCloseMessagesAfter, 0);
        QVERIFY(scenario.host.keepPlugin);
        QCOMPARE(scenario.host.comission.toString(), QStringLiteral("5.00"));
        QCOMPARE(scenario.steps.size(), 2);
        QCOMPARE(scenario.steps.at(0).verb, Verb::Start);
        QCOMPARE(scenario.steps.at(0).line, 5);
        QCOMPARE(scenario.steps.at(1).caption, QStringLiteral("press: ok"));
        QCOMPARE(scenario.steps.at(1).line, 6);
    }

    void file_withStepsAlone_leavesTheHostAsItIs()
    {
        const Scenario scenario = readScenario(write("steps: [start]"));
        QVERIFY(scenario.settings.isEmpty());
        QVERIFY(!scenario.host.onlineCheckTimeout);
        QVERIFY(!scenario.host.autoCloseMessagesAfter);
        QVERIFY(!scenario.host.keepPlugin);
    }

    void step_ofEachVerb_isRead()
    {
        QCOMPARE(step(QStringLiteral("stop")).verb, Verb::Stop);
        QCOMPARE(step(QStringLiteral("save")).verb, Verb::Save);
        QCOMPARE(step(QStringLiteral("close")).verb, Verb::Close);
        QCOMPARE(step(QStringLiteral("quit")).verb, Verb::Quit);
        QCOMPARE(step(QStringLiteral("open: service")).verb, Verb::OpenService);
        QCOMPARE(step(QStringLiteral("type: 0A0B0C0D")).text, QStringLiteral("0A0B0C0D"));
        QCOMPARE(step(QStringLiteral("type: ''")).text, QString(QLatin1String("")));
        QCOMPARE(step(QStringLiteral("cash: 100.50")).amount.toString(), QStringLiteral("100.50"));
        QCOMPARE(step(QStringLiteral("wait: 1500")).milliseconds, 1500);
        QCOMPARE(step(QStringLiteral("screenshot: 1-idle.a")).text, QStringLiteral("1-idle.a"));
        QCOMPARE(step(QStringLiteral("service: clear")).verb, Verb::ClearFaults);
        const Step fault = step(QStringLiteral("service: {fault: ParkInfoPay#1@before:empty}"));
        QCOMPARE(fault.verb, Verb::SetFault);
        QCOMPARE(fault.text, QStringLiteral("ParkInfoPay#1@before:empty"));
        const Step settings = step(QStringLiteral("settings: {csPort: 80}"));
        QCOMPARE(settings.values, (QVariantMap{{QStringLiteral("csPort"), QStringLiteral("80")}}));
    }

    void card_withAnyOfItsTexts_isRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariantMap>("card");
        const QVariantMap whole = {{QStringLiteral("id"), QStringLiteral("305419896")},
                                   {QStringLiteral("cardId"), QStringLiteral("000123456")},
                                   {QStringLiteral("pdata"), QStringLiteral("0131")}};
        QTest::newRow("whole") << "card: {id: 305419896, cardId: 000123456, pdata: 0131}" << whole;
        QTest::newRow("empty") << "card: {}" << QVariantMap();
        QTest::newRow("odd") << "card: {id: \"<&\", cardId: \"\"}"
                             << QVariantMap{{QStringLiteral("id"), QStringLiteral("<&")},
                                            {QStringLiteral("cardId"), QString(QLatin1String(""))}};
        QTest::newRow("in the session") << "session-card: {id: 1}"
                                        << QVariantMap{{QStringLiteral("id"), QStringLiteral("1")}};
    }

    void card_withAnyOfItsTexts_isRead()
    {
        QFETCH(QString, text);
        const Step read = step(text);
        QCOMPARE(read.verb, text.startsWith(QLatin1String("card")) ? Verb::Card : Verb::SessionCard);
        QTEST(read.values, "card");
    }

    void expect_withEverything_isRead()
    {
        const kiosk::Expectation expected =
            step(QStringLiteral("expect: {screen: details, text: К оплате, buttons: [pay, cancel], "
                                "parameters: {SummToPay: '150.00', UIN: a}, "
                                "payment: {uid: 1, summ: 150, total: 155.00, change: 0, outcome: confirmed}, "
                                "within: 100}"))
                .expectation;
        QCOMPARE(expected.screen, QStringLiteral("details"));
        QCOMPARE(expected.text, QStringLiteral("К оплате"));
        QCOMPARE(expected.buttons, (QStringList{QStringLiteral("pay"), QStringLiteral("cancel")}));
        QCOMPARE(expected.parameters, (QMap<QString, QString>{{QStringLiteral("SummToPay"), QStringLiteral("150.00")},
                                                              {QStringLiteral("UIN"), QStringLiteral("a")}}));
        QCOMPARE(expected.payment.size(), 5);
        QCOMPARE(expected.payment.value(QStringLiteral("total")), QStringLiteral("155.00"));
        QCOMPARE(expected.within, 100);
        QCOMPARE(step(QStringLiteral("expect: {}")).expectation.within, 5000);
        QVERIFY(!step(QStringLiteral("expect: {}")).expectation.buttons);
        QCOMPARE(step(QStringLiteral("expect: {buttons: []}")).expectation.buttons, QStringList());
    }

    void mistake_anywhere_isToldWithItsPlace_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("mistake");
        const auto row = [](const char *name, const char *text, const char *mistake) {
            QTest::newRow(name) << QByteArray(text) << QString::fromUtf8(mistake);
        };
        row("empty file", "", "s.yaml:1:1: the scenario: it is empty; write its steps");
        row("comments alone", "# steps:\n", "s.yaml:1:1: the scenario: it is empty; write its steps");
        row("no steps", "settings: {}", "s.yaml:1:1: the scenario: there are no steps");
        row("an empty list", "steps: []", "s.yaml:1:1: the scenario: there are no steps");
        row("no map", "- start", "s.yaml:1:1: the scenario: write KEY: VALUE");
        row("no YAML", "steps:\n  - type: a: b", "s.yaml:2:12: illegal map value");
        row("two documents", "steps: [start]\n---\nsteps: [start]", "s.yaml:3:1: there is a second document");
        row("unknown key", "stepz: 1\nsteps: [start]",
            "s.yaml:1:1: the scenario: there is no key \"stepz\"; the keys are settings, host, steps");
        row("a comma behind the document", "{steps: [start]}, x", "s.yaml:1:17: there is a second document");
        row("a line end in a value", "steps: [type: \"\", press: \"a\\nb\"]",
            "s.yaml:1:26: \"a\\nb\" is none of ok, yes, no, next, back, cancel, pay");
        row("doubled key", "steps: [start]\nsteps: [start]", "s.yaml:2:1: the scenario: \"steps\" is there twice");
        row("unknown setting", "settings: {csPort2: 1}\nsteps: [start]",
            "s.yaml:1:12: settings: there is no key \"csPort2\"; the keys are csHost, csPort,");
        row("no port", "settings: {csPort: 65536}\nsteps: [start]",
            "s.yaml:1:20: \"65536\" is no port; write a number from 0 to 65535");
        row("unknown host key", "host: {a: 1}\nsteps: [start]", "s.yaml:1:8: host: there is no key \"a\"");
        row("unknown kind of plugin", "host: {plugin: new}\nsteps: [start]",
            "s.yaml:1:16: \"new\" is none of fresh, kept");
        row("no number", "host: {onlineCheckTimeout: -1}\nsteps: [start]",
            "s.yaml:1:28: \"-1\" is no whole number from 0 on");
        row("unknown step", "steps: [pay]", "s.yaml:1:9: there is no step \"pay\"; the steps are start, stop, card,");
        row("step of two", "steps: [{press: ok, type: a}]", "s.yaml:1:9: write a step as VERB or VERB: VALUE");
        row("step that is a list", "steps: [[start]]", "s.yaml:1:9: write a step as VERB or VERB: VALUE");
        row("steps that are no list", "steps: start", "s.yaml:1:8: steps: write a list, each item behind a dash");
        row("a value too many", "steps: [start: now]", "s.yaml:1:16: start takes nothing");
        row("a value missing", "steps: [press]", "s.yaml:1:9: write press: ok|yes|no|next|back|cancel|pay");
        row("a value that is no text", "steps: [type: [a]]", "s.yaml:1:15: write a plain value");
        row("an empty value", "steps: [type: ]", "s.yaml:1:15: write a plain value");
        row("unknown button", "steps: [press: start]",
            "s.yaml:1:16: \"start\" is none of ok, yes, no, next, back, cancel, pay");
        row("unknown field of a card", "steps: [card: {uid: 1}]", "s.yaml:1:16: the card: there is no key \"uid\"");
        row("negative note", "steps: [cash: -5]", "s.yaml:1:15: \"-5\" is no amount; write one like 50 or 50.00");
        row("note with a comma", "steps: [cash: '50,00']", "s.yaml:1:15: \"50,00\" is no amount");
        row("note of thousandths", "steps: [cash: 1.005]", "s.yaml:1:15: \"1.005\" is no amount");
        row("unknown menu", "steps: [open: door]", "s.yaml:1:15: \"door\" is none of service");
        row("unknown order to the service", "steps: [service: off]", "s.yaml:1:18: write {fault: RULE} or clear");
        row("unknown key for the service", "steps: [service: {rule: a}]",
            "s.yaml:1:19: service: there is no key \"rule\"");
        row("unknown screen", "steps: [expect: {screen: door}]",
            "s.yaml:1:26: \"door\" is none of idle, message, input, details, receipt, service");
        row("unknown expectation", "steps: [expect: {door: idle}]", "s.yaml:1:18: expect: there is no key \"door\"");
        row("unknown button of several", "steps: [expect: {buttons: [ok, start]}]",
            "s.yaml:1:32: \"start\" is none of ok, yes, no, next, back, cancel, pay");
        row("doubled button", "steps: [expect: {buttons: [ok, ok]}]", "s.yaml:1:32: buttons: \"ok\" is there twice");
        row("buttons that are no list", "steps: [expect: {buttons: ok}]",
            "s.yaml:1:27: buttons: write a list, each item behind a dash");
        row("a button that is no text", "steps: [expect: {buttons: [[]]}]", "s.yaml:1:28: write a plain value");
        row("unknown field of a payment", "steps: [expect: {payment: {sum: 1}}]",
            "s.yaml:1:28: payment: there is no key \"sum\"");
        row("unknown outcome", "steps: [expect: {payment: {outcome: paid}}]", "s.yaml:1:37: \"paid\" is none of open,");
        row("amount of a payment", "steps: [expect: {payment: {summ: a}}]", "s.yaml:1:34: \"a\" is no amount");
        row("number of a payment", "steps: [expect: {payment: {uid: a}}]", "s.yaml:1:33: \"a\" is no whole number");
        row("doubled parameter", "steps: [expect: {parameters: {a: 1, a: 2}}]",
            "s.yaml:1:37: parameters: \"a\" is there twice");
        row("name of a screenshot", "steps: [screenshot: ../a]", "s.yaml:1:21: \"../a\" is no name");
        row("number too large", "steps: [wait: 99999999999]", "s.yaml:1:15: \"99999999999\" is no whole number");
    }

    void mistake_anywhere_isToldWithItsPlace()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, mistake);
        const QStringList mistakes = mistakesOf(text);
        QCOMPARE(mistakes.size(), 1);
        QVERIFY2(mistakes.first().startsWith(mistake), qPrintable(mistakes.first()));
    }

    void mistakes_ofAFile_areToldAllAtOnceInOrder()
    {
        const QStringList mistakes = mistakesOf("steps:\n"
                                                "  - press: up\n"
                                                "  - expect: {screen: a, within: b}\n"
                                                "  - fly\n"
                                                "settings: {a: 1}\n");
        QStringList places;
        for (const QString &mistake : mistakes)
            places.append(mistake.section(QLatin1Char(':'), 1, 2));
        QCOMPARE(places.join(QLatin1Char(' ')), QStringLiteral("2:12 3:22 3:33 4:5 5:12"));
    }

    void file_thatCannotBeRead_isAMistake_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << "/nonexistent/s.yaml"
                                 << "No such file or directory";
        QTest::newRow("a folder") << "/"
                                  << "file to open is a directory";
        QTest::newRow("fails while it is read") << "/proc/self/mem"
                                                << "Input/output error";
    }

    void file_thatCannotBeRead_isAMistake()
    {
        QFETCH(QString, path);
        QFETCH(QString, reason);
        QCOMPARE(mistakesOfFile(path), QStringList{path + QStringLiteral(": ") + reason});
    }

    void file_thatMayNotBeRead_isAMistake()
    {
        const QString path = write("steps: [start]");
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0), 0);
        const OrdinaryUser user;
        QCOMPARE(mistakesOfFile(path), QStringList{path + QStringLiteral(": Permission denied")});
    }

    void step_withAMistake_namesItsSource()
    {
        try {
            Q_UNUSED(step(QStringLiteral("press: up")));
            QFAIL("it was read");
        } catch (const ScenarioError &error) {
            QVERIFY(error.mistakes().first().startsWith(QStringLiteral("step:1:8: ")));
        }
    }

    void step_asACommand_isTheSame_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("caption");
        QTest::newRow("a word") << "press ok"
                                << "press: ok";
        QTest::newRow("a map") << "session-card {id: 7, pdata: x}"
                               << "session-card: {id: 7, pdata: x}";
        QTest::newRow("some words") << "  type  a b "
                                    << "type: a b";
        QTest::newRow("a sign first") << "type -5"
                                      << "type: -5";
        QTest::newRow("nothing to take") << "start"
                                         << "start";
        QTest::newRow("a step") << "press: ok"
                                << "press: ok";
        QTest::newRow("a map of one step") << "{press: ok}"
                                           << "press: ok";
        QTest::newRow("a blank before the colon") << "press : ok"
                                                  << "press: ok";
        QTest::newRow("blanks behind") << "start  "
                                       << "start";
        QTest::newRow("a comment behind blanks") << "start  # over"
                                                 << "start";
        QTest::newRow("a comment") << "start # over"
                                   << "start";
    }

    void step_asACommand_isTheSame()
    {
        QFETCH(QString, command);
        QFETCH(QString, caption);
        QCOMPARE(step(command).caption, caption);
    }

    void syntaxes_ofAllSteps_beginWithTheirVerbs()
    {
        const QStringList syntaxes = kiosk::stepSyntaxes();
        QCOMPARE(syntaxes.size(), 16);
        QVERIFY(syntaxes.contains(QStringLiteral("start")));
        QVERIFY(syntaxes.contains(QStringLiteral("cash: AMOUNT")));
    }

    void shippedScenarios_beginWithACommentAndExpectSomething()
    {
        const QDir folder(QStringLiteral(SHIPPED_SCENARIOS));
        const QStringList names = folder.entryList({QStringLiteral("*.yaml")});
        QVERIFY2(names.size() >= 25, qPrintable(QString::number(names.size())));
        for (const QString &name : names) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(file.readLine().startsWith("# "), qPrintable(name));
            const Scenario scenario = readScenario(file.fileName());
            QVERIFY2(std::any_of(scenario.steps.cbegin(), scenario.steps.cend(),
                                 [](const Step &one) { return one.verb == Verb::Expect; }),
                     qPrintable(name));
        }
    }
};

TEST_MAIN(ScenarioTest)
#include "tst_scenario.moc"
