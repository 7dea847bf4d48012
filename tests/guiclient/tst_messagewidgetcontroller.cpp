// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagewidgetcontroller.h"

#include "messageform.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <QApplication>
#include <QElapsedTimer>

namespace {
using Controller = MessageWidgetController;
const QString TEXT = QStringLiteral("Проверка информации, подождите...");
} // namespace

/// How messages run, and who has the view.
class MessageWidgetControllerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // What is shown

    void kind_shown_hasItsParts_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("parts");
        QTest::newRow("wait") << 0 << "waitIndicator";
        QTest::newRow("error") << 1 << "errorMark okButton";
        QTest::newRow("prompt") << 2 << "cancelButton okButton";
        QTest::newRow("yes or no") << 110 << "noButton yesButton";
    }

    void kind_shown_hasItsParts()
    {
        QFETCH(int, kind);
        QFETCH(QString, parts);
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        for (const int before : {0, 1, 2, 110}) {
            controller.initMessage(QStringLiteral("before"), 10, before);
            controller.initMessage(TEXT, 10, kind);
            QCOMPARE(form.visibleParts().join(QLatin1Char(' ')), parts);
            QCOMPARE(form.text(), TEXT);
        }
    }

    void kind_unknown_isAnErrorAndLogged()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        controller.initMessage(TEXT, 10, 7);
        QCOMPARE(form.visibleParts(), QStringList({"errorMark", "okButton"}));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.guiclient"));
        QVERIFY(lines.at(0).text.contains(QStringLiteral("kind 7")));
    }

    void captions_ofButtons_areRussian()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const auto caption = [&](const char *name) { return form.part<QAbstractButton>(name)->text(); };
        QCOMPARE(caption("yesButton"), QStringLiteral("Да"));
        QCOMPARE(caption("noButton"), QStringLiteral("Нет"));
        QCOMPARE(caption("cancelButton"), QStringLiteral("Отмена"));
        controller.initMessage(TEXT, 10, Controller::Prompt);
        QCOMPARE(caption("okButton"), QStringLiteral("ОК"));
    }

    void okCaption_set_lastsForTheMessage()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const auto *ok = form.part<QAbstractButton>("okButton");
        controller.initMessageSingleSignalMode(TEXT, 30, Controller::Prompt);
        controller.setOkCaption(QStringLiteral("Ввести\nвручную"));
        QCOMPARE(ok->text(), QStringLiteral("Ввести\nвручную"));
        controller.initMessageSingleSignalMode(TEXT, 30, Controller::Prompt);
        QCOMPARE(ok->text(), QStringLiteral("ОК"));
    }

    void okCaption_withAnAmpersand_showsIt()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        controller.setOkCaption(QStringLiteral("A&B"));
        QCOMPARE(form.part<QAbstractButton>("okButton")->text(), QStringLiteral("A&&B"));
    }

    void text_withMarkup_isShownAsItIs()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        controller.initMessage(QStringLiteral("<b>x</b>"), 10, Controller::Error);
        QCOMPARE(form.text(), QStringLiteral("<b>x</b>"));
        QCOMPARE(form.part<QLabel>("messageText")->textFormat(), Qt::PlainText);
    }

    void view_takenLate_showsTheMessageThatRuns()
    {
        const MessageForm form;
        Controller controller;
        controller.initMessage(TEXT, 10, Controller::Prompt);
        controller.setOkCaption(QStringLiteral("Далее"));
        controller.setUi(form.view);
        QCOMPARE(form.text(), TEXT);
        QCOMPARE(form.visibleParts(), QStringList({"cancelButton", "okButton"}));
        QCOMPARE(form.part<QAbstractButton>("okButton")->text(), QStringLiteral("Далее"));
        QCOMPARE(form.countdown(), QStringLiteral("Осталось 10 с"));
    }

    void view_hidden_isShownByAMessage()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        form.view->hide();
        controller.initMessage(TEXT, 10, Controller::Wait);
        QCOMPARE(form.viewer->currentView(), QLatin1String(MessageForm::NAME));
        QVERIFY(form.view->isVisible());
    }

    // How it closes

    void button_pressed_finishesWithItsCode_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<int>("code");
        QTest::newRow("error, OK") << 1 << QByteArray("okButton") << 2;
        QTest::newRow("prompt, OK") << 2 << QByteArray("okButton") << 3;
        QTest::newRow("prompt, cancel") << 2 << QByteArray("cancelButton") << 2;
        QTest::newRow("yes") << 110 << QByteArray("yesButton") << 1;
        QTest::newRow("no") << 110 << QByteArray("noButton") << 2;
    }

    void button_pressed_finishesWithItsCode()
    {
        QFETCH(int, kind);
        QFETCH(QByteArray, button);
        QFETCH(int, code);
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 0, kind);
        form.press(button);
        QCOMPARE(listener.codes(), QList<int>({code}));
    }

    void button_pressedTwice_finishes_data()
    {
        QTest::addColumn<bool>("isSingle");
        QTest::addColumn<QList<int>>("codes");
        QTest::newRow("each time") << false << QList<int>({2, 2});
        QTest::newRow("once in single-signal mode") << true << QList<int>({2});
    }

    void button_pressedTwice_finishes()
    {
        QFETCH(bool, isSingle);
        QFETCH(QList<int>, codes);
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        if (isSingle)
            controller.initMessageSingleSignalMode(TEXT, 30, Controller::Error);
        else
            controller.initMessage(TEXT, 30, Controller::Error);
        form.press("okButton");
        form.press("okButton");
        QCOMPARE(listener.codes(), codes);
    }

    void singleSignal_nextMessage_finishesAgain()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        for (int i = 0; i < 2; ++i) {
            controller.initMessageSingleSignalMode(TEXT, 30, Controller::Error);
            form.press("okButton");
            form.press("okButton");
        }
        QCOMPARE(listener.codes(), QList<int>({2, 2}));
    }

    void timeOut_reached_finishesWithZero_data()
    {
        QTest::addColumn<bool>("isSingle");
        QTest::addColumn<bool>("hasView");
        for (const bool isSingle : {false, true}) {
            for (const bool hasView : {false, true})
                QTest::addRow("single %d, view %d", isSingle, hasView) << isSingle << hasView;
        }
    }

    void timeOut_reached_finishesWithZero()
    {
        QFETCH(bool, isSingle);
        QFETCH(bool, hasView);
        const MessageForm form;
        Controller controller;
        controller.setUi(hasView ? form.view : nullptr);
        const MessageListener listener(controller);
        QElapsedTimer time;
        time.start();
        if (isSingle)
            controller.initMessageSingleSignalMode(TEXT, 1, Controller::Prompt);
        else
            controller.initMessage(TEXT, 1, Controller::Prompt);
        WAIT_FOR(listener.codes(), QList<int>({0}));
        QVERIFY2(time.elapsed() >= 1000, qPrintable(QString::number(time.elapsed())));
        QCOMPARE(listener.ticks(), 1);
        // A late touch.
        form.press("okButton");
        const int late = isSingle || !hasView ? 1 : 2;
        QCOMPARE(listener.codes().size(), late);
    }

    void closed_byButton_neitherTicksNorTimesOut()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 1, Controller::Error);
        form.press("okButton");
        Controller other;
        const MessageListener clock(other);
        other.initMessage({}, 0, Controller::Wait);
        WAIT_FOR(clock.ticks(), 2);
        QCOMPARE(listener.codes(), QList<int>({2}));
        QCOMPARE(listener.ticks(), 0);
    }

    void seconds_zeroOrLess_neverTimeOut_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::newRow("zero") << 0;
        QTest::newRow("less") << -5;
    }

    void seconds_zeroOrLess_neverTimeOut()
    {
        QFETCH(int, seconds);
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        QElapsedTimer time;
        time.start();
        controller.initMessageSingleSignalMode(TEXT, seconds, Controller::Error);
        QCOMPARE(form.countdown(), QString());
        WAIT_FOR(listener.ticks(), 2);
        QVERIFY2(time.elapsed() >= 2000, qPrintable(QString::number(time.elapsed())));
        QCOMPARE(listener.codes(), QList<int>());
        form.press("okButton");
        QCOMPARE(listener.codes(), QList<int>({2}));
    }

    void countdown_eachSecond_showsWhatIsLeft()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        QStringList shown;
        connect(&controller, &Controller::tick, this, [&] { shown.append(form.countdown()); });
        controller.initMessage(TEXT, 600, Controller::Wait);
        WAIT_FOR(shown.size() >= 3, true);
        shown.append(form.countdown());
        QCOMPARE(shown.at(0), QStringLiteral("Осталось 600 с"));
        int before = 601;
        for (const QString &text : qAsConst(shown)) {
            const int left = text.split(QLatin1Char(' ')).at(1).toInt();
            QVERIFY2(left < before, qPrintable(shown.join(QLatin1String(", "))));
            before = left;
        }
    }

    void eventLoop_busy_doesNotLengthenTheTime()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 2, Controller::Wait);
        QElapsedTimer busy;
        busy.start();
        while (busy.elapsed() < 2600) {
        }
        WAIT_FOR(listener.codes(), QList<int>({0}));
        QCOMPARE(listener.ticks(), 1);
    }

    void message_replacedWhileItRuns_hasItsOwnTime()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 1, Controller::Wait);
        controller.initMessage(TEXT, 0, Controller::Wait);
        WAIT_FOR(listener.ticks(), 2);
        QCOMPARE(listener.codes(), QList<int>());
    }
};

WIDGET_TEST_MAIN(MessageWidgetControllerTest)
#include "tst_messagewidgetcontroller.moc"
