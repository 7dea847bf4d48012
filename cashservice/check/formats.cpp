// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "formats.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <regex>

namespace conformance {
namespace {
/// No text of any of the forms is longer; a regular expression would fill the stack with one that is.
bool isShort(const std::string &text)
{
    constexpr std::size_t LONGEST = 64;
    return text.size() <= LONGEST;
}

template <typename Integer>
bool fits(const std::string &digits)
{
    errno = 0;
    const long long value = std::strtoll(digits.c_str(), nullptr, 10);
    return errno == 0 && value >= std::numeric_limits<Integer>::min() && value <= std::numeric_limits<Integer>::max();
}

const std::regex &wholeNumber()
{
    static const std::regex FORM("0|-?[1-9][0-9]*");
    return FORM;
}

int daysIn(int year, int month)
{
    constexpr int FEBRUARY = 2;
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (month == FEBRUARY)
        return isLeap ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}
} // namespace

bool isWholeNumber(const std::string &text)
{
    return isShort(text) && std::regex_match(text, wholeNumber()) && fits<std::int64_t>(text);
}

bool isFlag(const std::string &text)
{
    static const std::regex FORM("-?[0-9]+");
    return isShort(text) && std::regex_match(text, FORM) && fits<std::int32_t>(text);
}

bool isResultCode(const std::string &text)
{
    return isShort(text) && std::regex_match(text, wholeNumber()) && fits<std::int32_t>(text);
}

bool isTimeStamp(const std::string &text)
{
    static const std::regex FORM("([0-9]{4})-(0[1-9]|1[0-2])-([0-9]{2})T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]"
                                 "(\\.[0-9]+)?(Z|[+-](0[0-9]|1[0-3]):[0-5][0-9]|[+-]14:00)?");
    std::smatch parts;
    if (!isShort(text) || !std::regex_match(text, parts, FORM))
        return false;
    const int year = std::stoi(parts[1]);
    const int day = std::stoi(parts[3]);
    return year >= 1 && day >= 1 && day <= daysIn(year, std::stoi(parts[2]));
}
} // namespace conformance
