// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/touchscrollarea.h"

#include <QMouseEvent>
#include <QScrollBar>

TouchScrollArea::TouchScrollArea(QWidget *content, QWidget *parent) : QScrollArea(parent)
{
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
}

QSize TouchScrollArea::sizeHint() const
{
    const int width = viewport()->width();
    return {width, qMax(widget()->heightForWidth(width), widget()->minimumSizeHint().height())};
}

bool TouchScrollArea::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

void TouchScrollArea::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    m_grabbedAt = event->globalPos().y() + verticalScrollBar()->value();
}

void TouchScrollArea::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
    verticalScrollBar()->setValue(m_grabbedAt - event->globalPos().y());
}
