// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/settingsmemory.h"

#include "extension/extensionlog.h"

#include <QSettings>

#include <atomic>

namespace {
constexpr int KEYS_THAT_FILL_THE_CACHE = 360;

/// Fills a map with as many keys as make its file take up the whole of QSettings' cache.
bool readFiller(QIODevice &, QSettings::SettingsMap &map)
{
    for (int i = 0; i < KEYS_THAT_FILL_THE_CACHE; ++i)
        map.insert(QString::number(i), 0);
    return true;
}

void reportOnce(const QString &existingFile)
{
    static std::atomic_flag isReported = ATOMIC_FLAG_INIT;
    if (isReported.test_and_set())
        return;
    qCCritical(EXTENSION_LOG).noquote().nospace()
        << "Sealed settings may be taken from memory although their file has changed: \"" << existingFile
        << "\" cannot be opened. Check that /proc is mounted, then start the terminal again.";
}
} // namespace

void SettingsMemory::forget(const QString &existingFile)
{
    static const QSettings::Format fillerFormat = QSettings::registerFormat(
        QStringLiteral("filler"), readFiller, [](QIODevice &, const QSettings::SettingsMap &) { return false; });
    const QSettings filler(existingFile, fillerFormat);
    // QSettings takes a missing file for an empty one, which pushes nothing out.
    if (!filler.contains(QString::number(KEYS_THAT_FILL_THE_CACHE - 1)))
        reportOnce(existingFile);
}
