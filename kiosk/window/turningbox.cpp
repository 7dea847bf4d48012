// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/turningbox.h"

#include <QBoxLayout>

namespace kiosk {
TurningBox::TurningBox(QLayout *first, int firstShare, QLayout *second, int secondShare, QWidget *parent)
    : QWidget(parent), m_layout(new QBoxLayout(QBoxLayout::LeftToRight, this)), m_firstShare(firstShare),
      m_secondShare(secondShare)
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(32);
    m_layout->addLayout(first, firstShare);
    m_layout->addLayout(second, secondShare);
}

void TurningBox::resizeEvent(QResizeEvent *event)
{
    const bool isUpright = window()->height() > window()->width();
    m_layout->setDirection(isUpright ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    // What is below each other is as high as it has to be.
    m_layout->setStretch(0, isUpright ? 0 : m_firstShare);
    m_layout->setStretch(1, isUpright ? 0 : m_secondShare);
    QWidget::resizeEvent(event);
}
} // namespace kiosk
