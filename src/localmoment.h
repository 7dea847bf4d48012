// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <ctime>

/// The wall clock's reading in local time, to the second: for the journal's date, session identifiers and requests.
/// Qt's own reading costs three times as much, since it works out from local time which moment that is.
class LocalMoment
{
public:
    /// Reads the clock.
    [[nodiscard]] static LocalMoment now();

    [[nodiscard]] QDate date() const { return QDate(m_parts.tm_year + 1900, m_parts.tm_mon + 1, m_parts.tm_mday); }
    [[nodiscard]] QTime time() const { return QTime(m_parts.tm_hour, m_parts.tm_min, m_parts.tm_sec); }
    [[nodiscard]] QDateTime utc() const { return QDateTime::fromSecsSinceEpoch(m_seconds, Qt::UTC); }

    /// Three digits, from "001".
    [[nodiscard]] QString dayOfYear() const;
    /// The year's last two digits.
    [[nodiscard]] QString shortYear() const;
    /// "hhmmss".
    [[nodiscard]] QString shortTime() const;

private:
    std::time_t m_seconds = 0;
    std::tm m_parts = {};
};
