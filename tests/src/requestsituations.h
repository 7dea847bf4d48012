// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"
#include "journalfiles.h"
#include "parkomatcarddata.h"
#include "parkomatsettings.h"

#include <QDateTime>

#include <optional>

/// What requests are made of: the terminal's state, the card and the purchase, and what must come out of each.
namespace RequestSituations {
inline QDateTime utc(int year, int month, int day, int hour, int minute, int second)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

inline const QDateTime NOW = utc(2024, 3, 7, 11, 5, 9);
inline const QDateTime IN_SUMMER = utc(2024, 7, 14, 11, 5, 9);
inline const QDateTime PAID_AT = utc(2024, 3, 7, 11, 6, 41);

struct Configuration
{
    QString partnerId;
    QString parkingId;
    QString termId;
};

/// What a request is made of apart from the purchase, and what of it must be found in the document.
struct Situation
{
    QByteArray zone = "Europe/Moscow";
    QDateTime now = NOW;
    /// Nothing: the settings are left alone, so that the defaults count.
    std::optional<Configuration> settings =
        Configuration{QStringLiteral("north"), QStringLiteral("12"), QStringLiteral("0042")};
    /// The counter that the journal holds for today; nothing: there is no journal.
    std::optional<int> journal = std::nullopt;
    QString uid = QStringLiteral("305419896");
    QString cardId = QStringLiteral("000123456");

    /// How the settings must come out, where XML cannot hold what was set.
    std::optional<Configuration> writtenSettings = std::nullopt;
    QString sessionId = QStringLiteral("004224140509067001");
    QString cardUid = QStringLiteral("78563412");
    QString requestTime = QStringLiteral("2024-03-07T14:05:09+03:00");

    [[nodiscard]] Configuration expectedSettings() const
    {
        const Configuration defaults = {QStringLiteral("dravik"), QString(), QStringLiteral("0")};
        return writtenSettings ? *writtenSettings : settings.value_or(defaults);
    }
};

struct Purchase
{
    Payment payment;
    FixNumber totalCharge;
    QString uin;
    QString dateTime;
    QString amount;
    QString type;
};

inline Payment paid(qint64 uid, const QDateTime &created, qint64 hundredths)
{
    Payment payment(uid, created, 18156);
    payment.setSumm(FixNumber(100, hundredths));
    return payment;
}

inline Payment paidWithComission(qint64 hundredths, qint64 comission)
{
    Payment payment = paid(1187, PAID_AT, hundredths);
    payment.setComission(FixNumber(100, comission), false, false);
    return payment;
}

/// A purchase whose moment alone matters.
inline Purchase purchaseAt(const QDateTime &created, const QString &dateTime)
{
    return {paid(1187, created, 15000), FixNumber(100, 15000), QStringLiteral("1187"), dateTime,
            QStringLiteral("15000"),    QStringLiteral("full")};
}

inline Purchase anyPurchase()
{
    return purchaseAt(PAID_AT, QStringLiteral("2024-03-07T14:06:41+03:00"));
}

inline Situation at(const QByteArray &zone, const QDateTime &now, const QString &requestTime, const QString &sessionId)
{
    Situation situation;
    situation.zone = zone;
    situation.now = now;
    situation.requestTime = requestTime;
    situation.sessionId = sessionId;
    return situation;
}

inline Situation berlinInWinter()
{
    return at("Europe/Berlin", NOW, QStringLiteral("2024-03-07T12:05:09+01:00"), QStringLiteral("004224120509067001"));
}

inline Situation berlinInSummer()
{
    return at("Europe/Berlin", IN_SUMMER, QStringLiteral("2024-07-14T13:05:09+01:00"),
              QStringLiteral("004224130509196001"));
}

inline Situation londonInWinter()
{
    return at("Europe/London", NOW, QStringLiteral("2024-03-07T11:05:09"), QStringLiteral("004224110509067001"));
}

inline Situation with(const Configuration &settings, const QString &sessionTermId)
{
    Situation situation;
    situation.settings = settings;
    situation.sessionId = sessionTermId + QStringLiteral("24140509067001");
    return situation;
}

inline Situation withTermId(const QString &termId, const QString &sessionTermId)
{
    return with({QStringLiteral("north"), QStringLiteral("12"), termId}, sessionTermId);
}

inline Situation withJournal(int counter, const QString &sessionId)
{
    Situation situation;
    situation.journal = counter;
    situation.sessionId = sessionId;
    return situation;
}

inline Situation withCard(const QString &uid, const QString &cardUid,
                          const QString &cardId = QStringLiteral("000123456"))
{
    Situation situation;
    situation.uid = uid;
    situation.cardUid = cardUid;
    situation.cardId = cardId;
    return situation;
}

inline Situation withCardId(const QString &cardId)
{
    return withCard(QStringLiteral("305419896"), QStringLiteral("78563412"), cardId);
}

/// Makes settings and journal what the situation says.
inline void configure(const Situation &situation)
{
    if (situation.settings) {
        ParkomatSettings settings;
        settings.setPartnerId(situation.settings->partnerId);
        settings.setParkingId(situation.settings->parkingId);
        settings.setTermId(situation.settings->termId);
    }
    if (situation.journal) {
        const QString today = situation.requestTime.left(10).replace(QLatin1Char('-'), QLatin1Char('.'));
        for (const QString &file : {ParkomatDataStorage::MAIN_FILE, ParkomatDataStorage::BACK_FILE})
            JournalFiles::writeRecord(file, *situation.journal, today);
    }
}

inline ParkomatCardData cardOf(const Situation &situation)
{
    ParkomatCardData card;
    card.setUid(situation.uid);
    card.setId(situation.cardId);
    return card;
}
} // namespace RequestSituations

Q_DECLARE_METATYPE(RequestSituations::Situation)
Q_DECLARE_METATYPE(RequestSituations::Purchase)
