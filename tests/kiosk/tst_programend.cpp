// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"
#include "endlimit.h"
#include "kiosk/kioskprocess.h"
#include "kiosk/mood.h"
#include "ledger/ledger.h"

#include "support/testcase.h"

using kiosk::LedgerEntry;
using kiosk::Outcome;

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
};

TEST_MAIN(ProgramEndTest)

#include "tst_programend.moc"
