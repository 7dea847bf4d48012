// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/bench/carpark.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

#include <algorithm>

namespace kiosk {
namespace {
constexpr auto SESSIONS = "sessions";

ParkedCard card(const QJsonObject &session)
{
    ParkedCard made;
    made.uid = session.value(QStringLiteral("uid")).toString();
    made.note = session.value(QStringLiteral("note")).toString();
    made.owed = FixNumber(100, static_cast<qint64>(session.value(QStringLiteral("owed")).toDouble()));
    made.isPayable = session.value(QStringLiteral("state")).toString() == QLatin1String("parked");
    return made;
}

bool comesBefore(const ParkedCard &card, const ParkedCard &other)
{
    if (card.isPayable != other.isPayable)
        return card.isPayable;
    return card.uid > other.uid;
}
} // namespace

QVariantMap ParkedCard::read() const
{
    const QString decimal = QString::number(uid.toUInt(nullptr, 16));
    constexpr int digits = 10;
    return {{QStringLiteral("id"), decimal},
            {QStringLiteral("cardId"), decimal.rightJustified(digits, QLatin1Char('0'))},
            {QStringLiteral("pdata"), QStringLiteral("01312211020202190000000100000000")}};
}

CarPark::CarPark(const QUrl &admin, QObject *parent) : QObject(parent), m_admin(admin) {}

void CarPark::ask()
{
    const int number = ++m_asked;
    QNetworkReply *reply = m_admin.get(SESSIONS);
    connect(reply, &QNetworkReply::finished, this, [this, reply, number] {
        reply->deleteLater();
        if (number == m_asked)
            take(*reply);
    });
}

void CarPark::take(QNetworkReply &reply)
{
    const QJsonDocument document = QJsonDocument::fromJson(reply.readAll());
    const QJsonValue sessions = document.object().value(QStringLiteral("sessions"));
    if (reply.error() != QNetworkReply::NoError || !sessions.isArray()) {
        Q_EMIT failed(reply.error() != QNetworkReply::NoError
                          ? reply.errorString()
                          : QStringLiteral("%1 names no sessions").arg(m_admin.url(SESSIONS).toString()));
        return;
    }
    QVector<ParkedCard> cards;
    const QJsonArray all = sessions.toArray();
    for (const QJsonValue &session : all)
        cards.append(card(session.toObject()));
    std::sort(cards.begin(), cards.end(), comesBefore);
    Q_EMIT answered(cards);
}
} // namespace kiosk
