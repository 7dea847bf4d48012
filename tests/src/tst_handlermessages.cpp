// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "handlerchildren.h"
#include "support/handlerbench.h"

#include <QApplication>
#include <QTemporaryDir>

namespace {
const QString QUESTION = QStringLiteral("Все данные будут потеряны. Продолжить отмену платежа?");
const QString INVITATION = QStringLiteral("Приложите парковочную карту");
const QStringList CANCELLED = {QStringLiteral("needCancel")};

QVariantMap errorMap(const QString &text)
{
    return {{QStringLiteral("error"), 4}, {QStringLiteral("errorMessage"), text}};
}
} // namespace

/// The two message views: the form's own, and the one laid over it for the question whether to cancel.
class HandlerMessagesTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void view_firstMessage_isLoadedAndThenKept()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        QCOMPARE(bench.topView(), QStringLiteral("messagesView"));
        const QPointer<QWidget> view = bench.form()->getUi(QStringLiteral("messagesView"));
        handler.parkomatAccessManagerErrorHandler(errorMap(QStringLiteral("first")));
        QCOMPARE(bench.messageText(), QStringLiteral("first"));
        handler.parkomatAccessManagerErrorHandler(errorMap(QStringLiteral("second")));
        QCOMPARE(bench.messageText(), QStringLiteral("second"));
        QCOMPARE(bench.form()->getUi(QStringLiteral("messagesView")), view.data());
        QCOMPARE(controllers(handler).size(), 1);
        QCOMPARE(bench.messageText(), QStringLiteral("second"));
    }

    void view_belowAnother_isBroughtUpAgain()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.showCardNumberInputScreen();
        QCOMPARE(bench.topView(), QStringLiteral("inputView"));
        handler.showInitScreen();
        QCOMPARE(bench.topView(), QStringLiteral("messagesView"));
        QCOMPARE(bench.messageText(), INVITATION);
    }

    void view_noProjectOrNoFile_isNotLoadedAndTheMessageRunsAllTheSame_data()
    {
        QTest::addColumn<bool>("hasProject");
        QTest::newRow("no project") << false;
        QTest::newRow("a project without the file") << true;
    }

    void view_noProjectOrNoFile_isNotLoadedAndTheMessageRunsAllTheSame()
    {
        QFETCH(bool, hasProject);
        const QTemporaryDir empty;
        FormProject project(empty.path());
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.session().setActiveProject(hasProject ? &project : nullptr);
        bench.startWithScreen();
        QVERIFY(bench.form()->getUi(QStringLiteral("messagesView")) == nullptr);
        QCOMPARE(controllers(handler).size(), 1);
        Q_EMIT controllers(handler).constFirst()->finish(MessageWidgetController::TimeOut);
        QCOMPARE(bench.takeSignals(), CANCELLED);
        handler.permitCancel();
        QVERIFY(handler.helperViewer()->getUi(QStringLiteral("messagesView")) == nullptr);
        QVERIFY(handler.helperViewer()->isVisible());
    }

    void view_hostsOwn_isUsedWithoutAProject()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.session().setActiveProject(nullptr);
        bench.start();
        QVERIFY(bench.form()->loadFromFile(bench.project().projectDir() + QStringLiteral("/messageview.ui"),
                                           QStringLiteral("messagesView"), {}));
        handler.showInitScreen();
        QCOMPARE(bench.messageText(), INVITATION);
    }

    void view_projectChangedMeanwhile_comesFromTheFolderOfTheStart()
    {
        const QTemporaryDir empty;
        FormProject other(empty.path());
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        bench.session().setActiveProject(&other);
        handler.showInitScreen();
        QCOMPARE(bench.messageText(), INVITATION);
    }

    void controller_deletedByTheHost_isDoneWithout()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        delete controllers(handler).constFirst();
        handler.exitFromMessage();
        QCOMPARE(bench.takeSignals(), CANCELLED);
        handler.permitCancel();
        qDeleteAll(controllers(handler));
        handler.hideHelperMessagesView();
        QVERIFY(handler.helperViewer() == nullptr);
    }

    void exitFromMessageCode_anyCode_takesTheMessageOffAndCancels_data()
    {
        QTest::addColumn<int>("code");
        for (const int code : {0, 1, 2, 3, -1, 110})
            QTest::addRow("%d", code) << code;
    }

    void exitFromMessageCode_anyCode_takesTheMessageOffAndCancels()
    {
        QFETCH(int, code);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.exitFromMessageCode(code);
        QCOMPARE(bench.takeSignals(), CANCELLED);
        QVERIFY(controllers(handler).isEmpty());
        QCOMPARE(bench.messageText(), QString());
    }

    void exitFromMessage_nothingUp_onlyCancels()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        handler.exitFromMessage();
        bench.start();
        handler.exitFromMessage();
        QCOMPARE(bench.takeSignals(), CANCELLED);
    }

    void cancelAcceptHandler_noQuestionUp_onlyCancels()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        handler.cancelAcceptHandler();
        bench.startWithScreen();
        handler.cancelAcceptHandler();
        QCOMPARE(bench.takeSignals(), CANCELLED);
        // The form's own message stays: taking it off is the host's stop.
        QCOMPARE(bench.messageText(), INVITATION);
    }

    void permitCancel_form_isCoveredByTheQuestion()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        QVERIFY(handler.helperViewer() == nullptr);
        handler.permitCancel();
        FormViewer *const helper = handler.helperViewer();
        QVERIFY(helper != nullptr && helper->isVisible());
        QCOMPARE(helper->parentWidget(), bench.form());
        QCOMPARE(helper->session(), &bench.session());
        QCOMPARE(bench.topViewer(), helper);
        QCOMPARE(bench.messageText(), QUESTION);
        QCOMPARE(bench.buttons(), QStringLiteral("yes no"));
        QVERIFY2(bench.countdown().contains(QStringLiteral("15")), qPrintable(bench.countdown()));
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void permitCancel_noAnswer_goesOnAfterAQuarterOfAMinute()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.permitCancel();
        const Arrival closed(handler.findChild<MessageWidgetController *>(), &MessageWidgetController::finish);
        letPass(16'000);
        QVERIFY2(closed.ms() >= 14'000, qPrintable(QString::number(closed.ms())));
        QVERIFY(handler.helperViewer() == nullptr);
        QCOMPARE(bench.messageText(), QString());
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void permitCancel_beforeStart_asksNothing()
    {
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        handler.permitCancel();
        QVERIFY(handler.helperViewer() == nullptr);
    }

    void permitCancel_repeated_asksInTheSameViewer()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.permitCancel();
        const QPointer<FormViewer> helper = handler.helperViewer();
        handler.permitCancel();
        QCOMPARE(handler.helperViewer(), helper.data());
        QCOMPARE(controllers(handler).size(), 1);
        QCOMPARE(bench.messageText(), QUESTION);
        QVERIFY(bench.press("yes"));
        QCOMPARE(bench.takeSignals(), CANCELLED);
    }

    void permitCancel_answer_cancelsOrGoesOn_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QStringList>("signalled");
        QTest::newRow("yes") << QByteArray("yes") << CANCELLED;
        QTest::newRow("no") << QByteArray("no") << QStringList();
    }

    void permitCancel_answer_cancelsOrGoesOn()
    {
        QFETCH(QByteArray, button);
        QFETCH(QStringList, signalled);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.permitCancel();
        const QPointer<FormViewer> helper = handler.helperViewer();
        QVERIFY(bench.press(button));
        QCOMPARE(bench.takeSignals(), signalled);
        // Forgotten, but alive until the form dies.
        QVERIFY(handler.helperViewer() == nullptr);
        QCOMPARE(controllers(handler).size(), 1);
        QVERIFY(HandlerBench::isHidden(helper));
        // The payment is where it was.
        QCOMPARE(bench.messageText(), INVITATION);
        QCOMPARE(bench.buttons(), QStringLiteral("ok cancel"));

        handler.permitCancel();
        QVERIFY(handler.helperViewer() != helper.data());
        QCOMPARE(bench.messageText(), QUESTION);
        handler.stop();
        QCOMPARE(controllers(handler).size(), 1);
        QVERIFY(helper.isNull());
    }

    void permitCancelMessageResult_code_cancelsByYesAlone_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("signalled");
        QTest::newRow("yes") << 1 << CANCELLED;
        for (const int code : {0, 2, 3, -1, 110})
            QTest::addRow("%d", code) << code << QStringList();
    }

    void permitCancelMessageResult_code_cancelsByYesAlone()
    {
        QFETCH(int, code);
        QFETCH(QStringList, signalled);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.permitCancel();
        const QPointer<FormViewer> helper = handler.helperViewer();
        handler.permitCancelMessageResult(code);
        QCOMPARE(bench.takeSignals(), signalled);
        QVERIFY(HandlerBench::isHidden(helper));
        QVERIFY(handler.helperViewer() == nullptr);
        QVERIFY(controllers(handler).isEmpty());
    }

    void loadHelperMessagesView_twice_givesTheControllerThatCounts()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        const QPointer<MessageWidgetController> first = handler.loadHelperMessagesView();
        QVERIFY(first);
        // Nothing is shown yet.
        QVERIFY(!handler.helperViewer()->isVisible());
        const QPointer<MessageWidgetController> second = handler.loadPermitCancelMessagesView();
        QVERIFY(second && second != first);
        QVERIFY(!handler.helperViewer()->isVisible());
        QCOMPARE(controllers(handler), QList<MessageWidgetController *>{second.data()});
    }

    void button_ofAPromptOrAnError_takesTheMessageOffAtOnce()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        QVERIFY(bench.press("cancel"));
        QCOMPARE(bench.topView(), QString());
        handler.parkomatAccessManagerErrorHandler(errorMap(QStringLiteral("error")));
        QCOMPARE(bench.topView(), QStringLiteral("messagesView"));
        QVERIFY(bench.press("ok"));
        QCOMPARE(bench.topView(), QString());
    }

    // Its viewer is what goes, and the view with it.
    void button_ofTheQuestion_leavesItsViewUp()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.permitCancel();
        const FormViewer *const helper = handler.helperViewer();
        QVERIFY(bench.press("no"));
        QCOMPARE(helper->currentView(), QStringLiteral("messagesView"));
    }

    void tick_ofAMessageThatIsNoWait_feedsNothing()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        Q_EMIT controllers(handler).constFirst()->tick();
        handler.parkomatAccessManagerErrorHandler(errorMap(QStringLiteral("error")));
        Q_EMIT controllers(handler).constFirst()->tick();
        handler.permitCancel();
        QCOMPARE(controllers(handler).size(), 2);
        for (MessageWidgetController *controller : controllers(handler))
            Q_EMIT controller->tick();
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void question_whileMessageCloses_isIndependentOfIt()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        MessageWidgetController *const invitation = controllers(handler).constFirst();
        handler.permitCancel();
        Q_EMIT invitation->finish(MessageWidgetController::TimeOut);
        QCOMPARE(bench.takeSignals(), CANCELLED);
        QCOMPARE(bench.messageText(), QUESTION);
    }
};

WIDGET_TEST_MAIN(HandlerMessagesTest)
#include "tst_handlermessages.moc"
