// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"
#include "guiclient/formviewer.h"
#include "guiclient/widgetnames.h"
#include "kiosk/mood.h"
#include "kiosk/shownwindow.h"
#include "support/testcase.h"
#include "window/brokenscreen.h"
#include "window/holdbutton.h"
#include "window/idlescreen.h"
#include "window/look.h"
#include "window/paymentscreen.h"
#include "window/receiptscreen.h"
#include "window/servicescreen.h"

#include <QApplication>
#include <QSignalSpy>

using kiosk::Terminal;
using Screen = Terminal::Screen;

class KioskWindowTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void idle_touchOfStart_showsTheForm()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        QVERIFY(shown.isUp<kiosk::IdleScreen>());
        shown.touch("startButton");
        QCOMPARE(bench->screen(), Screen::Form);
        QVERIFY(shown.isUp<kiosk::PaymentScreen>());
        QVERIFY(bench->formWidget()->isVisible());
        QVERIFY(shown.window().isAncestorOf(bench->formWidget()));
    }

    void idle_refusedStart_saysWhatToDo()
    {
        TerminalAppSettings().setPluginSettingsValue(QStringLiteral("TERMINAL"), QStringLiteral("phone"),
                                                     QStringLiteral("112"));
        TerminalBench bench;
        bench.plan("form", QStringLiteral("none"));
        ShownWindow shown(bench.terminal());
        shown.touch("startButton");
        QCOMPARE(bench->screen(), Screen::Idle);
        QVERIFY(shown.allText().contains(QStringLiteral("Попробуйте ещё раз или позвоните: 112")));
        QCOMPARE(MessageLog::take().first().text, QStringLiteral("the plugin has no form"));
    }

    void focus_onEachScreen_isOnNoButtonUntilAKeyIsUsed()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        QApplication::setActiveWindow(shown.window().window());
        QCOMPARE(QApplication::focusWidget(), &shown.window());
        shown.pay(bench);
        QCOMPARE(QApplication::focusWidget(), &shown.window());
        QTest::keyClick(&shown.window(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), shown.part<QPushButton>("receiptButton"));
    }

    void serviceButton_passingTouch_opensNothing()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        shown.touch("serviceButton");
        passASecond();
        passASecond();
        QCOMPARE(bench->screen(), Screen::Idle);
    }

    void serviceButton_heldDown_opensTheServiceMenu()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        QTest::mousePress(shown.part<QPushButton>("serviceButton"), Qt::LeftButton);
        TestClock::skip(kiosk::HoldButton::HOLD_MS);
        WAIT_FOR(bench->screen(), Screen::Service);
        QVERIFY(shown.isUp<kiosk::ServiceScreen>());
    }

    void receipt_leftAlone_closesByItself()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        shown.pay(bench);
        QCOMPARE(shown.text("receiptCountdown"), QStringLiteral("Экран закроется через 20 с"));
        // On a busy machine more time may pass than is skipped.
        int secondsShown = 0;
        while (bench->screen() == Screen::Receipt && secondsShown < 20) {
            ++secondsShown;
            passASecond();
        }
        QCOMPARE(bench->screen(), Screen::Idle);
        QVERIFY(secondsShown > 1);
    }

    void receipt_unconfirmed_saysSoAndStaysLonger()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.plan("confirmation", QStringLiteral("left up"));
        shown.pay(bench);
        QCOMPARE(shown.text("receiptTitle"), QStringLiteral("Оплата не подтверждена"));
        QVERIFY(shown.text("receiptText").startsWith(QStringLiteral("Подтверждение не получено:")));
        QCOMPARE(shown.text("receiptCountdown"), QStringLiteral("Экран закроется через 60 с"));
    }

    void receipt_afterACrash_isWhatIsShownFirst()
    {
        {
            kiosk::Ledger ledger(TerminalBench::ledgerPath());
            kiosk::Purchase purchase;
            purchase.setDue(QStringLiteral("150.00"));
            purchase.add(FixNumber(100, QStringLiteral("100")));
            const qint64 uid = ledger.open(purchase, QStringLiteral("000123456"), {}, purchase.cash());
            QVERIFY(uid > 0);
        }
        TerminalBench bench;
        const ShownWindow shown(bench.terminal());
        QVERIFY(shown.isUp<kiosk::ReceiptScreen>());
        const QString text = shown.allText();
        QVERIFY2(text.contains(QStringLiteral("Терминал перезапускался во время этого платежа.")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("Платёж прерван")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("К возврату\n100.00\u00A0руб.")), qPrintable(text));
    }

    void broken_terminal_saysWhatHappenedAndWhomToCall()
    {
        TerminalAppSettings().setPluginSettingsValue(QStringLiteral("TERMINAL"), QStringLiteral("phone"),
                                                     QStringLiteral("112"));
        kiosk::PluginHost host(QStringLiteral(OTHER_PLUGIN_FILE));
        host.load();
        kiosk::Ledger ledger(TerminalBench::ledgerPath());
        Terminal terminal(host, ledger, {});
        const ShownWindow shown(terminal);
        QVERIFY(shown.isUp<kiosk::BrokenScreen>());
        const QString text = shown.allText();
        const QStringList facts = {host.brokenReason(), host.identity().path, host.identity().interfaceId,
                                   host.identity().qtVersion, QStringLiteral("Позвоните: 112")};
        for (const QString &fact : facts)
            QVERIFY2(!fact.isEmpty() && text.contains(fact), qPrintable(fact + QLatin1Char('\n') + text));
    }

    void project_hasTheMessageView_ofEachScreen()
    {
        for (const bool isUpright : {false, true}) {
            FormViewer form(nullptr);
            QVERIFY(form.loadFromFile(kiosk::Look::projectDir() + QLatin1Char('/') +
                                          WidgetNames(isUpright).messageViewFileName(),
                                      QStringLiteral("view"), {}));
            QVERIFY(form.getUi(QStringLiteral("view"))->findChild<QWidget *>(QStringLiteral("messageText")) != nullptr);
        }
    }

    void window_closed_quitsTheTerminal()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        const QSignalSpy quit(&bench.terminal(), &Terminal::quitReady);
        QVERIFY(!shown.window().close());
        WAIT_FOR(quit.count(), 1);
    }

    void window_deleted_leavesFormAndPageToThePlugin()
    {
        TerminalBench bench;
        ShownWindow first(bench.terminal());
        bench->start();
        const QPointer<QWidget> form = bench->formWidget();
        QVERIFY(first.window().isAncestorOf(form));
        first.close();
        QVERIFY(form);
        bench->stop();
        WAIT_FOR(bench.host().isRenewing(), false);
        ShownWindow second(bench.terminal());
        bench->openService();
        const QPointer<QWidget> page = bench->settingsPage();
        QVERIFY(second.window().isAncestorOf(page));
        second.close();
        QVERIFY(page);
        bench->closeService();
    }
};

WIDGET_TEST_MAIN(KioskWindowTest)

#include "tst_kioskwindow.moc"
