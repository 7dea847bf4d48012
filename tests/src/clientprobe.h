// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomataccessmanager.h"
#include "parkomatsettings.h"
#include "support/waiting.h"

#include <QStringList>

/// The cash service's answers that the client's tests let it see.
namespace Answers {
inline const QByteArray CHECK = QByteArrayLiteral(
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Response Operation=\"ParkingCheckResponse\" ResultCode=\"1\">"
    "<SessionId>s1</SessionId><TotalCharge>15000</TotalCharge></Response>");
inline const QByteArray PAY = QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"1\">"
                                                "<SessionId>s2</SessionId></Response>");
inline const QByteArray UNKNOWN_CARD =
    QByteArrayLiteral("<Response Operation=\"ParkingCheckResponse\" ResultCode=\"5\">"
                      "<ErrorInfo>no such card</ErrorInfo></Response>");
inline const QByteArray REFUSED_PAYMENT =
    QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"5\">"
                      "<ErrorInfo>no such card</ErrorInfo></Response>");
} // namespace Answers

/// Writes down what a client signals, in order: "check s1 150.00", "pay s2", "error 5 no such card", "progress 25".
class ClientProbe
{
public:
    explicit ClientProbe(ParkomatAccessManager &client)
    {
        QObject::connect(&client, &ParkomatAccessManager::error, &m_context, [this](const QVariantMap &map) {
            const QString keys = QStringList(map.keys()).join(QLatin1Char(','));
            if (keys != QLatin1String("error,errorMessage") || map[QStringLiteral("error")].type() != QVariant::Int ||
                map[QStringLiteral("errorMessage")].type() != QVariant::String)
                m_seen.append(QStringLiteral("malformed error map: ") + keys);
            m_seen.append(
                QStringLiteral("error %1 %2")
                    .arg(map[QStringLiteral("error")].toString(), map[QStringLiteral("errorMessage")].toString()));
        });
        QObject::connect(&client, &ParkomatAccessManager::progress, &m_context,
                         [this](int percent) { m_seen.append(QStringLiteral("progress %1").arg(percent)); });
        QObject::connect(&client, &ParkomatAccessManager::parkInfoPayResponse, &m_context,
                         [this](const ParkInfoPayResponse &response) {
                             m_seen.append(QStringLiteral("pay %1").arg(response.sessionId()));
                         });
        QObject::connect(
            &client, &ParkomatAccessManager::parkingCheckResponse, &m_context,
            [this](const ParkingCheckResponse &response) {
                m_seen.append(
                    QStringLiteral("check %1 %2").arg(response.sessionId(), response.totalCharge().toString()));
            });
    }

    [[nodiscard]] const QStringList &seen() const { return m_seen; }

private:
    QObject m_context;
    QStringList m_seen;
};

inline QNetworkAccessManager *managerOf(const ParkomatAccessManager &client)
{
    return client.findChild<QNetworkAccessManager *>(QString(), Qt::FindDirectChildrenOnly);
}

/// Lets the settings name a service on this machine.
inline void useService(quint16 port, const QString &path = QStringLiteral("api"))
{
    ParkomatSettings settings;
    settings.setCashServiceHost(QStringLiteral("127.0.0.1"));
    settings.setCashServicePort(port);
    settings.setCashServicePath(path);
}
