// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/messagelog.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

namespace {
// Not Qt's: what that one guards, the thread sanitizer takes for unguarded.
std::mutex mutex;
QList<LogLine> lines;
QtMessageHandler previousHandler = nullptr;

/// Compilers write pointers and references in their own ways: "T *f(const U &)" becomes "T* f(const U&)".
QString withBlanksBehindSigns(QString function)
{
    static const QRegularExpression blankBefore(QStringLiteral(" ([*&])"));
    static const QRegularExpression noBlankBehind(QStringLiteral("([*&])(\\w)"));
    return function.replace(blankBefore, QStringLiteral("\\1")).replace(noBlankBehind, QStringLiteral("\\1 \\2"));
}

void keep(QtMsgType level, const QMessageLogContext &context, const QString &text)
{
    // Nobody will take it: the program ends with it.
    if (level == QtFatalMsg)
        previousHandler(level, context, text);
    const std::lock_guard lock(mutex);
    lines.append({level, QString::fromUtf8(context.category), QString::fromUtf8(context.file), context.line,
                  withBlanksBehindSigns(QString::fromUtf8(context.function)), text});
}
} // namespace

MessageLog::MessageLog()
{
    previousHandler = qInstallMessageHandler(keep);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(previousHandler);
    const std::lock_guard lock(mutex);
    lines.clear();
}

QList<LogLine> MessageLog::take()
{
    const std::lock_guard lock(mutex);
    return std::exchange(lines, {});
}

QList<LogLine> MessageLog::takeIf(const std::function<bool(const LogLine &)> &holds)
{
    const std::lock_guard lock(mutex);
    const auto taken = std::stable_partition(lines.begin(), lines.end(), std::not_fn(holds));
    QList<LogLine> all;
    std::move(taken, lines.end(), std::back_inserter(all));
    lines.erase(taken, lines.end());
    return all;
}

void MessageLog::drop()
{
    const std::lock_guard lock(mutex);
    lines.clear();
}

QString toString(const LogLine &line)
{
    static const char *const levels[] = {"debug", "warning", "critical", "fatal", "info"};
    return QStringLiteral("%1 [%2] %3:%4 %5\n    %6")
        .arg(QLatin1String(levels[line.level]), line.category, line.file)
        .arg(line.line)
        .arg(line.function, line.text);
}
