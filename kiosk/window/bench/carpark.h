// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"
#include "scenario/serviceadmin.h"

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <QVector>

namespace kiosk {
/// A card that the cash service knows.
struct ParkedCard
{
    /// As people write it: "12345678".
    QString uid;
    /// What the service says about it.
    QString note;
    FixNumber owed;
    /// Whether it can be paid for: the service has no other answer in store for it.
    bool isPayable = false;

    /// What a card reader reads of it: "id", "cardId" and "pdata".
    [[nodiscard]] QVariantMap read() const;
};

/// Asks a cash service, over its admin interface, which cards are parked there and what they owe.
class CarPark : public QObject
{
    Q_OBJECT

public:
    /// @param admin as ServiceAdmin takes it.
    explicit CarPark(const QUrl &admin, QObject *parent = nullptr);

    /// Asks anew; one of the signals answers. An answer that is still out is not waited for any more.
    void ask();

Q_SIGNALS:
    /// @param cards those that can be paid for first, and among each kind the highest number: the car park that the
    /// service brings along has its more usual cards there.
    void answered(const QVector<ParkedCard> &cards);
    /// @param reason for people.
    void failed(const QString &reason);

private:
    void take(QNetworkReply &reply);

    ServiceAdmin m_admin;
    int m_asked = 0;
};
} // namespace kiosk
