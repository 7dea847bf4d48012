// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scriptedpayment.h"
#include "support/stillclock.h"

#include <QApplication>

namespace {
constexpr int LIMIT_SECONDS = 60;
constexpr qint64 LIMIT = 60'000;
constexpr int POLL_MS = 1'000;
/// Qt's timers may be late by a twentieth.
constexpr int ONE_LOOK = 1'050;

/// A commit whose request is never answered by the service. Neither clock goes on by itself to speak of.
class HeldCommit
{
public:
    HeldCommit()
    {
        TerminalAppSettings().setOnlineCheckTimeout(LIMIT_SECONDS);
        m_paid.service.hold();
    }

    /// What is done in the commit's first event pass.
    template <typename Function>
    void doInTheFirstPass(Function function)
    {
        QMetaObject::invokeMethod(&m_context, function, Qt::QueuedConnection);
    }
    void pass(qint64 ms) { m_clock.pass(ms); }
    void answer() { m_paid.handler.parkInfoPayResponseHandler(ParkInfoPayResponse(1, {})); }

    /// Commits, and once the request is there does something and lets the time to one look pass.
    /// @return whether it let the host go on, or an earlier one on a slow machine.
    template <typename Function>
    [[nodiscard]] bool endsAtOneLook(Function function)
    {
        int passes = 0;
        const Meanwhile meanwhile({{[this] { return m_paid.service.requests() == 1; },
                                    [&function] {
                                        function();
                                        TestClock::skip(ONE_LOOK);
                                    }},
                                   // A look that was due has come before.
                                   {[&passes] { return ++passes > 5; },
                                    [this] {
                                        m_clock.pass(LIMIT);
                                        TestClock::skip(10 * POLL_MS);
                                    }}});
        m_paid.bench.commit({HandlerBench::payment(70'001, 15'000)});
        return !meanwhile.isDone() && !m_clock.wasHelped();
    }

private:
    PaidPayment m_paid;
    StillClock m_clock;
    QObject m_context;
};

/// Posts a call whenever the plugin's poll is about to look.
class CallsAtLooks : public QObject
{
public:
    CallsAtLooks() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *const timer = qobject_cast<QTimer *>(watched);
        if (event->type() == QEvent::Timer && timer != nullptr && timer->interval() == POLL_MS) {
            ++posted;
            QMetaObject::invokeMethod(
                this, [this] { ++run; }, Qt::QueuedConnection);
        }
        return false;
    }

    int posted = 0;
    int run = 0;
};

void nothing() {}
} // namespace

/// When the plugin looks whether it may let the host's commit go on, and what it has seen by then.
class HandlerPollTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void answer_arrived_isSeenWithinOneSecond()
    {
        HeldCommit commit;
        QVERIFY(commit.endsAtOneLook([&commit] { commit.answer(); }));
    }

    void nothing_happened_isWaitedOn()
    {
        HeldCommit commit;
        QVERIFY(!commit.endsAtOneLook(nothing));
    }

    void time_ofTheFirstEventPass_counts()
    {
        HeldCommit commit;
        commit.doInTheFirstPass([&commit] { commit.pass(LIMIT); });
        QVERIFY(commit.endsAtOneLook(nothing));
    }

    void limit_changedInTheFirstEventPass_isTheNewOne()
    {
        HeldCommit commit;
        commit.doInTheFirstPass([] { TerminalAppSettings().setOnlineCheckTimeout(0); });
        QVERIFY(commit.endsAtOneLook(nothing));
    }

    void events_ofTheLastLook_areProcessedBeforeTheHostGoesOn()
    {
        HeldCommit commit;
        const CallsAtLooks calls;
        QVERIFY(commit.endsAtOneLook([&commit] { commit.answer(); }));
        QVERIFY(calls.posted > 0);
        QCOMPARE(calls.run, calls.posted);
    }
};

WIDGET_TEST_MAIN(HandlerPollTest)
#include "tst_handlerpoll.moc"
