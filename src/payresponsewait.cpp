// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payresponsewait.h"

#include "core/terminalappsettings.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTime>
#include <QTimer>

namespace {
constexpr int POLL_MS = 1000;

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
/// The time of day, deliberately: a clock that is set while it runs shortens or lengthens what it shows, and one that
/// is set back behind the start shows nearly a day.
class Stopwatch
{
public:
    Stopwatch() { m_start.start(); }
    /// Milliseconds.
    [[nodiscard]] int elapsed() const { return m_start.elapsed(); }

private:
    QTime m_start;
};
QT_WARNING_POP

/// Milliseconds. The seconds are cut to 16 bits by contract, not checked.
int limit()
{
    return static_cast<quint16>(TerminalAppSettings().onlineCheckTimeout()) * 1000;
}
} // namespace

void PayResponseWait::run()
{
    QEventLoop loop;
    bool isHandlerGone = false;
    QObject::connect(&m_handler, &QObject::destroyed, &loop, [&loop, &isHandlerGone] {
        isHandlerGone = true;
        loop.quit();
    });
    const Stopwatch stopwatch;
    QCoreApplication::processEvents();
    if (isHandlerGone)
        return;
    // Cleared only behind the event pass: an answer that came in it is forgotten, and the whole limit is waited for.
    m_isAnswered = false;
    const int most = limit();

    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [this, &loop, &isHandlerGone, &stopwatch, most] {
        if (!isHandlerGone && !m_isAnswered && stopwatch.elapsed() < most)
            return;
        loop.quit();
        QCoreApplication::processEvents();
    });
    poll.start(POLL_MS);
    QCoreApplication::processEvents();
    if (!isHandlerGone)
        loop.exec();
}
