// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/confirmationwatch.h"

#include "guiclient/messagewidgetcontroller.h"

#include <QChildEvent>
#include <QCoreApplication>

namespace kiosk {
ConfirmationWatch::ConfirmationWatch(QObject *root) : m_root(root)
{
    root->installEventFilter(this);
}

bool ConfirmationWatch::isConfirmed()
{
    inspectChildren();
    // It may be taken off already, but not gone: the plugin returned before its event loop came to that.
    if (m_message)
        QCoreApplication::sendPostedEvents(m_message, QEvent::DeferredDelete);
    // When the plugin itself died, its messages went with it.
    return m_root && m_messages == 1 && m_isTakenOff && !m_isClosedByItself;
}

bool ConfirmationWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ChildAdded) {
        m_newChildren.append(dynamic_cast<QChildEvent &>(*event).child());
        QMetaObject::invokeMethod(this, &ConfirmationWatch::inspectChildren, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void ConfirmationWatch::inspectChildren()
{
    const QVector<QPointer<QObject>> children = qExchange(m_newChildren, {});
    for (const QPointer<QObject> &child : children) {
        auto *const message = qobject_cast<MessageWidgetController *>(child);
        if (message == nullptr)
            continue;
        ++m_messages;
        m_message = message;
        connect(message, &MessageWidgetController::finish, this, [this] { m_isClosedByItself = true; });
        connect(message, &QObject::destroyed, this, [this] { m_isTakenOff = true; });
    }
}
} // namespace kiosk
