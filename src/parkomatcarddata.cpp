// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatcarddata.h"

#include "bus/logvariant.h"
#include "decimals.h"
#include "parkomatlog.h"
#include "parkomatsettings.h"

#include <QLocale>
#include <QObject>

#include <utility>

namespace {
constexpr int PAYLOAD_SIZE = 32;
constexpr int CENTURY = 2000;

const char *text(bool value)
{
    return value ? "true" : "false";
}

/// The payload's two-character fields are plain decimal numbers; one that is no number is 0.
class Payload
{
public:
    explicit Payload(const QString &text) : m_text(text) {}

    [[nodiscard]] int parkingNumber() const { return field(0); }
    [[nodiscard]] QTime time() const { return QTime(field(6), field(4), field(2), 0); }
    [[nodiscard]] int dayOfWeek() const { return field(8); }
    [[nodiscard]] QDate date() const { return QDate(CENTURY + field(14), field(12), field(10)); }
    [[nodiscard]] bool discount() const { return m_text.midRef(16).contains(QLatin1Char('1')); }

private:
    [[nodiscard]] int field(int position) const
    {
        const int number = Decimals::read(m_text, position, 2);
        // Qt, at ten times the cost, knows of signs and blanks, too.
        return number >= 0 ? number : m_text.midRef(position, 2).toInt(nullptr, 10);
    }

    const QString &m_text;
};
} // namespace

ParkomatCardData::ParkomatCardData(const QVariant &map)
{
    parseMap(map.toMap());
}

ParkomatCardData::ParkomatCardData(ParkomatCardData &&other) noexcept
    : m_parkingNumber(other.m_parkingNumber), m_discount(other.m_discount)
{
    swapTexts(other);
}

ParkomatCardData &ParkomatCardData::operator=(ParkomatCardData &&other) noexcept
{
    swapTexts(other);
    m_parkingNumber = other.m_parkingNumber;
    m_discount = other.m_discount;
    return *this;
}

void ParkomatCardData::swapTexts(ParkomatCardData &other) noexcept
{
    m_uid.swap(other.m_uid);
    m_id.swap(other.m_id);
    m_cardData.swap(other.m_cardData);
    m_cardDt.swap(other.m_cardDt);
}

bool ParkomatCardData::isValid() const
{
    return !m_uid.isEmpty() && !m_id.isEmpty();
}

QString ParkomatCardData::uidHex() const
{
    constexpr int digits = 8;
    QString hex = QString::number(m_uid.toUInt(nullptr, 10), 16).toUpper();
    // Deliberately NUL characters in place of the number, not zeros in front of it.
    if (hex.size() < digits)
        hex = QString(digits - hex.size(), QChar(QChar::Null));
    QString lowestByteFirst;
    lowestByteFirst.reserve(digits);
    for (int at = digits - 2; at >= 0; at -= 2)
        lowestByteFirst += hex.midRef(at, 2);
    return lowestByteFirst;
}

void ParkomatCardData::clean()
{
    static const ParkomatCardData empty;
    *this = empty;
}

bool ParkomatCardData::parseMap(const QVariantMap &map)
{
    clean();
    qCWarning(DEFAULT_LOG).noquote() << "Card data:" << logvariant(QVariant(map));
    const auto uid = map.constFind(QStringLiteral("id"));
    const auto id = map.constFind(QStringLiteral("cardId"));
    if (uid == map.constEnd() || id == map.constEnd())
        return false;

    const QString pdata = map.value(QStringLiteral("pdata")).toString().trimmed();
    qCWarning(DEFAULT_LOG).noquote() << "Card payload:" << pdata << "length:" << pdata.size();
    // Read and compared with nothing: a card is taken whatever parking it names.
    const QString parkingId = ParkomatSettings().parkingId();
    if (pdata.size() == PAYLOAD_SIZE) {
        const Payload payload(pdata);
        const QTime time = payload.time();
        const QDate date = payload.date();
        m_parkingNumber = payload.parkingNumber();
        qCWarning(DEFAULT_LOG).noquote() << "Card parking number:" << m_parkingNumber << "configured:" << parkingId;
        qCWarning(DEFAULT_LOG).noquote() << "Card activated:" << date.toString(Qt::TextDate)
                                         << time.toString(Qt::TextDate) << "weekday:" << date.dayOfWeek()
                                         << "on the card:" << payload.dayOfWeek();
        // Qt would take an impossible time for midnight.
        if (time.isValid())
            m_cardDt = QDateTime(date, time, Qt::LocalTime);
        m_discount = payload.discount();
        m_cardData = pdata.toLatin1();
    }

    m_uid = uid->toString();
    m_id = id->toString();
    qCWarning(DEFAULT_LOG).noquote() << "Card:" << m_cardDt.toString(Qt::ISODate) << "discount:" << text(m_discount)
                                     << "uid:" << m_uid << "id:" << m_id << "valid:" << text(isValid());
    return isValid();
}

QVariantMap ParkomatCardData::toMap() const
{
    return {{QStringLiteral("id"), m_uid},
            {QStringLiteral("cardId"), m_id},
            {QStringLiteral("pdata"), QString::fromLatin1(m_cardData)}};
}

QStringList ParkomatCardData::toStringList() const
{
    if (!isValid())
        return {};
    // Hour, month and day before the time: the mixed format is what the lines have always shown.
    const QString activated = QLocale::c().toString(m_cardDt, QStringLiteral("hh.MM.dd hh:mm:ss"));
    QStringList lines = {QObject::tr("CARD UID "),
                         m_uid,
                         QObject::tr("CARD ID"),
                         m_id,
                         QObject::tr("PARKING #%1").arg(m_parkingNumber),
                         QObject::tr("CARD ACTIVATED "),
                         activated};
    if (m_discount)
        lines.append(QObject::tr("DISCOUNT"));
    return lines;
}

bool operator==(const ParkomatCardData &left, const ParkomatCardData &right)
{
    return left.m_uid == right.m_uid && left.m_id == right.m_id && left.m_cardData == right.m_cardData &&
           left.m_parkingNumber == right.m_parkingNumber && left.m_cardDt == right.m_cardDt &&
           left.m_discount == right.m_discount;
}
