// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaType>
#include <QString>

#include <type_traits>

/// An exact fixed-point number: an unscaled 64-bit integer and a denominator. All money is one of these.
///
/// Results that do not fit 64 bits saturate at the nearest end of the range and write a critical log line; nothing
/// overflows silently. There is no way in from a double on purpose: 0.1 has no exact binary value.
class FixNumber
{
public:
    /// Zero, in hundredths.
    FixNumber() = default;

    /// @a value units of one @a scale th: FixNumber(100, 15000) is 150.00.
    /// @param scale a power of ten from 1 to 1000000000; any other is logged as critical and taken as 100.
    FixNumber(int scale, qint64 value);

    /// Reads a sign (optional), digits and, optionally, "." with decimals; decimals beyond the scale are cut off, not
    /// rounded. Any other text is zero: an amount that cannot be read must not become money.
    FixNumber(int scale, const QString &text);

    template <typename Real, typename = std::enable_if_t<std::is_floating_point_v<Real>>>
    FixNumber(int scale, Real value) = delete;

    /// The denominator: 100 means hundredths.
    [[nodiscard]] int scale() const { return m_scale; }
    /// The unscaled integer: 15000 for 150.00.
    [[nodiscard]] qint64 value() const { return m_value; }
    /// With "." and as many decimals as the scale has zeros, no group separators: "150.00".
    [[nodiscard]] QString toString() const;

    /// Sum and difference take the finer of the two scales.
    friend FixNumber operator+(const FixNumber &left, const FixNumber &right);
    friend FixNumber operator-(const FixNumber &left, const FixNumber &right);

    /// Comparisons go by number, whatever the scales: 1.5 equals 1.50.
    friend bool operator==(const FixNumber &left, const FixNumber &right) { return compare(left, right) == 0; }
    friend bool operator!=(const FixNumber &left, const FixNumber &right) { return compare(left, right) != 0; }
    friend bool operator<(const FixNumber &left, const FixNumber &right) { return compare(left, right) < 0; }
    friend bool operator<=(const FixNumber &left, const FixNumber &right) { return compare(left, right) <= 0; }
    friend bool operator>(const FixNumber &left, const FixNumber &right) { return compare(left, right) > 0; }
    friend bool operator>=(const FixNumber &left, const FixNumber &right) { return compare(left, right) >= 0; }

private:
    static int compare(const FixNumber &left, const FixNumber &right);

    int m_scale = 100;
    qint64 m_value = 0;
};

Q_DECLARE_TYPEINFO(FixNumber, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(FixNumber)
