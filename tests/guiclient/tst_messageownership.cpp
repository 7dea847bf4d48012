// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "messageform.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <QApplication>

#include <functional>

namespace {
using Controller = MessageWidgetController;
using Act = std::function<void(Controller *, MessageForm &)>;

const QString TEXT = QStringLiteral("Выполняется подтверждение операции...");

/// Lets at least @a seconds pass, as a controller counts them.
void waitSeconds(int seconds)
{
    Controller clock;
    const MessageListener listener(clock);
    clock.initMessage({}, 0, Controller::Wait);
    WAIT_FOR(listener.ticks() >= seconds, true);
}
} // namespace

Q_DECLARE_METATYPE(Act)

/// Which controller has the view, and what happens when view or controller die.
class MessageOwnershipTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void secondController_takesTheView()
    {
        const MessageForm form;
        Controller earlier;
        earlier.setUi(form.view);
        const MessageListener toEarlier(earlier);
        earlier.initMessage(QStringLiteral("earlier"), 1, Controller::Error);
        Controller later;
        later.setUi(form.view);
        const MessageListener toLater(later);
        later.initMessage(TEXT, 0, Controller::Error);
        form.press("okButton");
        QCOMPARE(toLater.codes(), QList<int>({Controller::Closed}));
        waitSeconds(2);
        QCOMPARE(toEarlier.codes(), QList<int>());
        QCOMPARE(toEarlier.ticks(), 0);
        QCOMPARE(form.text(), TEXT);
    }

    void earlierController_neverTouchesTheViewAgain_data()
    {
        QTest::addColumn<Act>("act");
        const auto row = [](const char *name, const Act &act) { QTest::newRow(name) << act; };
        row("initMessage", [](Controller *earlier, auto &) { earlier->initMessage({}, 5, Controller::YesNo); });
        row("single", [](Controller *earlier, auto &) { earlier->initMessageSingleSignalMode({}, 5, 1); });
        row("caption", [](Controller *earlier, auto &) { earlier->setOkCaption(QStringLiteral("nein")); });
        row("no view", [](Controller *earlier, auto &) { earlier->setUi(nullptr); });
        row("deleted", [](Controller *earlier, auto &) { delete earlier; });
        row("deleted later", [](Controller *earlier, auto &) {
            earlier->deleteLater();
            deleteReleased();
        });
    }

    void earlierController_neverTouchesTheViewAgain()
    {
        QFETCH(Act, act);
        MessageForm form;
        QPointer<Controller> earlier = new Controller(this);
        earlier->setUi(form.view);
        earlier->initMessage(QStringLiteral("earlier"), 30, Controller::Error);
        Controller later;
        later.setUi(form.view);
        later.initMessage(TEXT, 30, Controller::Prompt);
        const MessageListener toEarlier(*earlier);
        const MessageListener toLater(later);
        act(earlier, form);
        QVERIFY(form.view->isVisible());
        QCOMPARE(form.text(), TEXT);
        QCOMPARE(form.visibleParts(), QStringList({"cancelButton", "okButton"}));
        QCOMPARE(form.part<QAbstractButton>("okButton")->text(), QStringLiteral("ОК"));
        form.press("okButton");
        QCOMPARE(toEarlier.codes(), QList<int>());
        QCOMPARE(toLater.codes(), QList<int>({Controller::PromptOk}));
        delete earlier;
    }

    void earlierController_startedAgain_staysSilent()
    {
        const MessageForm form;
        Controller earlier;
        earlier.setUi(form.view);
        Controller later;
        later.setUi(form.view);
        const MessageListener toEarlier(earlier);
        earlier.initMessage(TEXT, 1, Controller::Error);
        waitSeconds(2);
        QCOMPARE(toEarlier.codes(), QList<int>());
        QCOMPARE(toEarlier.ticks(), 0);
    }

    void earlierController_givenTheViewAgain_ownsIt()
    {
        const MessageForm form;
        Controller one;
        Controller other;
        one.setUi(form.view);
        other.setUi(form.view);
        one.setUi(form.view);
        one.initMessage(TEXT, 30, Controller::Error);
        const MessageListener toOne(one);
        const MessageListener toOther(other);
        form.press("okButton");
        QCOMPARE(toOne.codes().size(), 1);
        QCOMPARE(toOther.codes().size(), 0);
    }

    void owner_deleted_takesTheMessageOff_data()
    {
        QTest::addColumn<Act>("act");
        QTest::newRow("delete") << Act([](Controller *owner, auto &) { delete owner; });
        QTest::newRow("deleteLater") << Act([](Controller *owner, auto &) {
            owner->deleteLater();
            deleteReleased();
        });
        QTest::newRow("another view") << Act([](Controller *owner, auto &) { owner->setUi(nullptr); });
    }

    void owner_deleted_takesTheMessageOff()
    {
        QFETCH(Act, act);
        MessageForm form;
        QPointer<Controller> owner = new Controller(this);
        owner->setUi(form.view);
        owner->initMessage(TEXT, 30, Controller::Wait);
        act(owner, form);
        QVERIFY(!form.view->isVisible());
        QCOMPARE(form.viewer->currentView(), QString());
        QCOMPARE(form.viewer->getUi(QLatin1String(MessageForm::NAME)), form.view.data());
        delete owner;
    }

    void view_withoutOwner_pressed_tellsNobody()
    {
        const MessageForm form;
        auto owner = std::make_unique<Controller>();
        owner->setUi(form.view);
        owner->initMessage(TEXT, 30, Controller::Error);
        owner.reset();
        form.viewer->showWidget(QLatin1String(MessageForm::NAME));
        form.press("okButton");
        QVERIFY(form.view->isVisible());
    }

    void view_deleted_controllerRunsOn()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 1, Controller::Error);
        delete form.view;
        controller.setOkCaption(QStringLiteral("x"));
        WAIT_FOR(listener.codes(), QList<int>({Controller::TimeOut}));
        controller.initMessage(TEXT, 1, Controller::Error);
        QCOMPARE(form.viewer->currentView(), QString());
    }

    void viewer_deleted_controllerRunsOn()
    {
        MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 1, Controller::Error);
        form.viewer.reset();
        WAIT_FOR(listener.codes(), QList<int>({Controller::TimeOut}));
    }

    void button_deleted_isDoneWithout()
    {
        const MessageForm form;
        Controller controller;
        controller.setUi(form.view);
        delete form.part<QAbstractButton>("okButton");
        delete form.part<QLabel>("countdown");
        controller.initMessage(TEXT, 30, Controller::Prompt);
        controller.setOkCaption(QStringLiteral("x"));
        QCOMPARE(form.text(), TEXT);
    }

    // Inside a signal

    void somebody_diesInsideASignal_data()
    {
        QTest::addColumn<Act>("act");
        QTest::addColumn<bool>("isByTouch");
        const auto row = [](const char *name, const Act &act) {
            QTest::addRow("%s, by touch", name) << act << true;
            QTest::addRow("%s, by time", name) << act << false;
        };
        row("controller", [](Controller *controller, auto &) { delete controller; });
        row("controller, later", [](Controller *controller, auto &) { controller->deleteLater(); });
        row("view", [](Controller *, MessageForm &form) { delete form.view; });
        row("viewer", [](Controller *, MessageForm &form) { form.viewer.reset(); });
        row("all", [](Controller *controller, MessageForm &form) {
            delete controller;
            form.viewer.reset();
        });
        row("view, then controller", [](Controller *controller, MessageForm &form) {
            delete form.view;
            delete controller;
        });
        row("nobody, another message", [](Controller *controller, MessageForm &form) {
            controller->initMessage(QStringLiteral("next"), 0, Controller::YesNo);
            QCOMPARE(form.text(), QStringLiteral("next"));
        });
        row("another owner", [](Controller *controller, MessageForm &form) {
            auto *next = new Controller(form.viewer.get());
            next->setUi(form.view);
            next->initMessage(QStringLiteral("next"), 0, Controller::YesNo);
            delete controller;
            QCOMPARE(form.visibleParts(), QStringList({"noButton", "yesButton"}));
        });
    }

    void somebody_diesInsideASignal()
    {
        QFETCH(Act, act);
        QFETCH(bool, isByTouch);
        for (const bool isAtTick : {false, true}) {
            if (isAtTick && isByTouch)
                continue;
            MessageForm form;
            QPointer<Controller> controller = new Controller;
            controller->setUi(form.view);
            int signalsSeen = 0;
            const auto onSignal = [&] {
                ++signalsSeen;
                act(controller, form);
            };
            if (isAtTick)
                connect(controller, &Controller::tick, this, [&] { onSignal(); });
            else
                connect(controller, &Controller::finish, this, [&] { onSignal(); });
            controller->initMessageSingleSignalMode(TEXT, isAtTick ? 30 : 1, Controller::Error);
            if (isByTouch)
                form.press("okButton");
            WAIT_FOR(signalsSeen >= 1, true);
            deleteReleased();
            QCOMPARE(signalsSeen, 1);
            delete controller;
        }
    }

    // Views of others

    void view_withoutAPart_worksAndIsLogged_data()
    {
        QTest::addColumn<QString>("missing");
        for (const char *name : {"messageText", "countdown", "okButton", "cancelButton", "yesButton", "noButton"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void view_withoutAPart_worksAndIsLogged()
    {
        QFETCH(QString, missing);
        const MessageForm form;
        // Something else of that name is no such part.
        auto *part = form.part<QWidget>(qPrintable(missing));
        auto *impostor = new QWidget(form.view);
        impostor->setObjectName(missing);
        delete part;
        Controller first;
        first.setUi(form.view);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.guiclient"));
        QVERIFY(lines.at(0).text.contains(QStringLiteral("\"%1\"").arg(missing)));
        QVERIFY(lines.at(0).text.contains(QLatin1String(MessageForm::NAME)));
        for (const int kind : {0, 1, 2, 110})
            first.initMessage(TEXT, 30, kind);
        first.setOkCaption(QStringLiteral("x"));
        // Once a view, not once a message.
        Controller second;
        second.setUi(form.view);
        second.initMessage(TEXT, 30, Controller::Prompt);
    }

    void label_ofAnyView_wrapsAndTakesNoMarkup()
    {
        QWidget view;
        auto *label = new QLabel(&view);
        label->setObjectName(QStringLiteral("messageText"));
        Controller controller;
        controller.setUi(&view);
        QCOMPARE(MessageLog::take().size(), 5);
        controller.initMessage(QStringLiteral("<b>x</b>"), 0, Controller::Error);
        QCOMPARE(label->text(), QStringLiteral("<b>x</b>"));
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QVERIFY(label->wordWrap());
    }

    void view_bare_letsTheMessageRun()
    {
        QWidget bare;
        Controller controller;
        controller.setUi(&bare);
        QCOMPARE(MessageLog::take().size(), 6);
        const MessageListener listener(controller);
        controller.initMessage(TEXT, 1, Controller::Prompt);
        WAIT_FOR(listener.codes(), QList<int>({Controller::TimeOut}));
    }
};

WIDGET_TEST_MAIN(MessageOwnershipTest)
#include "tst_messageownership.moc"
