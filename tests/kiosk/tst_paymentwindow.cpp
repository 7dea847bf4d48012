// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"
#include "kiosk/shownwindow.h"
#include "support/testcase.h"
#include "window/paymentscreen.h"
#include "window/receiptscreen.h"

#include <QApplication>
#include <QSignalSpy>

using kiosk::Terminal;
using Screen = Terminal::Screen;

/// What a customer sees and touches from the first message to the receipt.
class PaymentWindowTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
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
        row("nothing due", "0.00", {}, "Оплачивать нечего", "", "Нажмите «Закончить»", "", false, true);
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
        const QString payText = pay->isVisible() ? pay->text() : QString();
        QTEST(QString(payText).replace(QChar(QChar::Nbsp), QLatin1Char(' ')), "pay");
        QTEST(pay->isEnabled(), "canPay");
        QTEST(shown.isUp("cancelButton"), "canCancel");
    }

    void error_ofThePlugin_saysWhatToDo_data()
    {
        QTest::addColumn<bool>("hasCash");
        QTest::addColumn<QString>("hint");
        QTest::newRow("no money in") << false << "Нажмите «ОК». Нужна помощь — позвоните: 112";
        QTest::newRow("money in") << true << "Нажмите «ОК»: платёж завершится с внесённой суммой.";
    }

    void error_ofThePlugin_saysWhatToDo()
    {
        QFETCH(bool, hasCash);
        QFETCH(QString, hint);
        TerminalAppSettings().setPluginSettingsValue(QStringLiteral("TERMINAL"), QStringLiteral("phone"),
                                                     QStringLiteral("112"));
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        if (hasCash)
            bench.takeCash("100");
        auto *error = new QWidget;
        for (const char *part : {"errorMark", "okButton"})
            (new QPushButton(error))->setObjectName(QLatin1String(part));
        auto *text = new QLabel(QStringLiteral("Карта не найдена"), error);
        text->setObjectName(QStringLiteral("messageText"));
        bench.form()->addView(error, QStringLiteral("error"));
        WAIT_FOR(shown.allText().contains(hint), true);
        const QString nothingSaid = QStringLiteral("Произошла ошибка. ");
        QVERIFY(!shown.allText().contains(nothingSaid));
        text->clear();
        text->hide();
        text->show();
        WAIT_FOR(shown.allText().contains(nothingSaid + hint), true);
        QVERIFY(!shown.isUp("payButton"));
        QVERIFY(!shown.isUp("cancelButton"));
        delete error;
        WAIT_FOR(shown.allText().contains(hint), false);
    }

    void question_withMoneyIn_tellsWhatYesDoes()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        auto *question = new QWidget;
        (new QPushButton(question))->setObjectName(QStringLiteral("noButton"));
        bench.form()->addView(question, QStringLiteral("question"));
        WAIT_FOR(shown.isUp("cancelButton"), false);
        QVERIFY(!shown.allText().contains(QStringLiteral("Внесено")));
        bench.takeCash("100");
        const QString hint = QStringLiteral("Внесено 100.00\u00A0руб. — «Да» завершит платёж с этой суммой.");
        QVERIFY2(shown.allText().contains(hint), qPrintable(shown.allText()));
        delete question;
        WAIT_FOR(shown.allText().contains(QStringLiteral("Внесено")), false);
    }

    void details_withNothingDue_offerOneWayOut()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails(QStringLiteral("0.00"));
        QVERIFY(!shown.isUp("payButton"));
        QCOMPARE(shown.part<QPushButton>("cancelButton")->text(), QStringLiteral("Закончить"));
    }

    void details_thatFellToNothingWithMoneyIn_offerTheReceiptAtOnce()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        bench.takeCash("100");
        bench.fill("SummToPay", QStringLiteral("0.00"));
        bench.signal("needShowPayDetail");
        QVERIFY(shown.allText().contains(QStringLiteral("К возврату\n100.00\u00A0руб.")));
        QVERIFY(shown.allText().contains(QStringLiteral("Деньги вернут по номеру платежа.")));
        QCOMPARE(shown.text("moneyHint"), QStringLiteral("Оплачивать нечего: нажмите «Завершить»"));
        QCOMPARE(shown.part<QPushButton>("payButton")->text(), QStringLiteral("Завершить"));
        QVERIFY(!shown.isUp("cancelButton"));
        Q_UNUSED(bench.takeCalls());
        shown.touch("payButton");
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(bench.takeCalls().isEmpty());
        QCOMPARE(shown.text("receiptTitle"), QStringLiteral("Оплачивать нечего"));
        QVERIFY(shown.allText().contains(QStringLiteral("К возврату\n100.00\u00A0руб.")));
    }

    void details_withMoneyIn_countDownToTheCommit()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.showDetails();
        QVERIFY(!shown.allText().contains(QStringLiteral("Платёж завершится")));
        bench.takeCash("100");
        QVERIFY2(shown.allText().contains(QStringLiteral("Платёж завершится через\u00A045\u00A0с.")),
                 qPrintable(shown.allText()));
        // On a busy machine more time may pass than is skipped.
        int secondsShown = 0;
        while (bench->screen() == Screen::Details && !bench->isCommitting() && secondsShown < 46) {
            const QString expected = QStringLiteral("через\u00A0%1\u00A0с.").arg(bench->secondsToCommit());
            QVERIFY2(shown.allText().contains(expected), qPrintable(shown.allText()));
            ++secondsShown;
            passASecond();
        }
        WAIT_FOR(bench->screen(), Screen::Receipt);
        QVERIFY(secondsShown > 1);
        QCOMPARE(bench.latest().remainder.toString(), QStringLiteral("50.00"));
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
};

WIDGET_TEST_MAIN(PaymentWindowTest)

#include "tst_paymentwindow.moc"
