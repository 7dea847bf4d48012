// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The text of an ini file: "[group]" and "key=value" lines, in the dialect of QSettings::IniFormat for text values,
/// and in UTF-8 as an editor saves it.
///
/// Of two lines with the same key the later one counts. Lines that mean nothing, and comments (";" or "#" at the
/// start), stay where they are when a value is set.
class IniDocument
{
public:
    explicit IniDocument(const QByteArray &bytes) : m_bytes(bytes) {}

    [[nodiscard]] QByteArray bytes() const { return m_bytes; }

    /// @return nothing when there is no such key. A group may be empty, and either name may contain slashes.
    [[nodiscard]] std::optional<QString> value(const QString &group, const QString &key) const;
    void setValue(const QString &group, const QString &key, const QString &value);

private:
    QByteArray m_bytes;
};
