// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDebug>

/// Streams bytes into a log line as text in a named encoding, all of them: a zero byte does not end the text.
///
/// Control characters other than tabulators and line ends are written as \xNN, so that what came over a wire cannot
/// steer the terminal on which the log is read. An encoding that is not known is replaced by Latin-1.
class logbinary
{
public:
    /// @param encoding a name as in an XML declaration or a MIME header: "UTF-8", "windows-1251".
    logbinary(const QByteArray &bytes, const QByteArray &encoding) : m_bytes(bytes), m_encoding(encoding) {}

    friend QDebug operator<<(QDebug debug, const logbinary &binary);

private:
    QByteArray m_bytes;
    QByteArray m_encoding;
};
