// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

class LocalMoment;

/// Time stamps as they go to the cash service: ISO 8601 local time without milliseconds, followed by
/// the zone's offset.
class ParkomatTimeStamp
{
public:
    /// The offset of the system's zone in standard time, as in "+03:00", also while daylight-saving time is in force;
    /// empty where it is zero, and whatever Qt calls the zone where its name has no offset form.
    /// @param now a moment in the current quarter of an hour; the text is remembered until the next one, or until the
    /// system's zone changes, because asking Qt for it costs more than all the rest of a payment.
    [[nodiscard]] static QString offset(const QDateTime &now);

    /// @a moment in local time, as in "2024-03-07T14:05:09", with @a offset behind it. An invalid moment leaves the
    /// offset alone.
    [[nodiscard]] static QString render(const QDateTime &moment, const QString &offset);
    [[nodiscard]] static QString render(const LocalMoment &moment, const QString &offset);
};
