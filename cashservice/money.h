// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cash {
/// An amount of money as a whole number of hundredths of the currency unit: 15000 is 150.00.
using Hundredths = std::int64_t;

/// Sums and products that do not fit 64 bits stay at the limit: an amount on the wire may be anything that does.
[[nodiscard]] Hundredths sum(Hundredths a, Hundredths b);
[[nodiscard]] Hundredths difference(Hundredths a, Hundredths b);
/// Both factors must not be negative.
[[nodiscard]] Hundredths product(Hundredths a, std::int64_t b);

/// Reads "50", "50.5" or "50.00": digits and at most two decimals, at most a thousand million units.
[[nodiscard]] std::optional<Hundredths> amountFromText(std::string_view text);
/// "150.00", "-0.05".
[[nodiscard]] std::string amountToText(Hundredths amount);
} // namespace cash
