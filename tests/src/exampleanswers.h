// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "baseparkomatresponse.h"

#include <QDateTime>

/// The properties of an answer of either kind, each with a value of its own.
namespace ExampleAnswers {
using Properties = BaseParkomatResponse::Properties;

inline Properties check()
{
    return {{QStringLiteral("SessionId"), QStringLiteral("s")},
            {QStringLiteral("ExternalSessionId"), QStringLiteral("x")},
            {QStringLiteral("ParkingId"), QStringLiteral("12")},
            {QStringLiteral("StartTime"), QStringLiteral("2019-05-14T09:30:00")},
            {QStringLiteral("AnticipatedStopTime"), QStringLiteral("2019-05-14T11:30:00")},
            {QStringLiteral("LastChangeTime"), QStringLiteral("2019-05-14T09:31:00")},
            {QStringLiteral("TotalCharge"), QStringLiteral("15000")},
            {QStringLiteral("AmountSum"), QStringLiteral("5000")},
            {QStringLiteral("CanExtend"), QStringLiteral("1")},
            {QStringLiteral("CanStop"), QStringLiteral("0")},
            {QStringLiteral("AnswerTime"), QStringLiteral("2019-05-14T10:02:11")},
            {QStringLiteral("ErrorInfo"), QStringLiteral("e")}};
}

inline Properties pay()
{
    return {{QStringLiteral("PartnerId"), QStringLiteral("dravik")},
            {QStringLiteral("SessionId"), QStringLiteral("s")},
            {QStringLiteral("ExternalSessionId"), QStringLiteral("x")},
            {QStringLiteral("AnticipatedStopTime"), QStringLiteral("2019-05-14T11:30:00")},
            {QStringLiteral("AnswerTime"), QStringLiteral("2019-05-14T10:05:42")},
            {QStringLiteral("ErrorInfo"), QStringLiteral("e")}};
}

/// A moment that is in neither, in the zone of the tests.
inline const QDateTime MOMENT(QDate(2019, 5, 14), QTime(9, 30, 0), Qt::UTC);
} // namespace ExampleAnswers
