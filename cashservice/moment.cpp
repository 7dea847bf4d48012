// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "moment.h"

#include "text.h"

#include <array>
#include <ctime>
#include <utility>

namespace cash {
namespace {
int number(std::string_view text, std::size_t position, std::size_t length)
{
    int value = 0;
    for (const char c : text.substr(position, length))
        value = value * 10 + (c - '0');
    return value;
}

void appendTwoDigits(std::string &text, char before, int number)
{
    text += before;
    text += static_cast<char>('0' + number / 10);
    text += static_cast<char>('0' + number % 10);
}

bool hasShape(std::string_view text)
{
    constexpr std::string_view shape = "0000-00-00T00:00:00";
    if (text.size() < shape.size())
        return false;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        if (shape[i] == '0' ? !isDigit(text[i]) : text[i] != shape[i])
            return false;
    }
    return true;
}

int daysInMonth(int year, int month)
{
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && isLeap ? 29 : days.at(static_cast<std::size_t>(month - 1));
}
} // namespace

Clock systemClock()
{
    return [] { return static_cast<Moment>(std::time(nullptr)); };
}

Clock stoppedClock(Moment moment)
{
    return [moment] { return moment; };
}

std::string localText(Moment moment)
{
    const std::time_t time = moment;
    std::tm fields = {};
    if (localtime_r(&time, &fields) == nullptr)
        return std::string();
    // strftime() takes several times as long, and an answer has four of them.
    std::string text = std::to_string(1900L + fields.tm_year);
    appendTwoDigits(text, '-', fields.tm_mon + 1);
    appendTwoDigits(text, '-', fields.tm_mday);
    appendTwoDigits(text, 'T', fields.tm_hour);
    appendTwoDigits(text, ':', fields.tm_min);
    appendTwoDigits(text, ':', fields.tm_sec);
    return text;
}

std::optional<Moment> momentFromLocalText(std::string_view text)
{
    constexpr int firstYear = 2000;
    constexpr int lastYear = 2099;
    if (text.size() != DATE_TIME_LENGTH || !beginsWithDateTime(text))
        return std::nullopt;
    const int year = number(text, 0, 4);
    if (year < firstYear || year > lastYear)
        return std::nullopt;
    std::tm fields = {};
    fields.tm_year = year - 1900;
    fields.tm_mon = number(text, 5, 2) - 1;
    fields.tm_mday = number(text, 8, 2);
    fields.tm_hour = number(text, 11, 2);
    fields.tm_min = number(text, 14, 2);
    fields.tm_sec = number(text, 17, 2);
    fields.tm_isdst = -1;
    return std::mktime(&fields);
}

bool beginsWithDateTime(std::string_view text)
{
    if (!hasShape(text))
        return false;
    const int year = number(text, 0, 4);
    const int month = number(text, 5, 2);
    const int day = number(text, 8, 2);
    return year >= 1 && month >= 1 && month <= 12 && day >= 1 && day <= daysInMonth(year, month) &&
           number(text, 11, 2) <= 23 && number(text, 14, 2) <= 59 && number(text, 17, 2) <= 59;
}

std::optional<std::chrono::milliseconds> durationFromText(std::string_view text)
{
    constexpr std::array<std::pair<std::string_view, std::int64_t>, 5> units = {
        {{"d", 86'400'000}, {"h", 3'600'000}, {"m", 60'000}, {"s", 1'000}, {"ms", 1}}};
    constexpr std::size_t mostDigits = 9;
    std::int64_t total = 0;
    std::size_t next = 0;
    if (text.empty())
        return std::nullopt;
    while (!text.empty()) {
        std::size_t digits = 0;
        while (digits < text.size() && isDigit(text[digits]))
            ++digits;
        std::size_t end = digits;
        while (end < text.size() && !isDigit(text[end]))
            ++end;
        const std::string_view name = text.substr(digits, end - digits);
        while (next < units.size() && units.at(next).first != name)
            ++next;
        if (digits == 0 || digits > mostDigits || next == units.size())
            return std::nullopt;
        total += numberFromText<std::int64_t>(text.substr(0, digits)).value_or(0) * units.at(next).second;
        text.remove_prefix(end);
        ++next;
    }
    constexpr std::chrono::milliseconds most = std::chrono::hours(24) * 36'500;
    const std::chrono::milliseconds duration(total);
    return duration <= most ? std::optional(duration) : std::nullopt;
}
} // namespace cash
