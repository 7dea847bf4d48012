// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "clientprobe.h"

#include <QNetworkProxy>

/// Names a service that only a proxy can reach: Qt never asks a proxy for this machine itself.
inline void useDistantService()
{
    useService(80);
    ParkomatSettings().setCashServiceHost(QStringLiteral("cash.invalid"));
}

/// While it lives, the application's connections go through a proxy on this machine.
class ProxyInUse
{
public:
    explicit ProxyInUse(quint16 port, const QString &user = {}, const QString &password = {})
    {
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), port, user, password));
    }
    ~ProxyInUse() { QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy)); }
    ProxyInUse(const ProxyInUse &) = delete;
    ProxyInUse &operator=(const ProxyInUse &) = delete;
};
