// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/turningbox.h"

#include <QBoxLayout>

namespace kiosk {
TurningBox::TurningBox(QLayout *first, int firstShare, QLayout *second, int secondShare, QWidget *parent)
    : QWidget(parent), m_layout(new QBoxLayout(QBoxLayout::LeftToRight, this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(40);
    m_layout->addLayout(first, firstShare);
    m_layout->addLayout(second, secondShare);
}

void TurningBox::resizeEvent(QResizeEvent *event)
{
    m_layout->setDirection(height() > width() ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    QWidget::resizeEvent(event);
}
} // namespace kiosk
