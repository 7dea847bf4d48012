// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "localmoment.h"

#include "decimals.h"

#include <time.h>

LocalMoment LocalMoment::now()
{
    LocalMoment moment;
    moment.m_seconds = static_cast<std::time_t>(QDateTime::currentSecsSinceEpoch());
    // Without it a change of the zone would not be noticed.
    ::tzset();
    ::localtime_r(&moment.m_seconds, &moment.m_parts);
    return moment;
}

QString LocalMoment::dayOfYear() const
{
    QString text;
    Decimals::append(text, m_parts.tm_yday + 1, 3);
    return text;
}

QString LocalMoment::shortYear() const
{
    QString text;
    Decimals::append(text, m_parts.tm_year % 100, 2);
    return text;
}

QString LocalMoment::shortTime() const
{
    QString text;
    Decimals::append(text, m_parts.tm_hour, 2);
    Decimals::append(text, m_parts.tm_min, 2);
    Decimals::append(text, m_parts.tm_sec, 2);
    return text;
}
