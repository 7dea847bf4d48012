// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/waitindicator.h"

#include <QPainter>

#include <algorithm>

namespace {
constexpr int DOTS = 10;
constexpr int STEP = 100; // milliseconds
constexpr int SIZE = 112;
const QColor COLOUR(0x0b, 0x4a, 0x8a);
} // namespace

WaitIndicator::WaitIndicator(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Подождите"));
}

QSize WaitIndicator::sizeHint() const
{
    return {SIZE, SIZE};
}

void WaitIndicator::showEvent(QShowEvent * /*event*/)
{
    m_timer.start(STEP, this);
}

void WaitIndicator::hideEvent(QHideEvent * /*event*/)
{
    m_timer.stop();
}

void WaitIndicator::timerEvent(QTimerEvent * /*event*/)
{
    m_step = (m_step + 1) % DOTS;
    update();
}

void WaitIndicator::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(width() / 2.0, height() / 2.0);
    const qreal radius = std::min(width(), height()) / 2.0;
    const qreal dot = radius / 5;
    for (int i = 0; i < DOTS; ++i) {
        QColor colour = COLOUR;
        // The dot of this step is the darkest, those behind it fade.
        colour.setAlphaF(1.0 - 0.88 * ((m_step - i + DOTS) % DOTS) / (DOTS - 1));
        painter.setBrush(colour);
        painter.save();
        painter.rotate(360.0 / DOTS * i);
        painter.drawEllipse(QPointF(0, dot - radius), dot, dot);
        painter.restore();
    }
}
