// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "tariff.h"

#include <algorithm>

namespace cash {
namespace {
std::int64_t startedHours(Moment duration)
{
    return (duration + HOUR - 1) / HOUR;
}

/// So that no amount, however large, leads beyond what a date can say.
constexpr std::int64_t MOST_DAYS = 36'500;
} // namespace

Hundredths Tariff::charge(Moment entered, Moment now) const
{
    const Moment stay = now - entered;
    if (stay <= freeTime)
        return 0;
    const Hundredths fullDays = product(dailyMaximum, stay / DAY);
    return sum(fullDays, std::min(dailyMaximum, product(perHour, startedHours(stay % DAY))));
}

Moment Tariff::coveredByCharge(Moment entered, Moment now) const
{
    const Moment stay = now - entered;
    if (stay <= freeTime)
        return entered + freeTime;
    const std::int64_t hours = startedHours(stay % DAY);
    const bool isDayPaid = product(perHour, hours) >= dailyMaximum;
    return entered + stay / DAY * DAY + (isDayPaid ? DAY : hours * HOUR);
}

Moment Tariff::coveredBy(Moment entered, Hundredths paid) const
{
    if (perHour == 0 || dailyMaximum == 0)
        return entered + MOST_DAYS * DAY;
    const Hundredths amount = std::max<Hundredths>(paid, 0);
    const std::int64_t days = amount / dailyMaximum;
    if (days >= MOST_DAYS)
        return entered + MOST_DAYS * DAY;
    const std::int64_t hours = amount % dailyMaximum / perHour;
    return entered + std::max(days * DAY + std::min(hours * HOUR, DAY), freeTime);
}
} // namespace cash
