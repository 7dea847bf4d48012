// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/workdirectory.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

/// A test's files, as another program would see and change them.
namespace TestFiles {
/// A path in the work directory.
[[nodiscard]] inline QString at(const char *name)
{
    return WorkDirectory::path() + QLatin1Char('/') + QString::fromUtf8(name);
}

/// @return whether the file holds just these bytes now.
[[nodiscard]] inline bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

[[nodiscard]] inline QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

/// Access rights, or -1 when there is nothing of that name.
[[nodiscard]] inline int rights(const QString &path)
{
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? static_cast<int>(info.st_mode & 07777) : -1;
}

/// The names of all that is in a directory.
[[nodiscard]] inline QStringList entries(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}
} // namespace TestFiles
