// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "handlerchildren.h"
#include "parkomataccessmanager.h"
#include "scriptedpayment.h"
#include "support/stillclock.h"

#include <QApplication>
#include <QElapsedTimer>

namespace {
const QString CONFIRMING = QStringLiteral("Выполняется подтверждение операции...");
const QStringList CANCELLED = {QStringLiteral("needCancel")};
constexpr int LIMIT_SECONDS = 60;
constexpr qint64 LIMIT = 60'000;
/// The plugin looks once a second, so it has looked at least twice by then.
constexpr int SEVERAL_LOOKS = 2500;
/// Qt's timers may be early by a twentieth.
constexpr qint64 FIRST_LOOK = 900;

bool atOnce()
{
    return true;
}

/// With a time limit of its own for the answer.
struct LimitedPayment : PaidPayment
{
    explicit LimitedPayment(int limitSeconds = LIMIT_SECONDS)
    {
        TerminalAppSettings().setOnlineCheckTimeout(limitSeconds);
        TerminalAppSettings().setAutoCloseMessagesAfter(600);
    }

    [[nodiscard]] std::function<bool()> asked(int requests = 1) const
    {
        return [this, requests] { return service.requests() == requests; };
    }
    void commit() const { bench.commit({HandlerBench::payment(70'001, 15'000)}); }
};
} // namespace

/// How long the host's commit is held, and what ends it. The clock stands still in most of this: no time limit passes
/// unless the test lets it.
class HandlerConfirmationTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void commit_beforeStart_returnsAtOnce()
    {
        const ScriptedService service;
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        MessageLog::drop();
        bench.commit({HandlerBench::payment(70'001, 15'000)});
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.constFirst().level, QtCriticalMsg);
        QCOMPARE(lines.constFirst().text, QStringLiteral("INVALID PLUGIN PROVIDER"));
        // Neither a message nor a client was made.
        QCOMPARE(childrenOf<QObject>(handler).size(), 0);
    }

    void commit_providerGone_isAsBeforeStart()
    {
        LimitedPayment paid;
        paid.bench.newPayment();
        MessageLog::drop();
        const int before = childrenOf<QObject>(paid.handler).size();
        paid.commit();
        QCOMPARE(MessageLog::take().constLast().text, QStringLiteral("INVALID PLUGIN PROVIDER"));
        QCOMPARE(childrenOf<QObject>(paid.handler).size(), before);
        QCOMPARE(paid.service.requests(), 0);
    }

    void answer_inTime_endsTheWaitAtTheNextLook()
    {
        LimitedPayment paid;
        const StillClock clock;
        paid.service.plan(ScriptedService::pay());
        QElapsedTimer sinceCommit;
        sinceCommit.start();
        paid.commit();
        QVERIFY(!clock.wasHelped());
        QVERIFY(sinceCommit.elapsed() >= FIRST_LOOK);
        QCOMPARE(paid.service.operations(), QStringList(QStringLiteral("ParkInfoPay")));
        QCOMPARE(paid.bench.messageText(), QString());
        QCOMPARE(paid.bench.takeSignals(), QStringList());
        QCOMPARE(paid.service.complaint(), QString());
    }

    void message_whileItWaits_hasNoWayOut()
    {
        LimitedPayment paid;
        const StillClock clock;
        paid.service.hold();
        QStringList seen;
        const Meanwhile meanwhile({{paid.asked(), [&] {
                                        seen = QStringList({paid.bench.messageText(), paid.bench.buttons()});
                                        // Nobody listens: it neither cancels nor feeds the inactivity timer.
                                        auto *const message = paid.handler.findChild<MessageWidgetController *>();
                                        Q_EMIT message->tick();
                                        Q_EMIT message->finish(MessageWidgetController::TimeOut);
                                        paid.service.release(0, ScriptedService::pay());
                                    }}});
        paid.commit();
        QVERIFY(!clock.wasHelped());
        QCOMPARE(seen, QStringList({CONFIRMING, QString()}));
        QCOMPARE(paid.bench.takeSignals(), QStringList());
    }

    void message_halfAMinute_closesByItself()
    {
        LimitedPayment paid(0);
        paid.service.hold();
        QElapsedTimer sinceCommit;
        sinceCommit.start();
        paid.commit();
        QCOMPARE(paid.bench.messageText(), CONFIRMING);
        qint64 closed = -1;
        connect(paid.handler.findChild<MessageWidgetController *>(), &MessageWidgetController::finish, this,
                [&] { closed = sinceCommit.elapsed(); });
        letPass(31'000);
        QVERIFY2(closed >= 29'000, qPrintable(QString::number(closed)));
        QCOMPARE(paid.bench.messageText(), QString());
        QCOMPARE(paid.bench.takeSignals(), QStringList());
    }

    void limit_noAnswer_isWaitedFor_data()
    {
        QTest::addColumn<QTime>("begin");
        QTest::newRow("by day") << QTime(14, 5, 9);
        QTest::newRow("over midnight") << QTime(23, 59, 30);
    }

    void limit_noAnswer_isWaitedFor()
    {
        QFETCH(QTime, begin);
        LimitedPayment paid;
        StillClock clock(QDateTime(QDate(2024, 3, 7), begin));
        paid.service.hold();
        const Meanwhile meanwhile({{paid.asked(),
                                    [&] {
                                        clock.pass(LIMIT - 1);
                                        letPass(SEVERAL_LOOKS);
                                    }},
                                   {atOnce, [&] { clock.pass(1); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        QCOMPARE(paid.bench.messageText(), CONFIRMING);
        QCOMPARE(paid.bench.takeSignals(), QStringList());
    }

    // The stopwatch knows the time of day alone: earlier than before is tomorrow.
    void limit_clockSetBack_isTakenForPassed()
    {
        LimitedPayment paid;
        StillClock clock;
        paid.service.hold();
        const Meanwhile meanwhile({{paid.asked(), [&] { clock.pass(-1); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
    }

    void limit_noneOrCutTo16Bits_endsAtTheFirstLook_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::newRow("none") << 0;
        QTest::newRow("65536") << 65'536;
    }

    void limit_noneOrCutTo16Bits_endsAtTheFirstLook()
    {
        QFETCH(int, seconds);
        LimitedPayment paid(seconds);
        const StillClock clock;
        paid.service.hold();
        QElapsedTimer sinceCommit;
        sinceCommit.start();
        paid.commit();
        QVERIFY(!clock.wasHelped());
        QVERIFY(sinceCommit.elapsed() >= FIRST_LOOK);
        WAIT_FOR(paid.service.requests(), 1);
    }

    void limit_negative_isALongOne()
    {
        LimitedPayment paid(-1);
        StillClock clock;
        paid.service.hold();
        const Meanwhile meanwhile({{paid.asked(),
                                    [&] {
                                        clock.pass(LIMIT);
                                        letPass(SEVERAL_LOOKS);
                                    }},
                                   {atOnce, [&] { paid.service.release(0, ScriptedService::pay()); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
    }

    void answer_handledInTheFirstEventPass_isForgotten()
    {
        LimitedPayment paid;
        StillClock clock;
        paid.service.hold();
        QMetaObject::invokeMethod(
            &paid.handler, [&paid] { paid.handler.parkInfoPayResponseHandler(ParkInfoPayResponse(1, {})); },
            Qt::QueuedConnection);
        const Meanwhile meanwhile(
            {{paid.asked(), [] { letPass(SEVERAL_LOOKS); }}, {atOnce, [&] { clock.pass(LIMIT); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        // It was seen: the message has gone.
        QCOMPARE(paid.bench.messageText(), QString());
    }

    void answer_late_takesTheMessageOff()
    {
        LimitedPayment paid(0);
        paid.service.hold();
        paid.commit();
        QCOMPARE(paid.bench.messageText(), CONFIRMING);
        WAIT_FOR(paid.service.requests(), 1);
        paid.service.release(0, ScriptedService::pay());
        WAIT_FOR(paid.bench.messageText(), QString());
        QCOMPARE(paid.bench.takeSignals(), QStringList());
    }

    void answer_lateOfTheCommitBefore_endsTheNextOne()
    {
        LimitedPayment paid(0);
        paid.service.hold();
        paid.service.hold();
        paid.commit();
        WAIT_FOR(paid.service.requests(), 1);
        TerminalAppSettings().setOnlineCheckTimeout(LIMIT_SECONDS);
        const StillClock clock;
        const Meanwhile meanwhile({{paid.asked(2), [&] { paid.service.release(0, ScriptedService::pay()); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
    }

    void answer_negative_endsTheWaitLikeAPositiveOne()
    {
        LimitedPayment paid;
        const StillClock clock;
        paid.service.hold();
        const Meanwhile meanwhile(
            {{paid.asked(), [&] { paid.handler.parkInfoPayResponseHandler(ParkInfoPayResponse(6, {})); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        QCOMPARE(paid.bench.messageText(), QString());
        QCOMPARE(HandlerBench::takeAlarms().size(), 1);
        QCOMPARE(paid.bench.takeSignals(), QStringList());
    }

    void error_whileItWaits_isShownAndWaitedOn()
    {
        LimitedPayment paid;
        StillClock clock;
        paid.service.plan(ScriptedService::refusal("Почему"));
        QString buttons;
        const Meanwhile meanwhile({{[&] { return paid.bench.messageText() == QStringLiteral("Почему"); },
                                    [&] {
                                        buttons = paid.bench.buttons();
                                        letPass(SEVERAL_LOOKS);
                                    }},
                                   {[&] { return paid.bench.press("ok"); }, [] { letPass(SEVERAL_LOOKS); }},
                                   {atOnce, [&] { clock.pass(LIMIT); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        QCOMPARE(buttons, QStringLiteral("ok"));
        QCOMPARE(paid.bench.takeSignals(), CANCELLED);
    }

    void card_whileItWaits_isCheckedInTheSameLoop()
    {
        LimitedPayment paid;
        const StillClock clock;
        paid.service.hold();
        paid.service.plan(ScriptedService::check(99));
        const Meanwhile meanwhile(
            {{paid.asked(), [&] { paid.bench.readCard(HandlerBench::demoCard()); }},
             {[&] { return paid.bench.parameter(QStringLiteral("SummToPay")) == QStringLiteral("0.99"); },
              [&] { paid.service.release(0, ScriptedService::pay()); }}});
        paid.commit();
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        QCOMPARE(paid.service.operations(),
                 QStringList({QStringLiteral("ParkInfoPay"), QStringLiteral("ParkingCheck")}));
    }

    void handler_destroyedWhileItWaits_endsTheWait()
    {
        const StillClock clock;
        ScriptedService service;
        auto *const handler = new ParkomatPluginHandler;
        HandlerBench bench(handler);
        bench.start();
        // What stop() would have released.
        const std::unique_ptr<PluginBaseFormViewer> form(bench.form());
        service.hold();
        const Meanwhile meanwhile({{[&] { return service.requests() == 1; }, [handler] { delete handler; }}});
        bench.commit({});
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
    }

    void handler_destroyedInTheFirstEventPass_endsTheWait()
    {
        const StillClock clock;
        const ScriptedService service;
        auto *const handler = new ParkomatPluginHandler;
        HandlerBench bench(handler);
        bench.start();
        const std::unique_ptr<PluginBaseFormViewer> form(bench.form());
        QTimer::singleShot(0, handler, [handler] { delete handler; });
        bench.commit({});
        QVERIFY(!clock.wasHelped());
    }

    void client_confirmation_isTheChecks()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        service.plan(ScriptedService::check());
        service.plan(ScriptedService::pay());
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
        const QList<ParkomatAccessManager *> clients = handler.findChildren<ParkomatAccessManager *>();
        bench.commit({HandlerBench::payment(70'001, 15'000)});
        QCOMPARE(handler.findChildren<ParkomatAccessManager *>(), clients);
        QCOMPARE(clients.size(), 1);
        QCOMPARE(service.complaint(), QString());
    }
};

WIDGET_TEST_MAIN(HandlerConfirmationTest)
#include "tst_handlerconfirmation.moc"
