// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/inactivity.h"

#include <QCoreApplication>
#include <QEvent>

namespace kiosk {
Inactivity::Inactivity(int seconds, QObject *parent) : QObject(parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(std::chrono::seconds(seconds));
    connect(&m_timer, &QTimer::timeout, this, &Inactivity::expired);
    QCoreApplication::instance()->installEventFilter(this);
}

void Inactivity::start()
{
    m_timer.start();
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
