// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/testclock.h"

#include <QTimer>

/// While it lives the wall clock stands still, so that no time limit measured by it passes until the test lets it pass.
/// Timers go on as always. After half a minute an hour passes by itself, lest a test that waits in vain hang.
class StillClock
{
public:
    explicit StillClock(const QDateTime &now = QDateTime::currentDateTime()) : m_now(now)
    {
        TestClock::freeze(m_now);
        m_guard.setSingleShot(true);
        QObject::connect(&m_guard, &QTimer::timeout, &m_guard, [this] {
            m_wasHelped = true;
            pass(3'600'000);
        });
        m_guard.start(30'000);
    }
    ~StillClock() { TestClock::release(); }
    StillClock(const StillClock &) = delete;
    StillClock &operator=(const StillClock &) = delete;

    /// @param ms below 0: somebody sets the clock back.
    void pass(qint64 ms)
    {
        m_now = m_now.addMSecs(ms);
        TestClock::freeze(m_now);
    }
    /// Whether the hour had to pass.
    [[nodiscard]] bool wasHelped() const { return m_wasHelped; }

private:
    bool m_wasHelped = false;
    QDateTime m_now;
    QTimer m_guard;
};
