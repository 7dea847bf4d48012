// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/openresources.h"

#include "support/waiting.h"

#include <QDir>
#include <QFileInfo>

namespace {
/// The names in a folder of /proc: numbers.
QStringList numbers(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}
} // namespace

QSet<QString> OpenResources::open()
{
    QSet<QString> all;
    const QString descriptors = QStringLiteral("/proc/self/fd/");
    for (const QString &number : numbers(descriptors)) {
        // Gone already: the one through which the folder was read, for instance.
        const QString target = QFileInfo(descriptors + number).symLinkTarget();
        if (!target.isEmpty())
            all.insert(QStringLiteral("descriptor %1 %2").arg(number, target.section(QLatin1Char('/'), -1)));
    }
    for (const QString &number : numbers(QStringLiteral("/proc/self/task")))
        all.insert(QStringLiteral("thread ") + number);
    return all;
}

QStringList OpenResources::added() const
{
    QStringList added = (open() - m_then).values();
    added.sort();
    return added;
}

QStringList OpenResources::left() const
{
    // Not looked at once more for the result: something may have come for a moment.
    QStringList left;
    waitUntil([&] {
        left = added();
        return left.isEmpty();
    });
    return left;
}
