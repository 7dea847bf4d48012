// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>

/// The clocks as the process sees them: they stand in for the C library's, so that Qt and everything above see them
/// too. Monotonic clocks go on as they are, but for what skip() lets them leave out.
namespace TestClock {
/// Stops the clock at @a moment.
void freeze(const QDateTime &moment);
/// Lets each reading see the next of @a moments; the last one stays.
void play(const QList<QDateTime> &moments);
/// How often the clock was read since freeze() or play().
[[nodiscard]] int readings();
/// Back to the real wall clock.
void release();

/// Lets the monotonic clock of this thread jump ahead, for good: a timer that is due by then fires at the next pass of
/// the event loop, without anybody having waited. A loop that sleeps already does not notice, nor do other threads:
/// sockets' time limits and QtTest's go on as they are. Always the same thread may skip.
void skip(qint64 ms);
} // namespace TestClock

/// While it lives the monotonic clock of this thread stands still, but for what skip() lets it leave out: what is left
/// of a timer stays as it is, however busy the machine. Always the same thread may do so, and nothing may be waited
/// for.
class StillTimers
{
public:
    StillTimers();
    ~StillTimers();
    StillTimers(const StillTimers &) = delete;
    StillTimers &operator=(const StillTimers &) = delete;
};
