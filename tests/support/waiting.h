// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/testclock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

/// Lets what was scheduled for deletion go.
inline void deleteReleased()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Lets events happen until the condition holds.
/// @param limitMs when to give it up: far more than it takes on a busy machine.
template <typename Condition>
void waitUntil(const Condition &condition, int limitMs = 60'000)
{
    // Some conditions are met without an event here: a thread ends, a descriptor is closed.
    constexpr int lookEveryMs = 5;
    QTimer tick;
    tick.start(lookEveryMs);
    const QDeadlineTimer limit(limitMs);
    while (!condition() && !limit.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        deleteReleased();
    }
}

/// As QTRY_COMPARE, which looks 20 times a second only: too slow for hundreds of exchanges.
#define WAIT_FOR(actual, expected)                                                                                     \
    do {                                                                                                               \
        waitUntil([&] { return (actual) == (expected); });                                                             \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)

/// Lets timers fire that are due in this time, in order, without the time being spent.
inline void letPass(int ms)
{
    constexpr int step = 100;
    for (; ms > 0; ms -= step) {
        TestClock::skip(std::min(ms, step));
        QCoreApplication::processEvents();
        deleteReleased();
    }
}

/// The same in one leap, in which a timer fires once at the most.
inline void leap(int ms)
{
    TestClock::skip(ms);
    QCoreApplication::processEvents();
    deleteReleased();
}

/// When a signal came for the first time. Bounds on it hold however slow the machine is: what is late is never early.
class Arrival
{
public:
    template <typename Sender, typename Signal>
    Arrival(const Sender *sender, Signal signal)
    {
        m_since.start();
        QObject::connect(sender, signal, &m_context, [this] {
            if (m_ms < 0)
                m_ms = m_since.elapsed();
        });
    }

    /// Milliseconds since this object was made; -1: it has not come.
    [[nodiscard]] qint64 ms() const { return m_ms; }

private:
    QElapsedTimer m_since;
    QObject m_context;
    qint64 m_ms = -1;
};

/// Does one thing after another, each once its condition holds, while the code under test runs an event loop of its
/// own. Each is done in an event pass of its own: where the code under test leaves its loop, the rest stays undone.
class Meanwhile
{
public:
    struct Step
    {
        std::function<bool()> when;
        std::function<void()> then;
    };

    explicit Meanwhile(const QList<Step> &steps) : m_steps(steps)
    {
        constexpr int lookEveryMs = 5;
        QObject::connect(&m_tick, &QTimer::timeout, &m_tick, [this] {
            if (!m_steps.isEmpty() && m_steps.constFirst().when())
                m_steps.takeFirst().then();
        });
        m_tick.start(lookEveryMs);
    }

    [[nodiscard]] bool isDone() const { return m_steps.isEmpty(); }

private:
    QTimer m_tick;
    QList<Step> m_steps;
};
