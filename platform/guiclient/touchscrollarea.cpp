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
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
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
