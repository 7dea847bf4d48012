// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Numbers of a fixed width, as dates and times are written with.
namespace Decimals {
/// Appends the last @a digits digits of @a number, which is not negative, with zeros in front.
inline void append(QString &text, int number, int digits)
{
    text.resize(text.size() + digits);
    for (QChar *at = text.data() + text.size(); digits > 0; --digits, number /= 10)
        *--at = QLatin1Char(static_cast<char>('0' + number % 10));
}

/// The number that @a digits characters of @a text from @a position on are; -1 when one of them is no digit.
[[nodiscard]] inline int read(const QString &text, int position, int digits)
{
    int number = 0;
    for (int at = position; at < position + digits; ++at) {
        const ushort digit = text.at(at).unicode();
        if (digit < '0' || digit > '9')
            return -1;
        number = number * 10 + (digit - '0');
    }
    return number;
}
} // namespace Decimals
