// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"

#include "support/testclock.h"
#include "support/workdirectory.h"

#include <algorithm>

namespace {
QStringList ignoredPaths;

bool isUnexpected(const LogLine &line)
{
    return line.level != QtDebugMsg && line.level != QtInfoMsg &&
           std::none_of(ignoredPaths.cbegin(), ignoredPaths.cend(),
                        [&line](const QString &path) { return line.file.startsWith(path); });
}
} // namespace

void TestCase::ignoreLogOf(const QString &path)
{
    ignoredPaths.append(path);
}

void TestCase::ignoreLog()
{
    ignoreLogOf(QString());
}

void TestCase::init()
{
    ignoredPaths.clear();
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
