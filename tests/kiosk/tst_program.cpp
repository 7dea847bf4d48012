// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/kioskprocess.h"
#include "ledger/ledger.h"

#include "kiosk/mood.h"
#include "support/cashservice.h"
#include "support/testcase.h"

#include <QDir>
#include <QFile>
#include <QImage>

using kiosk::LedgerEntry;
using kiosk::Outcome;

namespace {
const QByteArray CARD = "card: {id: \"305419896\", cardId: \"0000123456\"}";
const QByteArray DETAILS = "expect: {screen: details, within: 60000}";

QStringList withService(const CashService &service)
{
    return {QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--set"),
            QStringLiteral("csPort=%1").arg(service.port())};
}

QString scenario(const QByteArray &text)
{
    QFile file(WorkDirectory::path() + QStringLiteral("/s.yaml"));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

QVector<LedgerEntry> ledger()
{
    return kiosk::Ledger(WorkDirectory::path() + QStringLiteral("/kiosk.db")).latest(10);
}

void spoilLedger()
{
    QFile file(WorkDirectory::path() + QStringLiteral("/kiosk.db"));
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray(8192, 'x'));
}

/// A customer with the details before him and 100.00 in the terminal. @return what went wrong; empty: nothing.
QString payIn(KioskProcess &kiosk)
{
    for (const QByteArray &step : {QByteArray("start"), CARD, DETAILS, QByteArray("cash: 100")}) {
        const QString failure = kiosk.step(step);
        if (!failure.isEmpty())
            return failure;
    }
    return {};
}
} // namespace

/// The program as a whole: how it starts, ends, dies and comes back.
class ProgramTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void play_ofAScenario_endsWithItsStatus_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("output");
        QTest::newRow("holds") << QByteArray("steps:\n  - expect: {screen: idle}\n") << 0 << "";
        QTest::newRow("a step fails") << QByteArray("steps:\n  - wait: 0\n  - press: ok\n") << 1
                                      << "s.yaml:3: step 2 (press: ok): there is no button \"ok\" to touch, but none";
        QTest::newRow("mistakes") << QByteArray("steps:\n  - press: up\n  - fly\n") << 2
                                  << "s.yaml:3:5: there is no step \"fly\"";
        QTest::newRow("quits by itself") << QByteArray("steps:\n  - quit\n  - expect: {screen: idle}\n") << 0 << "";
    }

    void play_ofAScenario_endsWithItsStatus()
    {
        QFETCH(QByteArray, text);
        KioskProcess kiosk(
            {QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--play"), scenario(text)});
        QTEST(kiosk.finish(), "status");
        QFETCH(QString, output);
        const QString said = kiosk.output();
        QVERIFY2(said.contains(output), qPrintable(said));
    }

    void play_withoutAWorkDir_usesATemporaryFolderOrNone_data()
    {
        QTest::addColumn<QString>("temporary");
        QTest::addColumn<int>("status");
        QTest::newRow("a temporary folder") << WorkDirectory::path() << 0;
        // A file, not a folder.
        QTest::newRow("none to be had") << QStringLiteral("/proc/self/status") << 2;
    }

    void play_withoutAWorkDir_usesATemporaryFolderOrNone()
    {
        QFETCH(QString, temporary);
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("TMPDIR"), temporary);
        const QString home = WorkDirectory::path() + QStringLiteral("/home");
        environment.insert(QStringLiteral("TERMINAL_WORK_DIR"), home);
        process.setProcessEnvironment(environment);
        const QString path = scenario("steps:\n  - expect: {screen: idle}\n");
        process.start(QStringLiteral(KIOSK_PROGRAM),
                      {QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--play"), path});
        QVERIFY(process.waitForFinished(60'000));
        QTEST(process.exitCode(), "status");
        QVERIFY(!QFile::exists(home));
        QVERIFY(QDir(WorkDirectory::path()).entryList({QStringLiteral("kiosk-*")}).isEmpty());
    }

    void screenshots_ofAScenario_areInTheirFolder()
    {
        const QString shots = WorkDirectory::path() + QStringLiteral("/shots");
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--play"),
                            scenario("steps:\n  - screenshot: idle\n"), QStringLiteral("--shots"), shots});
        QCOMPARE(kiosk.finish(), 0);
        QVERIFY(!QImage(shots + QStringLiteral("/idle.png")).isNull());
    }

    void start_withBadArguments_tellsThemAll()
    {
        KioskProcess kiosk({QStringLiteral("--set"), QStringLiteral("a=1"), QStringLiteral("--bench"),
                            QStringLiteral("x"), QStringLiteral("--play"), QStringLiteral("/nonexistent.yaml")});
        QCOMPARE(kiosk.finish(), 2);
        const QString said = kiosk.output();
        QVERIFY2(said.contains(QStringLiteral("--set a=1")) && said.contains(QStringLiteral("--bench x")),
                 qPrintable(said));
    }

    void start_withAScenarioThatIsNotThere_isUnusable()
    {
        KioskProcess kiosk({QStringLiteral("--play"), QStringLiteral("/nonexistent.yaml")});
        QCOMPARE(kiosk.finish(), 2);
        QVERIFY(kiosk.output().contains(QStringLiteral("/nonexistent.yaml:")));
    }

    void start_besideAnotherInTheSameFolder_isRefused()
    {
        KioskProcess first({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE)});
        QCOMPARE(first.step("expect: {screen: idle}"), QString());
        KioskProcess second({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE)});
        QCOMPARE(second.finish(), 2);
        QVERIFY(second.output().contains(QStringLiteral("another terminal uses")));
        QCOMPARE(first.step("expect: {screen: idle}"), QString());
    }

    void play_withoutItsLedger_isUnusable()
    {
        spoilLedger();
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--play"),
                            scenario("steps:\n  - expect: {screen: idle}\n")});
        QCOMPARE(kiosk.finish(), 2);
        QVERIFY(kiosk.output().contains(QStringLiteral("the ledger: ")));
    }

    /// Where there is somebody to mend it, it waits for that.
    void signal_withoutALedger_endsTheProgram()
    {
        spoilLedger();
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE)});
        QVERIFY(kiosk.says("no ledger, it is tried again: the ledger: "));
        kiosk.sendSignal(SIGTERM);
        QCOMPARE(kiosk.finish(), 0);
    }

    void start_withoutAWorkDirectory_isUnusable()
    {
        KioskProcess kiosk({QStringLiteral("--work-dir"), QStringLiteral("/proc/nonexistent")});
        QCOMPARE(kiosk.finish(), 2);
    }

    void start_withAPluginThatCannotBeUsed_showsTheReason_data()
    {
        QTest::addColumn<QString>("plugin");
        QTest::addColumn<QByteArray>("mood");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no file") << "/nonexistent/libplugin.so" << QByteArray() << "Нет такого файла плагина";
        QTest::newRow("no plugin") << KIOSK_PROGRAM << QByteArray() << "не является плагином Qt";
        QTest::newRow("another interface") << OTHER_PLUGIN_FILE << QByteArray() << "другого интерфейса";
        QTest::newRow("dies on load") << FAKE_PLUGIN_FILE << QByteArray("dies") << "завершил программу при загрузке";
    }

    void start_withAPluginThatCannotBeUsed_showsTheReason()
    {
        QFETCH(QString, plugin);
        QFETCH(QByteArray, mood);
        QFETCH(QString, reason);
        const Mood set(mood);
        KioskProcess kiosk({QStringLiteral("--plugin-file"), plugin});
        const QJsonObject state = kiosk.state();
        QCOMPARE(state.value(QStringLiteral("screen")).toString(), QStringLiteral("broken"));
        const QString text = state.value(QStringLiteral("text")).toString();
        QVERIFY2(text.contains(reason) && text.contains(plugin), qPrintable(text));
        QCOMPARE(kiosk.step("start"), QString());
        QCOMPARE(kiosk.state().value(QStringLiteral("screen")).toString(), QStringLiteral("broken"));
        kiosk.sendSignal(SIGTERM);
        QCOMPARE(kiosk.finish(), 0);
    }

    void start_withoutAPluginFile_findsTheOneBesideTheProgram()
    {
        KioskProcess kiosk;
        QCOMPARE(kiosk.step("expect: {screen: idle}"), QString());
    }

    void signal_onIdle_endsTheProgram_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void signal_onIdle_endsTheProgram()
    {
        QFETCH(int, signal);
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE)});
        QCOMPARE(kiosk.step("expect: {screen: idle}"), QString());
        kiosk.sendSignal(signal);
        QCOMPARE(kiosk.finish(), 0);
    }

    void signal_inAScenario_failsIt()
    {
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--play"),
                            scenario("steps:\n  - wait: 600000\n")});
        QCOMPARE(kiosk.step("expect: {screen: idle}"), QString());
        kiosk.sendSignal(SIGTERM);
        QCOMPARE(kiosk.finish(), 1);
    }

    void quit_overTheSocket_endsTheProgram()
    {
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE)});
        QCOMPARE(kiosk.step("quit"), QString());
        QCOMPARE(kiosk.finish(), 0);
    }

    void sigterm_withMoneyIn_commitsItFirst()
    {
        const CashService service;
        KioskProcess kiosk(withService(service));
        QCOMPARE(payIn(kiosk), QString());
        kiosk.sendSignal(SIGTERM);
        QCOMPARE(kiosk.finish(), 0);
        QCOMPARE(ledger().value(0).outcome, Outcome::Confirmed);
        QCOMPARE(ledger().value(0).summ.toString(), QStringLiteral("100.00"));
        QCOMPARE(service.owed(QStringLiteral("12345678")), 5000);
    }

    void sigterm_insideACommit_waitsForItsRow()
    {
        const CashService service;
        QVERIFY(service.setFault(QStringLiteral("ParkInfoPay:delay=2s")));
        KioskProcess kiosk(withService(service));
        QCOMPARE(payIn(kiosk), QString());
        QCOMPARE(kiosk.step("press: pay"), QString());
        QCOMPARE(kiosk.step("expect: {payment: {outcome: committing}}"), QString());
        kiosk.sendSignal(SIGTERM);
        kiosk.sendSignal(SIGTERM);
        QCOMPARE(kiosk.finish(), 0);
        QCOMPARE(ledger().value(0).outcome, Outcome::Confirmed);
    }

    /// The terminal is killed at each of its stages; the next start shows what was in progress, and sends nothing
    /// again.
    void killed_withMoneyIn_showsItAtTheNextStart_data()
    {
        QTest::addColumn<QByteArrayList>("steps");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<int>("requests");
        QTest::newRow("with money in") << QByteArrayList{} << "interrupted" << 0;
        QTest::newRow("inside the commit")
            << QByteArrayList{"press: pay", "expect: {screen: message, payment: {outcome: committing}}"}
            << "unconfirmed" << 1;
        QTest::newRow("on the receipt") << QByteArrayList{"press: pay", "expect: {screen: receipt, within: 60000}"}
                                        << "confirmed" << 1;
    }

    void killed_withMoneyIn_showsItAtTheNextStart()
    {
        QFETCH(QByteArrayList, steps);
        QFETCH(QString, outcome);
        QFETCH(int, requests);
        const CashService service;
        const auto sent = [&] { return service.requests(QStringLiteral("ParkInfoPay")).size(); };
        QVERIFY(service.setFault(QStringLiteral("ParkInfoPay:delay=3s")));
        {
            KioskProcess kiosk(withService(service));
            QCOMPARE(payIn(kiosk), QString());
            for (const QByteArray &step : steps)
                QCOMPARE(kiosk.step(step), QString());
            for (QDeadlineTimer limit(30'000); sent() < requests && !limit.hasExpired();) {
            }
            kiosk.kill();
        }
        KioskProcess kiosk(withService(service));
        QCOMPARE(kiosk.step("expect: {screen: receipt, payment: {uid: 1, outcome: " + outcome.toUtf8() + "}}"),
                 QString());
        const QJsonObject payment = kiosk.state().value(QStringLiteral("payment")).toObject();
        QCOMPARE(payment.value(QStringLiteral("cash")).toString(), QStringLiteral("100.00"));
        QCOMPARE(payment.value(QStringLiteral("change")).toString(),
                 outcome == QLatin1String("interrupted") ? QStringLiteral("100.00") : QStringLiteral("0.00"));
        QCOMPARE(kiosk.step("press: ok"), QString());
        QCOMPARE(kiosk.step("expect: {screen: idle}"), QString());
        QCOMPARE(sent(), requests);
        kiosk.kill();
        // It was seen: not again.
        KioskProcess again(withService(service));
        QCOMPARE(again.step("expect: {screen: idle}"), QString());
        QCOMPARE(payIn(again), QString());
        QCOMPARE(again.step("press: pay"), QString());
        QCOMPARE(again.step("expect: {payment: {uid: 2}}"), QString());
    }

    void killed_withoutMoney_leavesNothingBehind()
    {
        const CashService service;
        {
            KioskProcess kiosk(withService(service));
            for (const QByteArray &step : {QByteArray("start"), CARD, DETAILS})
                QCOMPARE(kiosk.step(step), QString());
            kiosk.kill();
        }
        KioskProcess kiosk(withService(service));
        QCOMPARE(kiosk.step("expect: {screen: idle}"), QString());
        QVERIFY(ledger().isEmpty());
    }
};

TEST_MAIN(ProgramTest)
#include "tst_program.moc"
