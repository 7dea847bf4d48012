// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

/// One parking card as the terminal read it: the chip's UID, the printed number, and what the parking system wrote on
/// it.
///
/// Filled by the payment flow from a card reader's map, or field by field where the customer types; read by the
/// requests to the cash service.
class ParkomatCardData
{
public:
    /// An empty record: no texts, no payload, parking number -1, an invalid date-time, no discount.
    ParkomatCardData() = default;
    /// As an empty record that parseMap() was called on.
    explicit ParkomatCardData(const QVariant &map);
    ParkomatCardData(const ParkomatCardData &) = default;
    /// Exchanges texts, payload and date-time with @a other; the parking number and the discount are copied.
    ParkomatCardData(ParkomatCardData &&other) noexcept;
    ParkomatCardData &operator=(const ParkomatCardData &) = default;
    ParkomatCardData &operator=(ParkomatCardData &&other) noexcept;
    ~ParkomatCardData() = default;

    /// Whether there is a UID and a card number. The payload plays no part.
    [[nodiscard]] bool isValid() const;

    /// The chip's UID as a decimal number.
    [[nodiscard]] QString uid() const { return m_uid; }
    void setUid(const QString &uid) { m_uid = uid; }

    /// The printed card number.
    [[nodiscard]] QString id() const { return m_id; }
    void setId(const QString &id) { m_id = id; }

    /// The payload: 32 bytes of Latin-1, or empty where none was decoded.
    [[nodiscard]] QByteArray cardData() const { return m_cardData; }
    void setCardData(const QByteArray &cardData) { m_cardData = cardData; }

    /// When the card was activated, local time; invalid where the payload has no such date or time.
    [[nodiscard]] QDateTime cardDt() const { return m_cardDt; }
    void setCardDt(const QDateTime &cardDt) { m_cardDt = cardDt; }

    [[nodiscard]] bool discount() const { return m_discount; }
    void setDiscount(bool discount) { m_discount = discount; }

    /// The UID in hexadecimal, lowest byte first, as the cash service wants it: 305419896 (12345678) is "78563412".
    /// UIDs below 10000000 hexadecimal, and text that is no unsigned 32-bit number, come out as NUL characters. That is
    /// intended; the XML writer drops them, so that an empty UID goes out.
    [[nodiscard]] QString uidHex() const;

    /// Back to an empty record.
    void clean();

    /// Fills the record from a map with the texts "id" (UID), "cardId" (card number) and, optionally, "pdata" (payload
    /// of 32 characters, blanks around it aside; of any other length it is ignored). Nothing of an earlier card stays.
    /// @return isValid(); false and an empty record when "id" or "cardId" is missing.
    bool parseMap(const QVariantMap &map);
    /// The map that parseMap() reads: "id", "cardId", "pdata".
    [[nodiscard]] QVariantMap toMap() const;

    /// The record as labelled lines; none when it is not valid.
    [[nodiscard]] QStringList toStringList() const;

    friend bool operator==(const ParkomatCardData &left, const ParkomatCardData &right);
    friend bool operator!=(const ParkomatCardData &left, const ParkomatCardData &right) { return !(left == right); }

private:
    void swapTexts(ParkomatCardData &other) noexcept;

    QString m_uid;
    QString m_id;
    QByteArray m_cardData;
    int m_parkingNumber = -1;
    QDateTime m_cardDt;
    bool m_discount = false;
};
