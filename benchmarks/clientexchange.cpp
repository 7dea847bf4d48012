// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientexchange.h"

#include "parkingcheckrequest.h"

#include <QEventLoop>

#include <stdexcept>

namespace {
template <typename Post>
void waitForAnswer(ParkomatAccessManager &client, const Post &post)
{
    QEventLoop loop;
    QString failure;
    QObject::connect(&client, &ParkomatAccessManager::parkingCheckResponse, &loop, &QEventLoop::quit);
    QObject::connect(&client, &ParkomatAccessManager::error, &loop, [&](const QVariantMap &map) {
        failure = map.value(QStringLiteral("errorMessage")).toString();
        loop.quit();
    });
    post();
    loop.exec();
    if (!failure.isNull())
        throw std::runtime_error("the exchange failed: " + failure.toStdString());
}
} // namespace

void ClientExchange::run(ParkomatAccessManager &client, const QString &text)
{
    waitForAnswer(client, [&] { client.postData(QStringLiteral("ParkingCheck"), text); });
}

void ClientExchange::run(ParkomatAccessManager &client, const ParkingCheckRequest &request)
{
    waitForAnswer(client, [&] { client.postData(request); });
}
