// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDebug>
#include <QStringList>

/// Streams a list of texts into a log line, one entry a line, unquoted, each in full length.
///
/// Control characters other than tabulators and line ends are written as \xNN, as logbinary does. A line end inside an
/// entry stays one: lists are made of a text by splitting it at its line ends, and print that text.
class loglist
{
public:
    explicit loglist(const QStringList &list) : m_list(list) {}

    friend QDebug operator<<(QDebug debug, const loglist &entries);

private:
    QStringList m_list;
};
