// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

/// What the C++ library does by locale, or with more forgiveness than a protocol bears.
namespace cash {
[[nodiscard]] inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Of one digit or more.
[[nodiscard]] inline bool areDigits(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

/// The whole text as a number in decimal: no blanks, no plus sign. Nothing also where it does not fit.
template <typename Integer>
[[nodiscard]] std::optional<Integer> numberFromText(std::string_view text)
{
    Integer number = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// Latin letters alone change.
[[nodiscard]] inline std::string inLowerCase(std::string text)
{
    for (char &c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}
} // namespace cash
