// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QLoggingCategory>
#include <QString>

#include <functional>

/// One line of the log with its whole context.
struct LogLine
{
    QtMsgType level;
    QString category;
    QString file;
    int line;
    /// As GCC writes it, whichever compiler it was.
    QString function;
    QString text;
};

/// Keeps what the process logs while it lives, in order. A test takes the lines that it expects; see TestCase for what
/// happens to the others.
class MessageLog
{
public:
    MessageLog();
    ~MessageLog();
    MessageLog(const MessageLog &) = delete;
    MessageLog &operator=(const MessageLog &) = delete;

    /// All lines since the last call.
    [[nodiscard]] static QList<LogLine> take();
    /// Of the lines since the last call those for which it holds; the others stay.
    [[nodiscard]] static QList<LogLine> takeIf(const std::function<bool(const LogLine &)> &holds);
    /// Forgets the lines since the last call: what was done before is not what the test is about.
    static void drop();
};

/// For messages of a failing test.
[[nodiscard]] QString toString(const LogLine &line);
