// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"

#include "support/testclock.h"
#include "support/workdirectory.h"

#include <algorithm>

namespace {
QStringList ignoredPaths;
QStringList ignoredWarningPaths;

bool isOfAny(const QStringList &paths, const LogLine &line)
{
    return std::any_of(paths.cbegin(), paths.cend(),
                       [&line](const QString &path) { return line.file.startsWith(path); });
}

bool isUnexpected(const LogLine &line)
{
    if (line.level == QtDebugMsg || line.level == QtInfoMsg || isOfAny(ignoredPaths, line))
        return false;
    return line.level != QtWarningMsg || !isOfAny(ignoredWarningPaths, line);
}
} // namespace

void TestCase::ignoreLogOf(const QString &path)
{
    ignoredPaths.append(path);
}

void TestCase::ignoreWarningsOf(const QString &path)
{
    ignoredWarningPaths.append(path);
}

void TestCase::ignoreLog()
{
    ignoreLogOf(QString());
}

void TestCase::init()
{
    ignoredPaths.clear();
    ignoredWarningPaths.clear();
    WorkDirectory::clear();
    m_log = std::make_unique<MessageLog>();
}

void TestCase::cleanup()
{
    TestClock::release();
    QStringList left;
    const QList<LogLine> lines = MessageLog::take();
    for (const LogLine &line : lines) {
        if (isUnexpected(line))
            left.append(toString(line));
    }
    m_log.reset();
    if (!left.isEmpty())
        QFAIL(qPrintable(QStringLiteral("unexpected in the log:\n") + left.join(QLatin1Char('\n'))));
}
