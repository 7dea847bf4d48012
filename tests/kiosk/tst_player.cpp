// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/player.h"

#include "cashservice/serviceprocess.h"
#include "kiosk/terminalbench.h"
#include "scenario/servicefaults.h"

#include "support/testcase.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QPushButton>
#include <QSignalSpy>

using kiosk::Outcome;
using kiosk::Player;
using kiosk::ServiceFaults;
using kiosk::Stage;

namespace {
kiosk::Scenario scenario(const QByteArray &steps)
{
    QFile file(WorkDirectory::path() + QStringLiteral("/s.yaml"));
    if (file.open(QIODevice::WriteOnly))
        file.write("steps:\n" + steps);
    file.close();
    return kiosk::readScenario(file.fileName());
}

/// @return which step failed; empty: every step held.
QString play(const QByteArray &steps, const Stage &stage)
{
    Player player(scenario(steps), stage);
    QSignalSpy finished(&player, &Player::finished);
    player.start();
    waitUntil([&] { return finished.count() > 0; });
    return finished.count() == 1 ? finished.first().first().toString() : QStringLiteral("it did not end");
}
} // namespace

/// Scenarios on a terminal with the fake plugin: what steps do, and how they fail.
class PlayerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void scenario_thatHolds_isPlayedToItsEnd()
    {
        TerminalBench bench;
        QCOMPARE(play("  - expect: {screen: idle}\n"
                      "  - session-card: {id: 1}\n"
                      "  - start\n"
                      "  - card: {id: 2}\n"
                      "  - wait: 10\n"
                      "  - stop\n"
                      "  - open: service\n"
                      "  - expect: {screen: service}\n"
                      "  - save\n"
                      "  - close\n"
                      "  - settings: {csPort: 81}\n"
                      "  - expect: {screen: idle}\n",
                      bench.stage()),
                 QString());
        const QStringList calls = bench.takeCalls();
        QVERIFY(calls.contains(QStringLiteral("card 2")));
        QVERIFY(calls.contains(QStringLiteral("saveSettings")));
        QVERIFY(calls.contains(QStringLiteral("~FakeSettings")));
    }

    void step_thatFails_isToldWithWhatWasThere_data()
    {
        QTest::addColumn<QByteArray>("step");
        QTest::addColumn<QString>("failure");
        const auto row = [](const char *name, const char *step, const char *failure) {
            QTest::newRow(name) << QByteArray(step) << QString::fromUtf8(failure);
        };
        row("a button that is not there", "press: ok", "(press: ok): there is no button \"ok\" to touch, but none");
        row("nothing to type on", "type: a", "(type: a): there is nothing to type on");
        row("no cash service", "service: clear", "(service: clear): there is no cash service to break: give --bench");
        row("another screen", "expect: {screen: receipt, within: 0}",
            "(expect: {screen: receipt, within: 0}): after 0 ms: expected screen \"receipt\"; there was \"idle\"");
        row("another text", "expect: {text: a, within: 20}",
            "(expect: {text: a, within: 20}): after 20 ms: expected text \"a\"; there was \"\"");
        row("buttons where none is", "expect: {buttons: [pay, ok], within: 0}",
            "expected buttons \"pay, ok\"; there was \"\"");
        row("a parameter without a payment", "expect: {parameters: {SummToPay: \"\"}, within: 0}",
            "there is no parameter \"SummToPay\"; there are none");
        row("no payment", "expect: {payment: {uid: 1}, within: 0}", "expected a payment; there was none");
    }

    void step_thatFails_isToldWithWhatWasThere()
    {
        QFETCH(QByteArray, step);
        QFETCH(QString, failure);
        TerminalBench bench;
        const QString told = play("  - wait: 0\n  - " + step + "\n  - start\n", bench.stage());
        QVERIFY2(told.startsWith(WorkDirectory::path() + QStringLiteral("/s.yaml:3: step 2 (")), qPrintable(told));
        QVERIFY2(told.contains(failure), qPrintable(told));
        QCOMPARE(bench->screen(), TerminalBench::Screen::Idle);
    }

    void step_thatTheTerminalRefuses_isNoFailure()
    {
        TerminalBench bench;
        QCOMPARE(play("  - stop\n  - cash: 100\n  - card: {}\n  - save\n  - close\n", bench.stage()), QString());
        QVERIFY(bench->entries().isEmpty());
    }

    void expect_ofWhatComesLater_waitsForIt()
    {
        TerminalBench bench;
        QTimer::singleShot(200, &bench.terminal(), [&] { bench->start(); });
        QCOMPARE(play("  - expect: {screen: idle}\n"
                      "  - wait: 500\n"
                      "  - card: {id: 1}\n",
                      bench.stage()),
                 QString());
        QVERIFY(bench.takeCalls().contains(QStringLiteral("card 1")));
    }

    void expect_ofParameters_takesNoNameForAnother_data()
    {
        QTest::addColumn<QByteArray>("parameters");
        QTest::addColumn<QString>("mismatch");
        const auto row = [](const char *parameters, const char *mismatch) {
            QTest::newRow(parameters) << QByteArray(parameters) << QString::fromUtf8(mismatch);
        };
        row("SummToPay: '150.00', card_num: '000123456'", "");
        row("TermNo: ''", "");
        row("TermNo: '7'", "expected parameter TermNo \"7\"; there was \"\"");
        row("card_num: ''", "expected parameter card_num \"\"; there was \"000123456\"");
        row("SumToPay: ''",
            "there is no parameter \"SumToPay\"; there are ParkNumber, StartDate, StartTime, SummToPay, "
            "TermNo, UIN, card_num");
        row("termno: ''", "there is no parameter \"termno\"; there are ");
    }

    void expect_ofParameters_takesNoNameForAnother()
    {
        QFETCH(QByteArray, parameters);
        QFETCH(QString, mismatch);
        TerminalBench bench;
        bench.showDetails();
        const QString failure = play("  - expect: {within: 0, parameters: {" + parameters + "}}\n", bench.stage());
        QVERIFY2(mismatch.isEmpty() ? failure.isEmpty() : failure.contains(mismatch), qPrintable(failure));
    }

    void expect_ofButtons_meansThemAll_data()
    {
        QTest::addColumn<QByteArray>("buttons");
        QTest::addColumn<QString>("mismatch");
        const auto row = [](const char *buttons, const char *mismatch) {
            QTest::newRow(buttons) << QByteArray(buttons) << QString::fromUtf8(mismatch);
        };
        row("[no, yes]", "");
        row("[yes, no]", "");
        row("[yes]", "expected buttons \"yes\"; there was \"yes, no\"");
        row("[yes, no, pay]", "expected buttons \"yes, no, pay\"; there was \"yes, no\"");
        row("[]", "expected buttons \"\"; there was \"yes, no\"");
    }

    void expect_ofButtons_meansThemAll()
    {
        QFETCH(QByteArray, buttons);
        QFETCH(QString, mismatch);
        TerminalBench bench;
        int left = 0;
        for (const char *name : {"yesButton", "noButton", "payButton"}) {
            auto *const button = new QPushButton(&bench.window());
            button->setObjectName(QLatin1String(name));
            button->setEnabled(name != QByteArray("payButton"));
            button->setGeometry(left, 0, 100, 50);
            button->show();
            left += 100;
        }
        const QString failure = play("  - expect: {within: 0, buttons: " + buttons + "}\n", bench.stage());
        QVERIFY2(mismatch.isEmpty() ? failure.isEmpty() : failure.contains(mismatch), qPrintable(failure));
    }

    void expect_ofAPayment_looksAtTheLatest_data()
    {
        QTest::addColumn<QByteArray>("payment");
        QTest::addColumn<QString>("mismatch");
        const auto row = [](const char *payment, const char *mismatch) {
            QTest::newRow(payment) << QByteArray(payment) << QString::fromUtf8(mismatch);
        };
        row("uid: 1, summ: 150, total: 155.0, change: 45.00, outcome: confirmed", "");
        row("uid: 2", "expected payment uid \"2\"; there was \"1\"");
        row("summ: 200", "expected payment summ \"200\"; there was \"150.00\"");
        row("total: 150", "expected payment total \"150\"; there was \"155.00\"");
        row("change: 0", "expected payment change \"0\"; there was \"45.00\"");
        row("outcome: unconfirmed", "expected payment outcome \"unconfirmed\"; there was \"confirmed\"");
    }

    void expect_ofAPayment_looksAtTheLatest()
    {
        QFETCH(QByteArray, payment);
        QFETCH(QString, mismatch);
        kiosk::TerminalOptions options;
        options.comission = FixNumber(100, QStringLiteral("5"));
        TerminalBench bench(options);
        bench.showDetails();
        bench.takeCash("200");
        bench->pay();
        WAIT_FOR(bench->screen(), TerminalBench::Screen::Receipt);
        const QString failure = play("  - expect: {within: 0, payment: {" + payment + "}}\n", bench.stage());
        QVERIFY2(mismatch.isEmpty() ? failure.isEmpty() : failure.contains(mismatch), qPrintable(failure));
    }

    /// A step ends when its touch is delivered, and the next ones go on inside the plugin's own event loop.
    void steps_insideACommit_goOn()
    {
        TerminalBench bench;
        bench.beginHeldCommit();
        bool wasCommitting = false;
        QTimer::singleShot(0, &bench.terminal(), [&] {
            Player player(scenario("  - expect: {payment: {outcome: committing}}\n  - stop\n  - card: {id: 3}\n"),
                          bench.stage());
            QSignalSpy finished(&player, &Player::finished);
            player.start();
            waitUntil([&] { return finished.count() > 0; });
            wasCommitting = bench->isCommitting() && finished.value(0).value(0).toString().isEmpty();
            bench.tellPlugin("letGo");
        });
        WAIT_FOR(bench->screen(), TerminalBench::Screen::Receipt);
        QVERIFY(wasCommitting);
        QCOMPARE(bench.outcome(), Outcome::Confirmed);
        QVERIFY(bench.takeCalls().contains(QStringLiteral("card 3")));
    }

    void screenshot_withAFolder_isTaken()
    {
        TerminalBench bench;
        Stage stage = bench.stage();
        QCOMPARE(play("  - screenshot: a\n", stage), QString());
        stage.shotsDir = WorkDirectory::path() + QStringLiteral("/shots");
        QCOMPARE(play("  - screenshot: a\n", stage), QString());
        QCOMPARE(QImage(stage.shotsDir + QStringLiteral("/a.png")).size(), bench.window().size());
        stage.shotsDir = QStringLiteral("/proc/nonexistent");
        QVERIFY(
            play("  - screenshot: a\n", stage).contains(QStringLiteral("/proc/nonexistent/a.png cannot be written")));
    }

    void service_faults_areSetAndEnded_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("the admin interface") << "/admin";
        QTest::newRow("without a path") << "";
    }

    void service_faults_areSetAndEnded()
    {
        QFETCH(QString, path);
        TerminalBench bench;
        const ServiceProcess service;
        ServiceFaults faults(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(service.port()) + path));
        Stage stage = bench.stage();
        stage.faults = &faults;
        const auto rules = [&] {
            return adminJson(service.port(), "/admin/faults")[QStringLiteral("faults")].toArray();
        };
        QCOMPARE(play("  - service: {fault: \"any:empty\"}\n", stage), QString());
        QCOMPARE(rules().size(), 1);
        QCOMPARE(play("  - service: clear\n", stage), QString());
        QVERIFY(rules().isEmpty());
        const QString failure = play("  - service: {fault: \"any:fly\"}\n", stage);
        QVERIFY2(failure.contains(QStringLiteral("(service: {fault: any:fly}): the cash service: ")),
                 qPrintable(failure));
        QVERIFY(rules().isEmpty());
    }

    void service_thatIsGone_failsTheStep()
    {
        TerminalBench bench;
        ServiceProcess service;
        ServiceFaults faults(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(service.port())));
        Stage stage = bench.stage();
        stage.faults = &faults;
        service.kill();
        QVERIFY(!play("  - service: clear\n", stage).isEmpty());
    }
};

WIDGET_TEST_MAIN(PlayerTest)
#include "tst_player.moc"
