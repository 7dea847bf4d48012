// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QNetworkAccessManager>
#include <QUrl>

class QJsonObject;

namespace kiosk {
/// The admin interface of a cash service on this machine: requests to what it has, by name. A reply is its receiver's
/// to delete; one that does not come within half a minute fails.
class ServiceAdmin
{
public:
    /// @param admin "http://127.0.0.1:13006/admin"; the path may be left out.
    explicit ServiceAdmin(const QUrl &admin);

    /// @param what "sessions", "faults".
    [[nodiscard]] QUrl url(const char *what) const;

    [[nodiscard]] QNetworkReply *get(const char *what);
    [[nodiscard]] QNetworkReply *post(const char *what, const QJsonObject &object);
    /// Removes all of it.
    [[nodiscard]] QNetworkReply *remove(const char *what);

private:
    QUrl m_admin;
    QNetworkAccessManager m_network;
};
} // namespace kiosk
