// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/inactivity.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

namespace kiosk {
Inactivity::Inactivity(QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    // Its seconds are shown.
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Inactivity::expired);
    QCoreApplication::instance()->installEventFilter(this);
}

void Inactivity::start(int seconds)
{
    m_timer.start(std::chrono::seconds(seconds));
}

void Inactivity::stop()
{
    m_timer.stop();
}

void Inactivity::restart()
{
    if (m_timer.isActive())
        m_timer.start();
}

int Inactivity::secondsLeft() const
{
    if (!m_timer.isActive())
        return 0;
    constexpr int millisecondsOfASecond = 1000;
    // Qt rounds up: at first a millisecond more may be left than there was.
    const int left = std::min(m_timer.remainingTime(), m_timer.interval());
    return (left + millisecondsOfASecond - 1) / millisecondsOfASecond;
}

bool Inactivity::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
    case QEvent::KeyPress:
        restart();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
} // namespace kiosk
