// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/cryptedsettingsstorage.h"
#include "parkomatdatastorage.h"
#include "support/messagelog.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QTest>

/// The journal's two files, written and read behind its back, and what it says about them.
namespace JournalFiles {
/// The record's key in either file.
inline const QString RECORD = QStringLiteral("PARKOMAT/data");

/// A time of the terminal's zone.
inline QDateTime local(int year, int month, int day, int hour = 14, int minute = 5, int second = 9)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::LocalTime);
}

/// Stores a text as a file's record, whatever it is.
inline void writeText(const QString &path, const QString &text)
{
    CryptedSettingsStorage storage(path);
    storage.setValue(RECORD, text);
}

inline QString base64(const QByteArray &json)
{
    return QString::fromLatin1(json.toBase64());
}

/// @param date as the journal writes it: "2024.03.07".
inline void writeRecord(const QString &path, const QVariant &operation, const QString &date)
{
    const QVariantMap map = {{QStringLiteral("operation"), operation}, {QStringLiteral("date"), date}};
    writeText(path, base64(QJsonDocument::fromVariant(map).toJson(QJsonDocument::Compact)));
}

/// A file's record as it is stored; empty where there is none.
inline QString storedText(const QString &path)
{
    return CryptedSettingsStorage(path).value(RECORD).toString();
}

inline QStringList texts(const QList<LogLine> &lines)
{
    QStringList list;
    for (const LogLine &line : lines)
        list.append(line.text);
    return list;
}

/// What the journal logs of a file without a record.
inline const QString ABSENT_RECORD_LINE = QStringLiteral("illegal value ");

/// Drops the two lines that reading two absent records leaves.
inline void dropLinesOfAbsentRecords()
{
    QCOMPARE(texts(MessageLog::take()), QStringList({ABSENT_RECORD_LINE, ABSENT_RECORD_LINE}));
}
} // namespace JournalFiles
