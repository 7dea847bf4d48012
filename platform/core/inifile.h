// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// An ini file that people edit and several processes write.
///
/// Nothing is remembered between calls. QSettings keeps what it has read and misses a change of equal length within the
/// same millisecond; besides, reading this way costs a tenth, and settings are read several times a payment.
class IniFile
{
public:
    explicit IniFile(const QString &path);
    /// @param encodedPath as the system's calls take it.
    explicit IniFile(const QByteArray &encodedPath) : m_path(encodedPath) {}

    /// @return nothing when there is no such key (or no file, or one that cannot be read: that is logged as critical).
    [[nodiscard]] std::optional<QString> value(const QString &group, const QString &key) const;

    /// Replaces the file as a whole, after writers of other processes had their turn; it waits for them for at most 5
    /// s.
    /// @return false, with a critical log line saying why, when it was not written; the file is then as it was.
    bool setValue(const QString &group, const QString &key, const QString &value);

private:
    QByteArray m_path;
};
