// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkingcharge.h"

#include "parkomatsettings.h"

namespace {
// Keys of the session's data.
const char PARCOMAT_DATA[] = "parcomatData";
const char CARD_DATA[] = "cardData";
const char TOTAL_CHARGE[] = "totalCharge";
} // namespace

std::optional<QString> ParkingCharge::parameterValue(const QString &name) const
{
    if (name == QLatin1String("card_num"))
        return m_card.id();
    if (name == QLatin1String("SummToPay"))
        return m_response.totalCharge().toString();
    if (name == QLatin1String("TermNo"))
        return ParkomatSettings().termId();
    if (name == QLatin1String("ParkNumber"))
        return ParkomatSettings().parkingId();
    if (name == QLatin1String("StartDate"))
        return m_response.startTime().date().toString(QStringLiteral("yyyy-MM-dd"));
    if (name == QLatin1String("StartTime"))
        return m_response.startTime().time().toString(QStringLiteral("hh:mm:ss"));
    if (name == QLatin1String("UIN"))
        return m_response.sessionId();
    return std::nullopt;
}

void ParkingCharge::keepIn(QVariantMap &pluginsData) const
{
    pluginsData.insert(QLatin1String(PARCOMAT_DATA),
                       QVariantMap{{QLatin1String(CARD_DATA), m_card.toMap()},
                                   {QLatin1String(TOTAL_CHARGE), m_response.totalCharge().toString()}});
}

ParkingCharge::Kept ParkingCharge::keptIn(const QVariantMap &pluginsData)
{
    const QVariantMap data = pluginsData.value(QLatin1String(PARCOMAT_DATA)).toMap();
    return {data.value(QLatin1String(CARD_DATA)).toMap(),
            FixNumber(100, data.value(QLatin1String(TOTAL_CHARGE)).toString())};
}
