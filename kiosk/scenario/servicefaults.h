// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QNetworkAccessManager>
#include <QUrl>

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

    /// @param admin the admin interface: "http://127.0.0.1:13006/admin"; the path may be left out.
    explicit ServiceFaults(const QUrl &admin, QObject *parent = nullptr);

    /// Adds a fault. @param rule as the service's options have it: "ParkInfoPay#1@before:empty".
    void set(const QString &rule, const Done &done);
    /// Ends them all.
    void clear(const Done &done);

private:
    [[nodiscard]] QUrl url() const;
    void watch(QNetworkReply *reply, const Done &done);

    QUrl m_admin;
    QNetworkAccessManager m_network;
};
} // namespace kiosk
