// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The currency of a payment, as the host names it.
struct Currency
{
    /// ISO 4217 numeric code: 643 is the Russian rouble.
    int code = 643;
    /// What is shown behind an amount.
    QString shortName = QStringLiteral("руб.");
    /// Decimals of an amount: 2 for hundredths.
    int decimals = 2;
};

inline bool operator==(const Currency &left, const Currency &right)
{
    return left.code == right.code && left.shortName == right.shortName && left.decimals == right.decimals;
}

inline bool operator!=(const Currency &left, const Currency &right)
{
    return !(left == right);
}
