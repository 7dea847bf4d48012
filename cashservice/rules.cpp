// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "rules.h"

#include "moment.h"
#include "text.h"
#include "utf8.h"

#include <algorithm>
#include <cstdint>

namespace cash::rules {
namespace {
int twoDigits(std::string_view text, std::size_t position)
{
    return (text[position] - '0') * 10 + (text[position + 1] - '0');
}

/// Terminals count in units of UTF-16 when they see whether their number has four characters.
bool isTerminalNumber(std::string_view text)
{
    const bool areZeros = text.find_first_not_of('0') == std::string_view::npos;
    return utf16Length(text) >= 4 || (!text.empty() && areZeros);
}

/// yyhhmmssddd: year, time and day of the year, all digits.
bool isTimeOfSession(std::string_view text)
{
    return areDigits(text) && twoDigits(text, 2) <= 23 && twoDigits(text, 4) <= 59 && twoDigits(text, 6) <= 59 &&
           twoDigits(text, 8) <= 36;
}

/// "+hh:mm" or "-hh:mm", at most fourteen hours.
bool isOffset(std::string_view text)
{
    if (text.size() != 6 || (text[0] != '+' && text[0] != '-') || text[3] != ':' || !areDigits(text.substr(1, 2)) ||
        !areDigits(text.substr(4, 2)))
        return false;
    const int hours = twoDigits(text, 1);
    const int minutes = twoDigits(text, 4);
    return minutes <= 59 && (hours < 14 || (hours == 14 && minutes == 0));
}
} // namespace

bool isAnything(std::string_view /*text*/)
{
    return true;
}

bool isSessionId(std::string_view text)
{
    constexpr std::size_t timeLength = 11;
    for (const std::size_t operationLength : {3U, 4U, 5U}) {
        const std::size_t tail = timeLength + operationLength;
        if (text.size() > tail && areDigits(text.substr(text.size() - operationLength)) &&
            isTimeOfSession(text.substr(text.size() - tail, timeLength)) &&
            isTerminalNumber(text.substr(0, text.size() - tail)))
            return true;
    }
    return false;
}

bool isCardUid(std::string_view text)
{
    constexpr std::size_t digits = 8;
    return text.empty() || (text.size() == digits && std::all_of(text.begin(), text.end(), [](char c) {
                                return isDigit(c) || (c >= 'A' && c <= 'F');
                            }));
}

bool isTimeStamp(std::string_view text)
{
    if (!beginsWithDateTime(text))
        return false;
    const std::string_view offset = text.substr(DATE_TIME_LENGTH);
    return offset.empty() || isOffset(offset);
}

bool isWholeNumber(std::string_view text)
{
    const std::optional<std::int64_t> number = numberFromText<std::int64_t>(text);
    return number && std::to_string(*number) == text;
}

bool isPaymentType(std::string_view text)
{
    return text == "full" || text == "partial";
}

std::string_view withoutBlanksAround(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}
} // namespace cash::rules
