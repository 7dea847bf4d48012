// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDebug>
#include <QVariant>

/// Streams a variant into a log line: a plain value as its text; a map or a list one entry a line ("key: value", or
/// "- value"), what is nested in it indented by two blanks more. Nothing is quoted and nothing is cut.
///
/// Control characters other than tabulators are written as \xNN, in keys as well as in values. So are line ends: one
/// inside a text would begin a line that looks like an entry of its own.
class logvariant
{
public:
    explicit logvariant(const QVariant &value) : m_value(value) {}

    friend QDebug operator<<(QDebug debug, const logvariant &variant);

private:
    QVariant m_value;
};
