// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/inactivity.h"

#include <QCoreApplication>
#include <QEvent>

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
    constexpr int millisecondsOfASecond = 1000;
    return m_timer.isActive() ? (m_timer.remainingTime() + millisecondsOfASecond - 1) / millisecondsOfASecond : 0;
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
