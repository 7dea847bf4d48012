// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"

#include "support/testclock.h"
#include "support/workdirectory.h"

namespace {
bool isLogIgnored = false;
}

void TestCase::ignoreLog()
{
    isLogIgnored = true;
}

void TestCase::init()
{
    isLogIgnored = false;
    WorkDirectory::clear();
    m_log = std::make_unique<MessageLog>();
}

void TestCase::cleanup()
{
    TestClock::release();
    QStringList left;
    const QList<LogLine> lines = MessageLog::take();
    for (const LogLine &line : lines) {
        if (line.level != QtDebugMsg && line.level != QtInfoMsg)
            left.append(toString(line));
    }
    m_log.reset();
    if (!isLogIgnored && !left.isEmpty())
        QFAIL(qPrintable(QStringLiteral("unexpected in the log:\n") + left.join(QLatin1Char('\n'))));
}
