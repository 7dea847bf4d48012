// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

class MessageWidgetController;

namespace kiosk {
/// Watches the plugin's messages while a payment is being confirmed, from its making on: the plugin has no other way to
/// tell the terminal what came of it. Once it knows that the payee has the payment, it takes the message that asks the
/// customer to wait off, and puts up no other.
class ConfirmationWatch : public QObject
{
    Q_OBJECT

public:
    /// @param root the plugin's root object, whose children the messages are.
    explicit ConfirmationWatch(QObject *root);

    /// Whether exactly one message came, and the plugin took it off before it closed by itself. To be asked when the
    /// plugin has returned.
    [[nodiscard]] bool isConfirmed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void inspectChildren();

    QPointer<QObject> m_root;
    /// Not yet made when the event came: what they are is looked at later.
    QVector<QPointer<QObject>> m_newChildren;
    QPointer<MessageWidgetController> m_message;
    int m_messages = 0;
    bool m_isTakenOff = false;
    bool m_isClosedByItself = false;
};
} // namespace kiosk
