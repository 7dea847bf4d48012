// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "money.h"

#include "text.h"

#include <limits>

namespace cash {
namespace {
constexpr Hundredths HIGHEST = std::numeric_limits<Hundredths>::max();
constexpr Hundredths LOWEST = std::numeric_limits<Hundredths>::min();
constexpr std::size_t MOST_UNIT_DIGITS = 10;
} // namespace

Hundredths sum(Hundredths a, Hundredths b)
{
    Hundredths result = 0;
    if (!__builtin_add_overflow(a, b, &result))
        return result;
    return b > 0 ? HIGHEST : LOWEST;
}

Hundredths difference(Hundredths a, Hundredths b)
{
    Hundredths result = 0;
    if (!__builtin_sub_overflow(a, b, &result))
        return result;
    return b < 0 ? HIGHEST : LOWEST;
}

Hundredths product(Hundredths a, std::int64_t b)
{
    Hundredths result = 0;
    return __builtin_mul_overflow(a, b, &result) ? HIGHEST : result;
}

std::optional<Hundredths> amountFromText(std::string_view text)
{
    const std::size_t point = text.find('.');
    const std::string_view units = text.substr(0, point);
    if (!areDigits(units) || units.size() > MOST_UNIT_DIGITS)
        return std::nullopt;
    std::string decimals;
    if (point != std::string_view::npos) {
        decimals = text.substr(point + 1);
        if (!areDigits(decimals) || decimals.size() > 2)
            return std::nullopt;
    }
    decimals.resize(2, '0');
    return numberFromText<Hundredths>(std::string(units) + decimals);
}

std::string amountToText(Hundredths amount)
{
    std::string digits = std::to_string(amount);
    const std::size_t sign = amount < 0 ? 1 : 0;
    if (digits.size() < sign + 3)
        digits.insert(sign, sign + 3 - digits.size(), '0');
    return digits.insert(digits.size() - 2, 1, '.');
}
} // namespace cash
