// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomattimestamp.h"

#include "decimals.h"
#include "localmoment.h"

#include <QTimeZone>

#include <mutex>

namespace {
// Of years that ISO 8601 can write.
constexpr int LAST_YEAR = 9999;
constexpr int LENGTH = 19;
constexpr qint64 QUARTER_OF_AN_HOUR_IN_MS = qint64{15} * 60 * 1000;

QString offsetOfSystemZone()
{
    QString text = QTimeZone::systemTimeZone().displayName(QTimeZone::StandardTime, QTimeZone::OffsetName);
    text.remove(QStringLiteral("UTC"));
    // Qt names a zero offset like any other; on the wire it is nothing.
    return text == QLatin1String("+00:00") ? QString() : text;
}

/// As Qt::ISODate does, at a tenth of the cost.
QString rendered(const QDate &date, const QTime &time, const QString &offset)
{
    QString text;
    text.reserve(LENGTH + offset.size());
    Decimals::append(text, date.year(), 4);
    text += QLatin1Char('-');
    Decimals::append(text, date.month(), 2);
    text += QLatin1Char('-');
    Decimals::append(text, date.day(), 2);
    text += QLatin1Char('T');
    Decimals::append(text, time.hour(), 2);
    text += QLatin1Char(':');
    Decimals::append(text, time.minute(), 2);
    text += QLatin1Char(':');
    Decimals::append(text, time.second(), 2);
    return text += offset;
}
} // namespace

QString ParkomatTimeStamp::offset(const QDateTime &now)
{
    // Not Qt's: what that one guards, the thread sanitizer takes for unguarded.
    static std::mutex mutex;
    static QByteArray rememberedZone;
    static qint64 rememberedQuarter = -1;
    static QString text;

    const std::lock_guard lock(mutex);
    const QByteArray zone = QTimeZone::systemTimeZoneId();
    const qint64 quarter = now.toMSecsSinceEpoch() / QUARTER_OF_AN_HOUR_IN_MS;
    if (quarter != rememberedQuarter || zone != rememberedZone) {
        text = offsetOfSystemZone();
        rememberedZone = zone;
        rememberedQuarter = quarter;
    }
    return text;
}

QString ParkomatTimeStamp::render(const QDateTime &moment, const QString &offset)
{
    const QDateTime local = moment.toLocalTime();
    const int year = local.date().year();
    // What has no such form is left to Qt.
    if (!local.isValid() || year < 0 || year > LAST_YEAR)
        return local.toString(Qt::ISODate) + offset;
    return rendered(local.date(), local.time(), offset);
}

QString ParkomatTimeStamp::render(const LocalMoment &moment, const QString &offset)
{
    return rendered(moment.date(), moment.time(), offset);
}
