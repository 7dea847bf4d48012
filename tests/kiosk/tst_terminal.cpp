// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "terminal.h"

#include "core/terminalappsettings.h"
#include "kiosk/fulldisk.h"
#include "kiosk/mood.h"
#include "kiosk/terminalbench.h"

#include "support/testcase.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSignalSpy>

using kiosk::Terminal;
using kiosk::TerminalOptions;
using Screen = Terminal::Screen;

/// The flow and the verbs. The money and the commit have tests of their own.
class TerminalTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void start_onIdle_handsOverAndShowsTheFormFirst()
    {
        TerminalBench bench;
        QCOMPARE(bench->screen(), Screen::Idle);
        QCOMPARE(bench->start(), QString());
        QCOMPARE(bench->screen(), Screen::Form);
        QVERIFY(bench->formWidget()->isVisible());
        const QStringList expected = {QStringLiteral("setMessageReciever"), QStringLiteral("setMessageSender"),
                                      QStringLiteral("setTrelmInfo Терминал оплаты"), QStringLiteral("start"),
                                      QStringLiteral("showInitScreen")};
        QCOMPARE(bench.takeCalls(), expected);
    }

    void parameters_ofANewPayment_areTheSevenWithoutValues()
    {
        TerminalBench bench;
        QVERIFY(bench->parameters().isEmpty());
        bench->start();
        QStringList names;
        for (const ProviderParameter &parameter : bench->parameters()) {
            names.append(parameter.name());
            QVERIFY(!parameter.label().isEmpty());
            QCOMPARE(parameter.value(), QString());
        }
        names.sort();
        QCOMPARE(names.join(QLatin1Char(' ')),
                 QStringLiteral("ParkNumber StartDate StartTime SummToPay TermNo UIN card_num"));
    }

    void needCancel_withoutMoney_stopsDropsAndRenewsThePlugin()
    {
        TerminalBench bench;
        bench->start();
        const QPointer<QWidget> form = bench->formWidget();
        const QPointer<QObject> root = bench.host().root();
        Q_UNUSED(bench.takeCalls());
        bench.signal("needCancel");
        QCOMPARE(bench->screen(), Screen::Form);
        WAIT_FOR(bench->screen(), Screen::Idle);
        QVERIFY(bench->formWidget() == nullptr);
        WAIT_FOR(bench.host().isRenewing(), false);
        QVERIFY(!root);
        QVERIFY(!form);
        QCOMPARE(bench.takeCalls(), (QStringList{QStringLiteral("stop"), QStringLiteral("~FakePlugin")}));
    }

    void stop_withAKeptPlugin_keepsTheRootObject()
    {
        TerminalOptions options;
        options.keepPlugin = true;
        TerminalBench bench(options);
        const QPointer<QObject> root = bench.host().root();
        for (int customer = 0; customer < 2; ++customer) {
            bench->start();
            bench->stop();
            QCOMPARE(bench->screen(), Screen::Idle);
            QCoreApplication::processEvents();
            QCOMPARE(bench.host().root(), root.data());
        }
    }

    void start_whileThePluginIsRenewed_comesBehindIt()
    {
        TerminalBench bench;
        bench->start();
        bench->stop();
        QVERIFY(bench.host().isRenewing());
        QCOMPARE(bench->start(), QString());
        QCOMPARE(bench->screen(), Screen::Idle);
        WAIT_FOR(bench->screen(), Screen::Form);
    }

    void start_afterThePluginDied_makesItAnew()
    {
        TerminalBench bench;
        delete bench.host().root();
        QCOMPARE(bench->start(), QString());
        WAIT_FOR(bench->screen(), Screen::Form);
    }

    void start_withoutAForm_isRefusedAndStopped()
    {
        TerminalBench bench;
        bench.plan("form", QStringLiteral("none"));
        Q_UNUSED(bench.takeCalls());
        QVERIFY(!bench->start().isEmpty());
        QCOMPARE(bench->screen(), Screen::Idle);
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg), QStringList{QStringLiteral("the plugin has no form")});
        WAIT_FOR(bench.host().isRenewing(), false);
        QVERIFY(bench.takeCalls().contains(QStringLiteral("stop")));
        bench.plan("form", QString());
        QCOMPARE(bench->start(), QString());
        QCOMPARE(bench->screen(), Screen::Form);
    }

    void verb_thatDoesNotApply_isRefusedWithAReason_data()
    {
        QTest::addColumn<Screen>("screen");
        QTest::addColumn<QString>("refused");
        QTest::newRow("idle") << Screen::Idle << "stop cancel pay cash card closeReceipt save close";
        QTest::newRow("form") << Screen::Form << "start pay cash closeReceipt open save close";
        QTest::newRow("details") << Screen::Details << "start pay closeReceipt open save close";
        QTest::newRow("receipt") << Screen::Receipt << "cancel pay cash card open save close";
        QTest::newRow("service") << Screen::Service << "start stop cancel pay cash card closeReceipt open";
    }

    void verb_thatDoesNotApply_isRefusedWithAReason()
    {
        QFETCH(Screen, screen);
        QFETCH(QString, refused);
        const QHash<QString, std::function<QString(Terminal &)>> verbs = {
            {QStringLiteral("start"), [](Terminal &terminal) { return terminal.start(); }},
            {QStringLiteral("stop"), [](Terminal &terminal) { return terminal.stop(); }},
            {QStringLiteral("cancel"), [](Terminal &terminal) { return terminal.cancel(); }},
            {QStringLiteral("pay"), [](Terminal &terminal) { return terminal.pay(); }},
            {QStringLiteral("cash"), [](Terminal &terminal) { return terminal.takeCash(FixNumber(1, 50)); }},
            {QStringLiteral("card"), [](Terminal &terminal) { return terminal.readCard({}); }},
            {QStringLiteral("closeReceipt"), [](Terminal &terminal) { return terminal.closeReceipt(); }},
            {QStringLiteral("open"), [](Terminal &terminal) { return terminal.openService(); }},
            {QStringLiteral("save"), [](Terminal &terminal) { return terminal.saveService(); }},
            {QStringLiteral("close"), [](Terminal &terminal) { return terminal.closeService(); }}};
        for (auto verb = verbs.cbegin(); verb != verbs.cend(); ++verb) {
            WorkDirectory::clear();
            TerminalBench bench;
            if (screen == Screen::Form)
                bench->start();
            if (screen == Screen::Service)
                bench->openService();
            if (screen == Screen::Details || screen == Screen::Receipt)
                bench.showDetails();
            if (screen == Screen::Receipt) {
                bench.takeCash("150");
                bench->pay();
                WAIT_FOR(bench->screen(), Screen::Receipt);
            }
            QCOMPARE(bench->screen(), screen);
            const bool isRefused = !verb.value()(bench.terminal()).isEmpty();
            QVERIFY2(isRefused == refused.split(QLatin1Char(' ')).contains(verb.key()), qPrintable(verb.key()));
            if (isRefused)
                QCOMPARE(bench->screen(), screen);
        }
    }

    void inactivity_withoutMoney_endsThePayment()
    {
        TerminalBench bench(TerminalBench::inactivity(1));
        bench->start();
        WAIT_FOR(bench->screen(), Screen::Idle);
        QVERIFY(bench->entries().isEmpty());
    }

    void inactivity_whileTheFormTicks_doesNotExpire()
    {
        TerminalBench bench(TerminalBench::inactivity(1));
        bench->start();
        // On a machine that stands still for a second the customer does seem to have gone.
        qint64 longestPause = 0;
        QElapsedTimer sinceTick;
        sinceTick.start();
        QElapsedTimer sinceStart;
        sinceStart.start();
        waitUntil([&] {
            longestPause = qMax(longestPause, sinceTick.restart());
            if (bench->screen() == Screen::Form)
                bench.signal("needTick");
            return sinceStart.elapsed() > 2500;
        });
        QVERIFY(bench->screen() == Screen::Form || longestPause > 900);
        WAIT_FOR(bench->screen(), Screen::Idle);
    }

    void sessionCard_leftBeforeStart_isInThatSessionAlone()
    {
        TerminalBench bench;
        const QVariantMap card = {{QStringLiteral("id"), QStringLiteral("305419896")}};
        bench->leaveSessionCard(card);
        bench->start();
        QCOMPARE(bench.sessionData(), (QVariantMap{{QStringLiteral("18156"), card}}));
        bench->stop();
        bench->start();
        WAIT_FOR(bench->screen(), Screen::Form);
        QCOMPARE(bench.sessionData(), QVariantMap());
    }

    void card_readOnTheForm_reachesThePluginOnce()
    {
        TerminalBench bench;
        bench->start();
        bench->stop();
        bench->start();
        WAIT_FOR(bench->screen(), Screen::Form);
        Q_UNUSED(bench.takeCalls());
        bench->readCard({{QStringLiteral("id"), QStringLiteral("1")}});
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("card 1")});
    }

    void service_opened_holdsThePageUntilClose()
    {
        TerminalBench bench;
        Q_UNUSED(bench.takeCalls());
        QSignalSpy saved(&bench.terminal(), &Terminal::settingsSaved);
        QCOMPARE(bench->openService(), QString());
        QCOMPARE(bench->screen(), Screen::Service);
        const QPointer<QWidget> page = bench->settingsPage();
        QVERIFY(page);
        QCOMPARE(bench->saveService(), QString());
        QCOMPARE(saved.count(), 1);
        QCOMPARE(bench->closeService(), QString());
        QCOMPARE(bench->screen(), Screen::Idle);
        QVERIFY(bench->settingsPage() == nullptr);
        WAIT_FOR(page.isNull(), true);
        QCOMPARE(bench.takeCalls(), (QStringList{QStringLiteral("getSettingsWidget"), QStringLiteral("saveSettings"),
                                                 QStringLiteral("~FakeSettings")}));
    }

    void writeSettings_ofThePlugin_areStoredAsItsPageWould()
    {
        TerminalBench bench;
        const auto stored = [](const char *key) {
            return TerminalAppSettings().getPluginSettingsValue(QStringLiteral("PARKOMAT_PLUGIN"), QLatin1String(key),
                                                                QStringLiteral("unset"));
        };
        QCOMPARE(bench->writeSettings({{QStringLiteral("csPort"), QStringLiteral("0080")},
                                       {QStringLiteral("csHost"), QStringLiteral(" a ")}}),
                 QString());
        QCOMPARE(stored("csPort"), QStringLiteral("80"));
        QCOMPARE(stored("csHost"), QStringLiteral(" a "));
        for (const auto &[key, value] : {std::pair("csPort", "65536"), std::pair("csPort", "a"), std::pair("x", "1")})
            QVERIFY(!bench->writeSettings({{QLatin1String(key), QLatin1String(value)}}).isEmpty());
        QCOMPARE(stored("csPort"), QStringLiteral("80"));

        const FullDisk full;
        const QString refusal = bench->writeSettings({{QStringLiteral("csPort"), QStringLiteral("81")}});
        QCOMPARE(refusal, QStringLiteral("the settings cannot be written, see the log"));
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
        QCOMPARE(stored("csPort"), QStringLiteral("80"));
    }

    void quit_withoutMoney_isReadyAtOnce()
    {
        TerminalBench bench;
        QSignalSpy quitReady(&bench.terminal(), &Terminal::quitReady);
        bench->start();
        QCOMPARE(bench->quit(), QString());
        QCOMPARE(quitReady.count(), 1);
    }

    void terminal_withoutAPlugin_isBroken()
    {
        kiosk::PluginHost host(QStringLiteral("/nonexistent/libplugin.so"));
        host.load();
        kiosk::Ledger ledger(TerminalBench::ledgerPath());
        Terminal terminal(host, ledger, {});
        QCOMPARE(terminal.screen(), Screen::Broken);
        QVERIFY(!terminal.brokenReason().isEmpty());
        QCOMPARE(terminal.pluginIdentity().path, QStringLiteral("/nonexistent/libplugin.so"));
        QVERIFY(!terminal.start().isEmpty());
        QCOMPARE(terminal.openService(), QString());
        QVERIFY(terminal.settingsPage() == nullptr);
        QVERIFY(!terminal.saveService().isEmpty());
        QCOMPARE(terminal.closeService(), QString());
        QCOMPARE(terminal.screen(), Screen::Broken);
        QSignalSpy quitReady(&terminal, &Terminal::quitReady);
        QCOMPARE(terminal.quit(), QString());
        QCOMPARE(quitReady.count(), 1);
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
    }

    void renewed_pluginThatFails_breaksTheTerminal()
    {
        TerminalBench bench;
        bench->start();
        const Mood mood("another payee");
        bench->stop();
        WAIT_FOR(bench->screen(), Screen::Broken);
        QVERIFY(!bench->brokenReason().isEmpty());
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
    }
};

WIDGET_TEST_MAIN(TerminalTest)
#include "tst_terminal.moc"
