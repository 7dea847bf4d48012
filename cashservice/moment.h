// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace cash {
/// Seconds since 1970-01-01T00:00:00 UTC.
using Moment = std::int64_t;
constexpr Moment MINUTE = 60;
constexpr Moment HOUR = 60 * MINUTE;
constexpr Moment DAY = 24 * HOUR;

/// Whatever needs the time asks one of these, so that tests can say what time it is.
using Clock = std::function<Moment()>;
[[nodiscard]] Clock systemClock();
[[nodiscard]] Clock stoppedClock(Moment moment);

/// "2024-03-07T14:05:09" in the process's zone, as answers carry it.
[[nodiscard]] std::string localText(Moment moment);
/// The other way round; nothing where the text is no such date and time, or not of the years 2000 to 2099: what is
/// reckoned from it must stay a date too.
[[nodiscard]] std::optional<Moment> momentFromLocalText(std::string_view text);

/// Whether the text begins with a date of the calendar and a time of the day as above, of the years 0001 to 9999.
[[nodiscard]] bool beginsWithDateTime(std::string_view text);
constexpr std::size_t DATE_TIME_LENGTH = 19;

/// "2h30m", "15m", "1d", "1500ms", "5s": whole numbers with units, the larger first; at most 36500d.
[[nodiscard]] std::optional<std::chrono::milliseconds> durationFromText(std::string_view text);
} // namespace cash
