// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/holdbutton.h"

namespace kiosk {
HoldButton::HoldButton(const QString &text, QWidget *parent) : QPushButton(text, parent)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(HOLD_MS);
    connect(this, &QPushButton::pressed, &m_timer, QOverload<>::of(&QTimer::start));
    connect(this, &QPushButton::released, &m_timer, &QTimer::stop);
    connect(&m_timer, &QTimer::timeout, this, &HoldButton::held);
}
} // namespace kiosk
