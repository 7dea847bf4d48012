// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/touchscroll.h"

#include <QScrollArea>
#include <QScroller>

namespace kiosk::TouchScroll {
void prepare(QScrollArea &area)
{
    area.setWidgetResizable(true);
    area.setFrameShape(QFrame::NoFrame);
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(area.viewport(), QScroller::LeftMouseButtonGesture);
}
} // namespace kiosk::TouchScroll
