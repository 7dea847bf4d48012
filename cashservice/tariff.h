// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "moment.h"
#include "money.h"

namespace cash {
/// What a stay costs: a price for each started hour, up to a maximum for each day of the stay. A stay that ends within
/// the free time costs nothing; of a longer one the free time is charged too.
struct Tariff
{
    Hundredths perHour = 0;
    Moment freeTime = 0;
    /// For each 24 hours from the entry on.
    Hundredths dailyMaximum = 0;

    [[nodiscard]] Hundredths charge(Moment entered, Moment now) const;
    /// Until when the stay is covered once what is owed @a now is paid.
    [[nodiscard]] Moment coveredByCharge(Moment entered, Moment now) const;
    /// Until when @a paid covers the stay.
    [[nodiscard]] Moment coveredBy(Moment entered, Hundredths paid) const;
};

[[nodiscard]] inline bool operator==(const Tariff &a, const Tariff &b)
{
    return a.perHour == b.perHour && a.freeTime == b.freeTime && a.dailyMaximum == b.dailyMaximum;
}
} // namespace cash
