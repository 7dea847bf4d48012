// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/servicefaults.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace kiosk {
ServiceFaults::ServiceFaults(const QUrl &admin, QObject *parent) : QObject(parent), m_admin(admin)
{
    if (m_admin.path().isEmpty() || m_admin.path() == QLatin1String("/"))
        m_admin.setPath(QStringLiteral("/admin"));
    constexpr int patience = 30'000;
    m_network.setTransferTimeout(patience);
    // The service is on this machine, whatever proxy the system has.
    m_network.setProxy(QNetworkProxy::NoProxy);
}

void ServiceFaults::set(const QString &rule, const Done &done)
{
    QNetworkRequest request(url());
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    watch(m_network.post(request, QJsonDocument(QJsonObject{{QStringLiteral("rule"), rule}}).toJson()), done);
}

void ServiceFaults::clear(const Done &done)
{
    watch(m_network.deleteResource(QNetworkRequest(url())), done);
}

QUrl ServiceFaults::url() const
{
    QUrl url = m_admin;
    url.setPath(m_admin.path() + QStringLiteral("/faults"));
    return url;
}

void ServiceFaults::watch(QNetworkReply *reply, const Done &done)
{
    connect(reply, &QNetworkReply::finished, this, [reply, done] {
        reply->deleteLater();
        const QString body = QString::fromUtf8(reply->readAll()).trimmed();
        const bool isDone = reply->error() == QNetworkReply::NoError;
        done(isDone ? QString() : QStringLiteral("the cash service: %1 %2").arg(reply->errorString(), body));
    });
}
} // namespace kiosk
