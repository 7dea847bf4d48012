// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/fixnumber.h"

#include "extension/extensionlog.h"

#include <algorithm>
#include <limits>

namespace {
// Wide enough for any 64-bit value at any scale, so that every operation is exact until its last step.
__extension__ using Wide = __int128;

constexpr int DEFAULT_SCALE = 100;
constexpr int FINEST_SCALE = 1'000'000'000;

int checkedScale(int scale)
{
    int power = 1;
    while (power < scale && power < FINEST_SCALE)
        power *= 10;
    if (power == scale)
        return scale;
    qCCritical(EXTENSION_LOG)
        << "FixNumber: the scale" << scale
        << "is not a power of ten from 1 to 1000000000; 100 is taken instead. The caller is wrong.";
    return DEFAULT_SCALE;
}

/// @a value in units of one @a scale th.
qint64 saturated(Wide value, int scale)
{
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    constexpr qint64 highest = std::numeric_limits<qint64>::max();
    if (value >= lowest && value <= highest)
        return static_cast<qint64>(value);
    const qint64 nearest = value < 0 ? lowest : highest;
    qCCritical(EXTENSION_LOG).noquote() << "FixNumber: a number is beyond what 64 bits hold at scale" << scale
                                        << "and becomes" << FixNumber(scale, nearest).toString()
                                        << "instead. Check the amounts that it was made of.";
    return nearest;
}

Wide scaledTo(const FixNumber &number, int scale)
{
    return Wide(number.value()) * (scale / number.scale());
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Appends a digit; stays just past the 64-bit range once it is left, however many digits follow.
Wide appended(Wide number, QChar digit)
{
    constexpr Wide limit = Wide(std::numeric_limits<qint64>::max()) + 2;
    return std::min(number * 10 + (digit.unicode() - '0'), limit);
}

/// The text's value in units of one @a scale th, not yet saturated; zero where the text is no number.
Wide parsed(const QString &text, int scale)
{
    auto at = text.cbegin();
    const auto end = text.cend();
    const bool negative = at != end && *at == QLatin1Char('-');
    if (negative || (at != end && *at == QLatin1Char('+')))
        ++at;

    const auto digits = at;
    Wide number = 0;
    for (; at != end && isDigit(*at); ++at)
        number = appended(number, *at);
    if (at == digits)
        return 0;

    int decimalsToCome = scale;
    if (at != end && *at == QLatin1Char('.')) {
        const auto decimals = ++at;
        for (; at != end && isDigit(*at); ++at) {
            if (decimalsToCome > 1) {
                number = appended(number, *at);
                decimalsToCome /= 10;
            }
        }
        if (at == decimals)
            return 0;
    }
    if (at != end)
        return 0;
    number *= decimalsToCome;
    return negative ? -number : number;
}
} // namespace

FixNumber::FixNumber(int scale, qint64 value) : m_scale(checkedScale(scale)), m_value(value) {}

FixNumber::FixNumber(int scale, const QString &text)
    : m_scale(checkedScale(scale)), m_value(saturated(parsed(text, m_scale), m_scale))
{}

QString FixNumber::toString() const
{
    // The magnitude is taken unsigned: the lowest 64-bit integer has no positive counterpart.
    const quint64 magnitude = m_value < 0 ? quint64(0) - static_cast<quint64>(m_value) : static_cast<quint64>(m_value);
    const auto denominator = static_cast<quint64>(m_scale);
    QString text = QString::number(magnitude / denominator);
    if (m_value < 0)
        text.prepend(QLatin1Char('-'));
    if (m_scale > 1) {
        const int decimals = QString::number(m_scale).size() - 1;
        text += QLatin1Char('.') + QString::number(magnitude % denominator).rightJustified(decimals, QLatin1Char('0'));
    }
    return text;
}

FixNumber operator+(const FixNumber &left, const FixNumber &right)
{
    const int scale = std::max(left.scale(), right.scale());
    return FixNumber(scale, saturated(scaledTo(left, scale) + scaledTo(right, scale), scale));
}

FixNumber operator-(const FixNumber &left, const FixNumber &right)
{
    const int scale = std::max(left.scale(), right.scale());
    return FixNumber(scale, saturated(scaledTo(left, scale) - scaledTo(right, scale), scale));
}

int FixNumber::compare(const FixNumber &left, const FixNumber &right)
{
    const int scale = std::max(left.scale(), right.scale());
    const Wide difference = scaledTo(left, scale) - scaledTo(right, scale);
    return difference == 0 ? 0 : (difference < 0 ? -1 : 1);
}
