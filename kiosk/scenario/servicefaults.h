// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/serviceadmin.h"

#include <QObject>

#include <functional>

class QNetworkReply;

namespace kiosk {
/// Sets and ends faults of a cash service, over its admin interface.
class ServiceFaults : public QObject
{
    Q_OBJECT

public:
    /// Told when the service has answered. @param reason why it did not work; empty: it did.
    using Done = std::function<void(const QString &reason)>;

    /// @param admin as ServiceAdmin takes it.
    explicit ServiceFaults(const QUrl &admin, QObject *parent = nullptr);

    /// Adds a fault. @param rule as the service's options have it: "ParkInfoPay#1@before:empty".
    void set(const QString &rule, const Done &done);
    /// Ends them all.
    void clear(const Done &done);

private:
    void watch(QNetworkReply *reply, const Done &done);

    ServiceAdmin m_admin;
};
} // namespace kiosk
