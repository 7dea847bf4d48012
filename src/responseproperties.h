// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "baseparkomatresponse.h"
#include "extension/fixnumber.h"

#include <QDateTime>

/// How the texts of an answer's properties become values. A missing property is an empty text, and text that is not of
/// the wanted form gives the empty value: there are no errors.
class ResponseProperties
{
public:
    explicit ResponseProperties(const BaseParkomatResponse::Properties &properties) : m_properties(properties) {}

    /// The text as it is.
    [[nodiscard]] QString text(const QString &name) const { return m_properties.value(name); }
    /// ISO 8601; local time where no zone is given, else invalid.
    [[nodiscard]] QDateTime dateTime(const QString &name) const
    {
        return QDateTime::fromString(text(name), Qt::ISODate);
    }
    /// A whole number of hundredths, else zero: "150.00" is no amount.
    [[nodiscard]] FixNumber amount(const QString &name) const
    {
        return FixNumber(100, text(name).toLongLong(nullptr, 10));
    }
    /// A whole number other than 0; the words "true" and "false" are both false.
    [[nodiscard]] bool flag(const QString &name) const { return text(name).toInt(nullptr, 10) != 0; }

private:
    const BaseParkomatResponse::Properties &m_properties;
};
