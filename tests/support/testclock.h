// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QList>

/// The wall clock as the process sees it: it stands in for the C library's, so that Qt and everything above see it too.
/// Monotonic clocks go on as they are.
namespace TestClock {
/// Stops the clock at @a moment.
void freeze(const QDateTime &moment);
/// Lets each reading see the next of @a moments; the last one stays.
void play(const QList<QDateTime> &moments);
/// How often the clock was read since freeze() or play().
[[nodiscard]] int readings();
/// Back to the real clock.
void release();
} // namespace TestClock
