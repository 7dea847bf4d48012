// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testclock.h"

#include <algorithm>
#include <atomic>
#include <mutex>

#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

namespace {
// Plain memory until a test sets the clock: libraries read it while they are loaded, before anything here is
// constructed.
std::atomic<bool> isReal = true;
std::mutex mutex;
int readingsSoFar = 0;
std::atomic<qint64> skippedMs = 0;
/// When the monotonic clock was stopped; 0: it goes on.
std::atomic<qint64> stoppedNs = 0;
// Not a thread_local variable: the first use of one allocates, and who allocates may want to know the time.
std::atomic<pthread_t> skippingThread = {};

constexpr qint64 MS_PER_SECOND = 1'000;
constexpr qint64 NS_PER_MS = 1'000'000;
constexpr qint64 NS_PER_SECOND = MS_PER_SECOND * NS_PER_MS;

/// Empty while the clock is real. Never destroyed: a thread of a library that nobody waits for may still look at the
/// clock while the process ends.
QList<qint64> &moments()
{
    static auto &list = *new QList<qint64>;
    return list;
}

/// The real clock, asked of the kernel: the C library's functions are the ones that are replaced here.
int kernelTime(clockid_t clock, timespec *time)
{
    return static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
}

int wallTime(timespec *time)
{
    if (isReal)
        return kernelTime(CLOCK_REALTIME, time);
    const std::lock_guard lock(mutex);
    // Released meanwhile.
    if (moments().isEmpty())
        return kernelTime(CLOCK_REALTIME, time);
    const qint64 ms = moments().at(std::min(readingsSoFar, moments().size() - 1));
    ++readingsSoFar;
    time->tv_sec = static_cast<time_t>(ms / MS_PER_SECOND);
    time->tv_nsec = static_cast<long>(ms % MS_PER_SECOND * NS_PER_MS);
    return 0;
}

qint64 kernelMonotonicNs(clockid_t clock)
{
    timespec time = {};
    kernelTime(clock, &time);
    return time.tv_sec * NS_PER_SECOND + time.tv_nsec;
}

int monotonicTime(clockid_t clock, timespec *time)
{
    if (skippingThread != pthread_self())
        return kernelTime(clock, time);
    const qint64 stopped = stoppedNs;
    const qint64 ns = (stopped != 0 ? stopped : kernelMonotonicNs(clock)) + skippedMs * NS_PER_MS;
    time->tv_sec = static_cast<time_t>(ns / NS_PER_SECOND);
    time->tv_nsec = static_cast<long>(ns % NS_PER_SECOND);
    return 0;
}
} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    switch (clock) {
    case CLOCK_REALTIME:
    case CLOCK_REALTIME_COARSE:
        return wallTime(time);
    case CLOCK_MONOTONIC:
    case CLOCK_MONOTONIC_COARSE:
        return monotonicTime(clock, time);
    default:
        return kernelTime(clock, time);
    }
}

extern "C" int gettimeofday(timeval *__restrict time, void *__restrict) noexcept
{
    timespec now = {};
    const int result = wallTime(&now);
    time->tv_sec = now.tv_sec;
    time->tv_usec = now.tv_nsec / 1000;
    return result;
}

void TestClock::freeze(const QDateTime &moment)
{
    play({moment});
}

void TestClock::play(const QList<QDateTime> &newMoments)
{
    isReal = true;
    const std::lock_guard lock(mutex);
    moments().clear();
    readingsSoFar = 0;
    for (const QDateTime &moment : newMoments)
        moments().append(moment.toMSecsSinceEpoch());
    isReal = moments().isEmpty();
}

int TestClock::readings()
{
    const std::lock_guard lock(mutex);
    return readingsSoFar;
}

void TestClock::release()
{
    play({});
}

void TestClock::skip(qint64 ms)
{
    skippingThread = pthread_self();
    skippedMs += ms;
}

StillTimers::StillTimers()
{
    skippingThread = pthread_self();
    stoppedNs = kernelMonotonicNs(CLOCK_MONOTONIC);
}

StillTimers::~StillTimers()
{
    stoppedNs = 0;
}
