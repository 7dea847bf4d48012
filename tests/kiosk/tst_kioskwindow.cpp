// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/kioskwindow.h"

#include "core/terminalappsettings.h"
#include "kiosk/mood.h"
#include "kiosk/terminalbench.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "window/brokenscreen.h"
#include "window/holdbutton.h"
#include "window/idlescreen.h"
#include "window/paymentscreen.h"
#include "window/receiptscreen.h"
#include "window/servicescreen.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using kiosk::KioskWindow;
using kiosk::Terminal;
using Screen = Terminal::Screen;

namespace {
/// The window of a terminal with the fake plugin, and what is on it.
class ShownWindow
{
public:
    explicit ShownWindow(Terminal &terminal) : m_window(std::make_unique<KioskWindow>(terminal, &m_ground))
    {
        m_ground.setFixedSize(1024, 768);
        m_ground.show();
        // Qt's platform for drawing into memory complains that it has no window manager.
        MessageLog::drop();
    }

    [[nodiscard]] KioskWindow &window() { return *m_window; }
    void close() { m_window.reset(); }

    template <typename Widget>
    [[nodiscard]] Widget *part(const char *name = "") const
    {
        return m_window->findChild<Widget *>(QLatin1String(name));
    }
    template <typename Widget>
    [[nodiscard]] bool isUp() const
    {
        const auto *screen = m_window->findChild<Widget *>();
        return screen != nullptr && screen->isVisible();
    }
    [[nodiscard]] bool isUp(const char *name) const { return part<QWidget>(name)->isVisible(); }
    [[nodiscard]] QString text(const char *name) const { return part<QLabel>(name)->text(); }
    void touch(const char *name) { QTest::mouseClick(part<QPushButton>(name), Qt::LeftButton); }

    /// All that can be read.
    [[nodiscard]] QString allText() const
    {
        QStringList lines;
        const auto labels = m_window->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            if (label->isVisible())
                lines.append(label->text());
        }
        return lines.join(QLatin1Char('\n')).remove(QChar(0x200B));
    }

private:
    /// Whose size does not change: Qt's platform has something to say each time that one does.
    QWidget m_ground;
    std::unique_ptr<KioskWindow> m_window;
};

/// Lets a second pass, and a little more: timers of Qt's are not exact.
void passASecond()
{
    TestClock::skip(1100);
    QCoreApplication::processEvents();
}
} // namespace

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
        bench.showDetails();
        bench.takeCash("150");
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
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

    void form_cancelButton_asksThePlugin()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench->start();
        Q_UNUSED(bench.takeCalls());
        QVERIFY(shown.isUp("cancelButton"));
        QVERIFY(!shown.isUp("payButton"));
        QVERIFY(!shown.isUp("moneyLine"));
        shown.touch("cancelButton");
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("permitCancel")});
    }

    void form_whileItAsksSomething_isAlone()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        QVERIFY(shown.isUp("cancelButton"));
        auto *question = new QWidget;
        auto *no = new QPushButton(QStringLiteral("Нет"), question);
        no->setObjectName(QStringLiteral("noButton"));
        bench.form()->addView(question, QStringLiteral("question"));
        WAIT_FOR(shown.isUp("cancelButton"), false);
        QVERIFY(!shown.isUp("payButton"));
        QVERIFY(!shown.isUp("moneyLine"));
        bench.form()->removeView(question);
        delete question;
        WAIT_FOR(shown.isUp("cancelButton"), true);
        QVERIFY(shown.isUp("moneyLine"));
    }

    void details_money_isToldTruthfully_data()
    {
        QTest::addColumn<QString>("due");
        QTest::addColumn<QStringList>("notes");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("rest");
        QTest::addColumn<QString>("hint");
        QTest::addColumn<QString>("pay");
        QTest::addColumn<bool>("canPay");
        QTest::addColumn<bool>("canCancel");
        const auto row = [](const char *name, const char *due, const QStringList &notes, const char *caption,
                            const char *rest, const char *hint, const char *pay, bool canPay, bool canCancel) {
            QTest::newRow(name) << due << notes << caption << rest << hint << pay << canPay << canCancel;
        };
        row("nothing paid in", "150.00", {}, "Осталось внести", "150.00 руб.", "Внесите купюры. Сдача не выдаётся",
            "Оплатить", false, true);
        row("a part", "150.00", {"100"}, "Осталось внести", "50.00 руб.", "Внесите купюры. Сдача не выдаётся",
            "Оплатить 100.00 руб.", true, false);
        row("all of it", "150.00", {"100", "50"}, "Внесена вся сумма", "", "Нажмите «Оплатить»", "Оплатить", true,
            false);
        row("more than it", "150.00", {"200"}, "Сдача", "50.00 руб.", "Нажмите «Оплатить»", "Оплатить", true, false);
        row("nothing due", "0.00", {}, "Оплачивать нечего", "", "Купюры не принимаются", "Оплатить", false, true);
    }

    void details_money_isToldTruthfully()
    {
        QFETCH(const QString, due);
        QFETCH(const QStringList, notes);
        QFETCH(const QString, caption);
        QFETCH(const QString, rest);
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails(due);
        for (const QString &note : notes)
            QCOMPARE(bench->takeCash(FixNumber(100, note)), QString());
        QVERIFY(shown.isUp("moneyLine"));
        QVERIFY(shown.allText().contains(caption));
        QCOMPARE(shown.isUp("restAmount"), !rest.isEmpty());
        if (!rest.isEmpty())
            QCOMPARE(shown.text("restAmount").replace(QChar(QChar::Nbsp), QLatin1Char(' ')), rest);
        QTEST(shown.text("moneyHint"), "hint");
        const auto *pay = shown.part<QPushButton>("payButton");
        QTEST(pay->text().replace(QChar(QChar::Nbsp), QLatin1Char(' ')), "pay");
        QTEST(pay->isEnabled(), "canPay");
        QTEST(shown.isUp("cancelButton"), "canCancel");
    }

    void details_underAMessage_cannotBePaid()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        bench.takeCash("150");
        const auto *pay = shown.part<QPushButton>("payButton");
        QVERIFY(pay->isEnabled());
        bench.form()->addView(new QWidget, QStringLiteral("checking"));
        WAIT_FOR(pay->isEnabled(), false);
        bench.form()->showPayDetail();
        WAIT_FOR(pay->isEnabled(), true);
    }

    void details_touchOfPay_showsTheReceipt()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        bench.takeCash("200");
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(shown.isUp<kiosk::ReceiptScreen>());
        QCOMPARE(shown.text("receiptTitle"), QStringLiteral("Парковка оплачена"));
        QVERIFY(shown.allText().contains(QStringLiteral("Сдача\n50.00\u00A0руб.")));
        shown.touch("receiptButton");
        QCOMPARE(bench->screen(), Screen::Idle);
    }

    void commit_whileItRuns_leavesNothingToTouch()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.plan("confirmation", QStringLiteral("held"));
        bench.showDetails();
        bench.takeCash("150");
        bool wasQuiet = false;
        connect(&bench.terminal(), &Terminal::committingChanged, this, [&](bool isCommitting) {
            if (!isCommitting)
                return;
            QTimer::singleShot(50, this, [&] {
                wasQuiet = !shown.isUp("payButton") && !shown.isUp("cancelButton") && !shown.isUp("moneyLine") &&
                           shown.allText().contains(QStringLiteral("не отходите"));
                bench.tellPlugin("letGo");
            });
        });
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(wasQuiet);
    }

    void receipt_leftAlone_closesByItself()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        bench.takeCash("150");
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
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
        bench.showDetails();
        bench.takeCash("150");
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
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

    void service_menu_showsSavesAndCloses()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        QVERIFY(bench->settingsPage()->isVisible());
        QVERIFY(shown.window().isAncestorOf(bench->settingsPage()));
        QCOMPARE(shown.text("serviceStatus"), QString());
        Q_UNUSED(bench.takeCalls());
        shown.touch("saveButton");
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("saveSettings")});
        QCOMPARE(shown.text("serviceStatus"), QStringLiteral("Настройки сохранены."));
        shown.touch("pluginTab");
        QVERIFY(shown.allText().contains(QStringLiteral("Плагин для испытаний")));
        shown.touch("closeButton");
        WAIT_FOR(bench->screen(), Screen::Idle);
        QVERIFY(shown.isUp<kiosk::IdleScreen>());
    }

    void service_payments_areListedWithTheirOutcome()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.plan("confirmation", QStringLiteral("left up"));
        bench.showDetails();
        bench.takeCash("150");
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
        shown.touch("receiptButton");
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        shown.touch("paymentsTab");
        const QString text = shown.allText();
        QVERIFY2(text.contains(QStringLiteral("Подтверждение не получено:")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("карта 000123456")), qPrintable(text));
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
        const PluginFacts facts = {host.brokenReason(), host.identity().path, host.identity().interfaceId,
                                   host.identity().qtVersion, QStringLiteral("Позвоните: 112")};
        for (const QString &fact : facts)
            QVERIFY2(!fact.isEmpty() && text.contains(fact), qPrintable(fact + QLatin1Char('\n') + text));
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

private:
    using PluginFacts = QStringList;
};

WIDGET_TEST_MAIN(KioskWindowTest)

#include "tst_kioskwindow.moc"
