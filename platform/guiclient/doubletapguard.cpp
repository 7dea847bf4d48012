// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/doubletapguard.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

DoubleTapGuard::DoubleTapGuard(QWidget *viewer) : QObject(viewer), m_viewer(viewer) {}

void DoubleTapGuard::arm()
{
    qApp->installEventFilter(this);
}

bool DoubleTapGuard::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool isTap = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    // The window behind the widgets gets each event too, and a press before each double click.
    const auto *widget = qobject_cast<const QWidget *>(watched);
    if (widget == nullptr || (!isTap && type != QEvent::KeyPress))
        return false;
    qApp->removeEventFilter(this);
    return type == QEvent::MouseButtonDblClick && m_viewer->isAncestorOf(widget);
}
