// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "arguments.h"
#include "core/terminalappsettings.h"
#include "endlimit.h"
#include "kiosk/kioskprocess.h"
#include "kiosk/mood.h"
#include "ledger/ledger.h"

#include "support/testcase.h"
#include "support/waiting.h"

#include <QFile>

using kiosk::LedgerEntry;
using kiosk::Outcome;

namespace {
/// What the system tells of a process; empty where there is none.
QByteArray fileOf(const QByteArray &process, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(QString::fromLatin1(process), QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool isRunning(const QByteArray &process)
{
    // One that has ended may wait for somebody to ask.
    const QByteArray stat = fileOf(process, "stat");
    return !stat.isEmpty() && stat.mid(stat.lastIndexOf(')') + 2, 1) != "Z";
}
} // namespace

/// A program that is told to end ends, whatever its plugin does.
class ProgramEndTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void end_wantedOfAPluginThatNeverReturns_comesAndIsSaid_data()
    {
        QTest::addColumn<QByteArray>("mood");
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("quit, the plugin has a loop of its own") << QByteArray("never returns") << QByteArray("quit");
        QTest::newRow("SIGTERM, the plugin has a loop of its own") << QByteArray("never returns") << QByteArray();
        QTest::newRow("SIGTERM, the plugin stands still") << QByteArray("stands still") << QByteArray();
    }

    void end_wantedOfAPluginThatNeverReturns_comesAndIsSaid()
    {
        QFETCH(QByteArray, mood);
        QFETCH(QByteArray, end);
        TerminalAppSettings().setOnlineCheckTimeout(1);
        const Mood plugin(mood);
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(FAKE_PLUGIN_FILE)});
        for (const QByteArray step : {"start", "card: {id: 1}", "expect: {screen: details}", "cash: 200", "press: pay"})
            QCOMPARE(kiosk.step(step), QString());
        if (mood == "never returns")
            QCOMPARE(kiosk.step("expect: {payment: {outcome: committing}}"), QString());
        if (end.isEmpty())
            kiosk.sendSignal(SIGTERM);
        else
            QCOMPARE(kiosk.step(end), QString());
        QCOMPARE(kiosk.finish(), kiosk::EndLimit::STATUS);
        const QString output = kiosk.output();
        QVERIFY2(output.contains(QStringLiteral("the plugin does not return, the program ends without it")),
                 qPrintable(output));

        const kiosk::Ledger ledger(WorkDirectory::path() + QStringLiteral("/kiosk.db"));
        QCOMPARE(ledger.unseen().size(), 1);
        const LedgerEntry payment = ledger.latest(10).value(0);
        QCOMPARE(payment.outcome, Outcome::Unconfirmed);
        QCOMPARE(payment.cash.toString(), QStringLiteral("200.00"));
        QCOMPARE(payment.summ.toString(), QStringLiteral("150.00"));
        QCOMPARE(payment.change.toString(), QStringLiteral("50.00"));
    }

    /// Not by the limit: it has been told to end, and nothing is in progress.
    void end_wantedWhileThePluginIsTriedOut_comesAtOnce_data()
    {
        QTest::addColumn<bool>("isScenario");
        QTest::addColumn<int>("status");
        QTest::newRow("a terminal") << false << 0;
        QTest::newRow("a scenario") << true << 1;
    }

    void end_wantedWhileThePluginIsTriedOut_comesAtOnce()
    {
        const Mood set("hangs");
        QFETCH(bool, isScenario);
        QStringList arguments = {QStringLiteral("--plugin-file"), QStringLiteral(FAKE_PLUGIN_FILE)};
        if (isScenario)
            arguments << QStringLiteral("--play") << QStringLiteral(SHIPPED_SCENARIOS "/demo.yaml");
        KioskProcess kiosk(arguments);
        QVERIFY(kiosk.says("the plugin is tried out"));
        kiosk.sendSignal(SIGTERM);
        QTEST(kiosk.finish(), "status");
        const QString output = kiosk.output();
        QVERIFY2(!output.contains(QStringLiteral("не загрузился")), qPrintable(output));
        QVERIFY2(!output.contains(QStringLiteral("the program ends without it")), qPrintable(output));
    }

    void end_ofAKilledProgram_isThatOfThePluginOnTrial()
    {
        const Mood set("hangs");
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(FAKE_PLUGIN_FILE)});
        QVERIFY(kiosk.says("the plugin is tried out"));
        QByteArray trial;
        WAIT_FOR((trial = kiosk.children()).isEmpty(), false);
        // Before that it is Qt's, which waits for a word of the program that starts it.
        WAIT_FOR(fileOf(trial, "cmdline").contains(kiosk::PROBE_OPTION), true);
        kiosk.kill();
        WAIT_FOR(isRunning(trial), false);
    }

    void end_ofAPluginThatNeverGoes_comesAndIsSaid()
    {
        TerminalAppSettings().setOnlineCheckTimeout(1);
        const Mood set("never goes");
        KioskProcess kiosk({QStringLiteral("--plugin-file"), QStringLiteral(FAKE_PLUGIN_FILE)});
        for (const QByteArray step : {"open: service", "close", "quit"})
            QCOMPARE(kiosk.step(step), QString());
        QCOMPARE(kiosk.finish(), kiosk::EndLimit::STATUS);
        QVERIFY(kiosk.output().contains(QStringLiteral("the program ends without it")));
    }
};

TEST_MAIN(ProgramEndTest)

#include "tst_programend.moc"
