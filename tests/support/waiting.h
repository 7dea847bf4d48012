// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTest>
#include <QTimer>

/// Lets events happen until the condition holds, for half a minute at most, unless another limit is given.
template <typename Condition>
void waitUntil(const Condition &condition, int limitMs = 30'000)
{
    // Some conditions are met without an event here: a thread ends, a descriptor is closed.
    constexpr int lookEveryMs = 5;
    QTimer tick;
    tick.start(lookEveryMs);
    const QDeadlineTimer limit(limitMs);
    while (!condition() && !limit.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

/// As QTRY_COMPARE, which looks 20 times a second only: too slow for hundreds of exchanges.
#define WAIT_FOR(actual, expected)                                                                                     \
    do {                                                                                                               \
        waitUntil([&] { return (actual) == (expected); });                                                             \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)
