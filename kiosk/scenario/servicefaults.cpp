// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/servicefaults.h"

#include <QJsonObject>
#include <QNetworkReply>

namespace kiosk {
namespace {
constexpr auto FAULTS = "faults";
} // namespace

ServiceFaults::ServiceFaults(const QUrl &admin, QObject *parent) : QObject(parent), m_admin(admin) {}

void ServiceFaults::set(const QString &rule, const Done &done)
{
    watch(m_admin.post(FAULTS, {{QStringLiteral("rule"), rule}}), done);
}

void ServiceFaults::clear(const Done &done)
{
    watch(m_admin.remove(FAULTS), done);
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
