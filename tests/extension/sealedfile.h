// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/cryptedsettingsstorage.h"
#include "support/messagelog.h"
#include "support/testfiles.h"

#include <fcntl.h>
#include <sys/stat.h>

using TestFiles::at;
using TestFiles::contents;
using TestFiles::write;

// What the tests of sealed settings files have in common: one file in the work directory, and what may be wrong with
// it.

inline const QString KEY = QStringLiteral("GROUP/key");

inline QString sealedFile()
{
    return at("s.enc");
}

inline QString aside(const char *number = "")
{
    return sealedFile() + QStringLiteral(".damaged") + QLatin1String(number);
}

inline QSettings::Status store(const QString &path, const QString &key, const QVariant &value)
{
    CryptedSettingsStorage storage(path);
    storage.setValue(key, value);
    storage.sync();
    return storage.status();
}

inline QString stored(const QString &path, const QString &key)
{
    return CryptedSettingsStorage(path).value(key, QStringLiteral("(none)")).toString();
}

/// A sealed file with one value in it; returns its bytes.
inline QByteArray sealed(const QString &value)
{
    store(sealedFile(), KEY, value);
    return contents(sealedFile());
}

/// The text of the one line that may be there; else what the log is like, without any text from it.
inline QString onlyCritical()
{
    const QList<LogLine> lines = MessageLog::take();
    if (lines.size() != 1)
        return QStringLiteral("the log has %1 lines").arg(lines.size());
    const LogLine &line = lines.at(0);
    if (line.level != QtCriticalMsg || line.category != QLatin1String("terminal.extension"))
        return QStringLiteral("the log has a line of level %1 and category %2").arg(line.level).arg(line.category);
    return line.text;
}

/// Opens the file as one that must not be believed. Returns what was wrong about it, nothing when all is well.
inline QString complaintAboutDamagedRead(const QString &path)
{
    const CryptedSettingsStorage storage(path);
    const QString log = onlyCritical();
    if (storage.status() != QSettings::FormatError)
        return QStringLiteral("the status is %1").arg(storage.status());
    if (!storage.allKeys().isEmpty() || storage.contains(KEY))
        return QStringLiteral("it has keys");
    if (storage.value(KEY, QStringLiteral("default")).toString() != QLatin1String("default"))
        return QStringLiteral("it has a value");
    return log.contains(QLatin1Char('"') + path + QLatin1Char('"')) ? QString() : log;
}

/// Another file of the same size and age in the place of @a path.
inline bool swapUnnoticeably(const QString &path, const QByteArray &bytes)
{
    struct stat before = {};
    if (::stat(QFile::encodeName(path).constData(), &before) != 0 || before.st_size != bytes.size())
        return false;
    const timespec times[] = {before.st_atim, before.st_mtim};
    return write(path, bytes) && ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0;
}
