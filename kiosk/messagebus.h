// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

namespace kiosk {
/// The terminal's end of the bus between its plugins' forms and its devices. No device of this terminal talks to forms,
/// so what a form sends is logged, and nothing is ever sent to one.
class MessageBus : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

public Q_SLOTS:
    /// Called when a form sends something.
    void take(const QString &type, const QVariantMap &message);

Q_SIGNALS:
    void arrived(const QString &type, const QVariantMap &message);
};
} // namespace kiosk
