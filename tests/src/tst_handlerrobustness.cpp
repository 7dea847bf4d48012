// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fragilepayment.h"

#include <QApplication>
#include <QMetaMethod>
#include <QSignalSpy>

#include <functional>
#include <vector>

namespace {
/// Longer than any message stays.
constexpr int A_MINUTE_MS = 61'000;
/// Longer than it takes to the details, to a tick and to a poll, shorter than any message stays.
constexpr int LATER_MS = 3'000;

using Step = void (*)(FragilePayment &);

/// A way to a signal of the form, or of the provider.
struct Way
{
    const char *name;
    const char *signal;
    Step go;
};

void readCard(FragilePayment &payment)
{
    payment.bench().readCard(HandlerBench::demoCard());
    payment.settle();
}

void fail(FragilePayment &payment)
{
    payment.handler()->parkomatAccessManagerErrorHandler({{QStringLiteral("errorMessage"), QStringLiteral("error")}});
}

const Way WAYS[] = {
    {"prompt, cancel", "needCancel", [](FragilePayment &payment) { QVERIFY(payment.bench().press("cancel")); }},
    {"prompt, time-out", "needCancel", [](FragilePayment &) { leap(A_MINUTE_MS); }},
    {"check, time-out", "needCancel",
     [](FragilePayment &payment) {
         readCard(payment);
         leap(A_MINUTE_MS);
     }},
    {"error, OK", "needCancel",
     [](FragilePayment &payment) {
         fail(payment);
         QVERIFY(payment.bench().press("ok"));
     }},
    {"error, time-out", "needCancel",
     [](FragilePayment &payment) {
         fail(payment);
         leap(A_MINUTE_MS);
     }},
    {"question, yes", "needCancel",
     [](FragilePayment &payment) {
         payment.bench().permitCancel();
         QVERIFY(payment.bench().press("yes"));
     }},
    {"card number, back", "needCancel",
     [](FragilePayment &payment) {
         QVERIFY(payment.bench().press("ok"));
         QVERIFY(payment.bench().press("back"));
     }},
    {"car number, back", "needCancel",
     [](FragilePayment &payment) {
         payment.handler()->showCarNumberInputScreen();
         QVERIFY(payment.bench().press("back"));
     }},
    {"check, tick", "needTick",
     [](FragilePayment &payment) {
         readCard(payment);
         leap(LATER_MS);
     }},
    {"answer", "parametersChanged",
     [](FragilePayment &payment) { payment.handler()->parkingCheckResponseHandler(ParkingCheckResponse()); }},
    {"answer, two seconds", "needShowPayDetail",
     [](FragilePayment &payment) {
         payment.handler()->parkingCheckResponseHandler(ParkingCheckResponse());
         leap(LATER_MS);
     }},
};

/// Who goes.
struct Victim
{
    const char *name;
    Step lose;
};

const Victim VICTIMS[] = {
    {"handler", [](FragilePayment &payment) { payment.loseHandler(); }},
    {"form", [](FragilePayment &payment) { payment.loseForm(); }},
    {"controllers", [](FragilePayment &payment) { payment.loseControllers(); }},
    {"session", [](FragilePayment &payment) { payment.loseSession(); }},
    {"provider", [](FragilePayment &payment) { payment.loseProvider(); }},
    {"all",
     [](FragilePayment &payment) {
         payment.loseControllers();
         payment.loseForm();
         payment.loseSession();
         payment.loseProvider();
         payment.loseHandler();
     }},
};

void commit(FragilePayment &payment)
{
    payment.bench().commit({HandlerBench::payment(1, 15'000)});
}

/// Commits inside of commits, each once the one around it has sent its request; the innermost one does something.
/// @return how many returned without anybody having been waited for.
int commitNested(FragilePayment &payment, int depth, const std::function<void()> &innermost)
{
    int returned = 0;
    const int requests = payment.service().requests().size() + 1;
    const auto isSent = [&payment, requests] { return payment.service().requests().size() == requests; };
    const Meanwhile meanwhile({{isSent,
                                [&] {
                                    if (depth > 1)
                                        returned += commitNested(payment, depth - 1, innermost);
                                    else
                                        innermost();
                                }},
                               // Where the code under test returns at once, there is no time for it.
                               {[] { return true; }, [] {}}});
    commit(payment);
    return meanwhile.isDone() ? returned : returned + 1;
}
} // namespace

/// What a host does to the plugin that it should not, or that nobody can help.
class HandlerRobustnessTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void part_diesInsideASignal_isDoneWithout_data()
    {
        QTest::addColumn<int>("way");
        QTest::addColumn<int>("victim");
        for (size_t way = 0; way < std::size(WAYS); ++way) {
            for (size_t victim = 0; victim < std::size(VICTIMS); ++victim)
                QTest::addRow("%s: %s", WAYS[way].name, VICTIMS[victim].name)
                    << static_cast<int>(way) << static_cast<int>(victim);
        }
    }
    void part_diesInsideASignal_isDoneWithout()
    {
        QFETCH(int, way);
        QFETCH(int, victim);
        FragilePayment payment;
        payment.start();
        payment.plugin().showInitScreen();
        int killed = 0;
        QObject context;
        const auto kill = [&] {
            if (killed++ == 0)
                VICTIMS[victim].lose(payment);
        };
        const QByteArray signal = WAYS[way].signal;
        PluginBaseFormViewer *const form = payment.bench().form();
        if (signal == "needCancel")
            QObject::connect(form, &PluginBaseFormViewer::needCancel, &context, kill);
        else if (signal == "needTick")
            QObject::connect(form, &PluginBaseFormViewer::needTick, &context, kill);
        else if (signal == "needShowPayDetail")
            QObject::connect(form, &PluginBaseFormViewer::needShowPayDetail, &context, kill);
        else
            QObject::connect(&payment.bench().provider(), &Provider::parametersChanged, &context, kill);
        WAYS[way].go(payment);
        QVERIFY(killed > 0);
        leap(A_MINUTE_MS);
        if (payment.handler() == nullptr)
            return;
        payment.plugin().stop();
        leap(0);
        QVERIFY(!payment.bench().hasForm());
        payment.bench().newPayment();
        payment.start();
        payment.plugin().showInitScreen();
        QCOMPARE(payment.bench().buttons(), QStringLiteral("ok cancel"));
    }

    void slot_withoutForm_showsNothing_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("isStopped");
        const QMetaObject &meta = ParkomatPluginHandler::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QTest::addRow("%s before start", meta.method(i).name().constData()) << i << false;
            QTest::addRow("%s after stop", meta.method(i).name().constData()) << i << true;
        }
    }
    void slot_withoutForm_showsNothing()
    {
        QFETCH(int, index);
        QFETCH(bool, isStopped);
        FragilePayment payment;
        if (isStopped) {
            payment.start();
            payment.plugin().showInitScreen();
            payment.plugin().stop();
        }
        const QMetaMethod slot = ParkomatPluginHandler::staticMetaObject.method(index);
        QList<QVariant> values;
        for (int i = 0; i < slot.parameterCount(); ++i)
            values.append(QVariant(slot.parameterType(i), nullptr));
        const auto argument = [&values](int i) {
            return i < values.size() ? QGenericArgument(values.at(i).typeName(), values.at(i).constData())
                                     : QGenericArgument();
        };
        for (const Qt::ConnectionType call : {Qt::DirectConnection, Qt::QueuedConnection}) {
            QVERIFY(slot.invoke(payment.handler(), call, argument(0), argument(1)));
            payment.settle();
            leap(LATER_MS);
        }
        leap(A_MINUTE_MS);
        QVERIFY(!payment.bench().hasForm());
        QVERIFY(payment.handler()->helperViewer() == nullptr);
        QCOMPARE(QApplication::topLevelWidgets(), QWidgetList());
        QCOMPARE(payment.bench().outcome(), QStringList());
        QCOMPARE(payment.service().complaint(), QString());
        // An answer of nothing is no success.
        QCOMPARE(HandlerBench::takeAlarms().size(), slot.name() == "parkInfoPayResponseHandler" ? 2 : 0);
    }

    void hostObjects_null_areDoneWithout()
    {
        FragilePayment payment;
        IPayByProvider &plugin = payment.plugin();
        QVERIFY(plugin.setMessageReciever(nullptr, nullptr));
        QVERIFY(plugin.setMessageSender(nullptr, nullptr));
        IPayWidget *const form = plugin.start(nullptr, Currency(), nullptr);
        QVERIFY(form != nullptr);
        plugin.showInitScreen();
        payment.handler()->showCardNumberInputScreen();
        payment.handler()->parkingCheckResponseHandler(ParkingCheckResponse());
        plugin.doPaymentPredProcessing(nullptr, nullptr);
        QCOMPARE(payment.service().requests().size(), 0);
        QCOMPARE(HandlerBench::takeAlarms(), QStringList(QStringLiteral("INVALID PLUGIN PROVIDER")));
        plugin.stop();
        plugin.stop();
    }

    void commit_packIsNull_registersAnEmptyPayment()
    {
        FragilePayment payment;
        payment.start();
        const Meanwhile meanwhile({{[&payment] { return payment.isPayInFlight(); },
                                    [&payment] {
                                        payment.answerLast(FragilePayment::paid());
                                        TestClock::skip(LATER_MS);
                                    }}});
        payment.plugin().doPaymentPredProcessing(nullptr, nullptr);
        QVERIFY(meanwhile.isDone());
        QVERIFY(payment.service().requests().constLast().body.contains("<Uin>0</Uin>"));
    }

    void commit_handlerDiesInside_returnsAtOnce_data()
    {
        QTest::addColumn<int>("depth");
        QTest::newRow("one") << 1;
        QTest::newRow("inside another one") << 2;
        QTest::newRow("inside two others") << 3;
    }
    void commit_handlerDiesInside_returnsAtOnce()
    {
        QFETCH(int, depth);
        FragilePayment payment;
        payment.start();
        QCOMPARE(commitNested(payment, depth, [&payment] { payment.loseHandler(); }), depth);
        QCOMPARE(payment.service().requests().size(), depth);
    }

    void commit_nested_oneAnswerEndsAll_data()
    {
        QTest::addColumn<int>("depth");
        QTest::addColumn<int>("answered");
        QTest::newRow("two, the outer one's") << 2 << 0;
        QTest::newRow("two, the inner one's") << 2 << 1;
        QTest::newRow("three, the middle one's") << 3 << 1;
    }
    void commit_nested_oneAnswerEndsAll()
    {
        QFETCH(int, depth);
        QFETCH(int, answered);
        FragilePayment payment;
        payment.start();
        // Each returns at its own next poll.
        const int returned = commitNested(payment, depth, [&payment, answered] {
            payment.answer(answered, FragilePayment::paid());
            TestClock::skip(LATER_MS);
        });
        QVERIFY(returned >= 1);
        QCOMPARE(payment.service().requests().size(), depth);
        QCOMPARE(payment.unanswered(), depth - 1);
    }

    void commit_nested_timeLimitEndsAll()
    {
        FragilePayment payment;
        payment.start();
        commitNested(payment, 3, [] {
            FragilePayment::passTheTimeLimit();
            TestClock::skip(LATER_MS);
        });
        QCOMPARE(payment.unanswered(), 3);
    }

    void commit_allElseDiesInside_returns()
    {
        FragilePayment payment;
        payment.start();
        payment.plugin().showInitScreen();
        commitNested(payment, 1, [&payment] {
            payment.loseControllers();
            payment.loseForm();
            payment.loseSession();
            payment.loseProvider();
            payment.answerLast(FragilePayment::paid());
            TestClock::skip(LATER_MS);
        });
        QCOMPARE(payment.unanswered(), 0);
    }

    // A host that watches a message keeps its connections to it, whatever has become of the form.
    void message_releasedWithoutForm_keepsTheConnectionsOfOthers()
    {
        FragilePayment payment;
        payment.start();
        readCard(payment);
        auto *const controller = payment.handler()->findChild<MessageWidgetController *>();
        QVERIFY(controller != nullptr);
        const QSignalSpy destroyed(controller, &QObject::destroyed);
        payment.loseForm();
        fail(payment);
        payment.settle();
        QCOMPARE(destroyed.size(), 1);
    }

    void controller_diesInsideItsOwnSignal_isDoneWithout_data()
    {
        QTest::addColumn<bool>("isTick");
        QTest::newRow("finish") << false;
        QTest::newRow("tick") << true;
    }
    void controller_diesInsideItsOwnSignal_isDoneWithout()
    {
        QFETCH(bool, isTick);
        FragilePayment payment;
        payment.start();
        readCard(payment);
        auto *controller = payment.handler()->findChild<MessageWidgetController *>();
        QVERIFY(controller != nullptr);
        const QPointer<MessageWidgetController> guard(controller);
        const auto die = [guard] { delete guard; };
        if (isTick)
            QObject::connect(controller, &MessageWidgetController::tick, controller, die);
        else
            QObject::connect(controller, &MessageWidgetController::finish, controller, die);
        leap(A_MINUTE_MS);
        QVERIFY(!guard);
        QCOMPARE(payment.bench().messageText(), QString());
        // The tick comes first, and takes the time-out with it.
        QCOMPARE(payment.bench().outcome().size(), isTick ? 0 : 1);
    }
};

WIDGET_TEST_MAIN(HandlerRobustnessTest)
#include "tst_handlerrobustness.moc"
