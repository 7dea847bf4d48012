// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "handlerchildren.h"
#include "plugininterface/ipaybyprovidersettingswidget.h"
#include "scriptedpayment.h"

#include <QApplication>
#include <QEvent>

namespace {
const QString NEED_CANCEL = QStringLiteral("needCancel");

/// What becomes of widgets and controllers, in order: "hide NAME" and "delete NAME".
class Fate : public QObject
{
public:
    /// @param object must not be null.
    void watch(QObject *object, const QString &name)
    {
        object->installEventFilter(this);
        m_names.insert(object, name);
        QObject::connect(object, &QObject::destroyed, this,
                         [this, name] { m_steps.append(QStringLiteral("delete ") + name); });
    }
    [[nodiscard]] QStringList take() { return std::exchange(m_steps, {}); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Hide)
            m_steps.append(QStringLiteral("hide ") + m_names.value(watched));
        return false;
    }

private:
    QMap<QObject *, QString> m_names;
    QStringList m_steps;
};

/// A way of a message to its end, by what the host may call.
struct Way
{
    const char *name;
    /// Whether it ends the question whether to cancel; else the form's own message.
    bool isQuestions;
    void (*go)(ParkomatPluginHandler &);
};

using Handler = ParkomatPluginHandler;
const Way WAYS[] = {
    {"exit", false, [](Handler &handler) { handler.exitFromMessage(); }},
    {"another message", false, [](Handler &handler) { handler.parkomatAccessManagerErrorHandler({}); }},
    {"the first message again", false, [](Handler &handler) { handler.showInitScreen(); }},
    {"card number", false, [](Handler &handler) { handler.showCardNumberInputScreen(); }},
    {"card UID", false, [](Handler &handler) { handler.showCardUidInputScreen(); }},
    {"car number", false, [](Handler &handler) { handler.showCarNumberInputScreen(); }},
    {"answer to the check", false, [](Handler &handler) { handler.parkingCheckResponseHandler({}); }},
    {"answer to the commit", false,
     [](Handler &handler) { handler.parkInfoPayResponseHandler(ParkInfoPayResponse(1, {})); }},
    {"question hidden", true, [](Handler &handler) { handler.hideHelperMessagesView(); }},
    {"question asked again", true, [](Handler &handler) { handler.permitCancel(); }},
    {"question answered", true, [](Handler &handler) { handler.permitCancelMessageResult(0); }},
    {"question accepted", true, [](Handler &handler) { handler.cancelAcceptHandler(); }},
    {"stop", true, [](Handler &handler) { handler.stop(); }},
};
} // namespace

/// When what the plugin lets go of goes: never at once, since its own signal may be what it is let go in.
class HandlerReleaseTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void stop_everythingUp_releasesInItsOrder()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.permitCancel();
        auto *const settings = dynamic_cast<QWidget *>(handler.getSettingsWidget());
        QWidget serviceMenu;
        settings->setParent(&serviceMenu);
        serviceMenu.show();
        settings->show();
        const auto question = handler.findChildren<MessageWidgetController *>().constLast();
        Fate fate;
        fate.watch(settings, QStringLiteral("settings"));
        fate.watch(bench.form(), QStringLiteral("form"));
        fate.watch(question, QStringLiteral("question"));
        fate.watch(handler.helperViewer(), QStringLiteral("helper"));
        handler.stop();
        QCOMPARE(fate.take(), QStringList({QStringLiteral("hide helper"), QStringLiteral("hide form"),
                                           QStringLiteral("hide settings")}));
        deleteReleased();
        QCOMPARE(fate.take(), QStringList({QStringLiteral("delete helper"), QStringLiteral("delete question"),
                                           QStringLiteral("delete form"), QStringLiteral("delete settings")}));
    }

    void controller_released_livesOnUntilTheEventsOfThisMoment_data()
    {
        QTest::addColumn<int>("way");
        for (size_t way = 0; way < std::size(WAYS); ++way)
            QTest::newRow(WAYS[way].name) << static_cast<int>(way);
    }
    void controller_released_livesOnUntilTheEventsOfThisMoment()
    {
        QFETCH(int, way);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        const QPointer<MessageWidgetController> message = controllers(handler).constFirst();
        handler.permitCancel();
        const QPointer<MessageWidgetController> question = controllers(handler).constLast();
        QVERIFY(message != question);
        WAYS[way].go(handler);
        QVERIFY(message && question);
        deleteReleased();
        QCOMPARE(message.isNull(), !WAYS[way].isQuestions);
        QCOMPARE(question.isNull(), WAYS[way].isQuestions);
    }

    // The host may answer needCancel() at once: with a stop, or by looking what is still up.
    void cancelAcceptHandler_needCancel_findsTheQuestionGone()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.permitCancel();
        const QPointer<MessageWidgetController> question = controllers(handler).constLast();
        int cancelled = 0;
        connect(bench.form(), &PluginBaseFormViewer::needCancel, this, [&] {
            if (++cancelled > 1)
                return;
            QVERIFY(handler.helperViewer() == nullptr);
            QVERIFY(question);
            // Nobody hears it any more.
            Q_EMIT question->finish(MessageWidgetController::Yes);
        });
        handler.cancelAcceptHandler();
        QCOMPARE(cancelled, 1);
        QCOMPARE(bench.takeSignals(), QStringList(NEED_CANCEL));
    }

    void exitFromMessage_needCancel_findsTheMessageReleased()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        const QPointer<MessageWidgetController> message = controllers(handler).constFirst();
        int cancelled = 0;
        connect(bench.form(), &PluginBaseFormViewer::needCancel, this, [&] {
            if (++cancelled > 1)
                return;
            QVERIFY(message);
            Q_EMIT message->finish(MessageWidgetController::TimeOut);
        });
        handler.exitFromMessage();
        QCOMPARE(cancelled, 1);
        QCOMPARE(bench.takeSignals(), QStringList(NEED_CANCEL));
    }

    void answer_parametersChanged_findsTheSessionFilledAndTheWaitReleased()
    {
        ScriptedPayment payment;
        payment.bench.startWithScreen();
        payment.service.hold();
        payment.bench.readCard(HandlerBench::demoCard());
        const QPointer<MessageWidgetController> wait = controllers(payment.handler).constFirst();
        int changed = 0;
        connect(&payment.bench.provider(), &Provider::parametersChanged, this, [&] {
            ++changed;
            QVERIFY(payment.bench.session().pluginsData().contains(QStringLiteral("parcomatData")));
            QVERIFY(wait);
            Q_EMIT wait->tick();
            Q_EMIT wait->finish(MessageWidgetController::TimeOut);
        });
        payment.handler.parkingCheckResponseHandler({});
        QCOMPARE(changed, 1);
        QCOMPARE(payment.bench.takeSignals(), QStringList());
        WAIT_FOR(payment.service.requests(), 1);
    }
};

WIDGET_TEST_MAIN(HandlerReleaseTest)
#include "tst_handlerrelease.moc"
