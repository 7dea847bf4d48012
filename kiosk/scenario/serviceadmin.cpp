// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/serviceadmin.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QNetworkRequest>

namespace kiosk {
ServiceAdmin::ServiceAdmin(const QUrl &admin) : m_admin(admin)
{
    if (m_admin.path().isEmpty() || m_admin.path() == QLatin1String("/"))
        m_admin.setPath(QStringLiteral("/admin"));
    constexpr int patience = 30'000;
    m_network.setTransferTimeout(patience);
    // The service is on this machine, whatever proxy the system has.
    m_network.setProxy(QNetworkProxy::NoProxy);
}

QUrl ServiceAdmin::url(const char *what) const
{
    QUrl url = m_admin;
    url.setPath(m_admin.path() + QLatin1Char('/') + QLatin1String(what));
    return url;
}

QNetworkReply *ServiceAdmin::get(const char *what)
{
    return m_network.get(QNetworkRequest(url(what)));
}

QNetworkReply *ServiceAdmin::post(const char *what, const QJsonObject &object)
{
    QNetworkRequest request(url(what));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return m_network.post(request, QJsonDocument(object).toJson());
}

QNetworkReply *ServiceAdmin::remove(const char *what)
{
    return m_network.deleteResource(QNetworkRequest(url(what)));
}
} // namespace kiosk
