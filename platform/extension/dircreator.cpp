// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/dircreator.h"

#include "extension/extensionlog.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace {
bool isDirectory(const QByteArray &path)
{
    struct stat info = {};
    return ::stat(path.constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

/// Returns 0, or the errno value of what went wrong.
int makeDirectory(const QByteArray &path, mode_t mode)
{
    if (::mkdir(path.constData(), mode) == 0)
        // mkdir() lets the umask take rights away.
        return ::chmod(path.constData(), mode) == 0 ? 0 : errno;
    const int error = errno;
    // Another process may have made it in between: that is what was asked for.
    return error == EEXIST && isDirectory(path) ? 0 : error;
}

int makePath(const QString &path, mode_t mode)
{
    const int error = makeDirectory(QFile::encodeName(path), mode);
    const int lastSlash = path.lastIndexOf(QLatin1Char('/'));
    if (error != ENOENT || lastSlash <= 0)
        return error;
    if (const int parentError = makePath(path.left(lastSlash), DirCreator::OWNER_ONLY); parentError != 0)
        return parentError;
    return makeDirectory(QFile::encodeName(path), mode);
}
} // namespace

bool DirCreator::checkAndCreate(const QString &path, Access access)
{
    if (isDirectory(QFile::encodeName(path)))
        return true;
    const int error = path.isEmpty() ? ENOENT : makePath(QDir::cleanPath(path), static_cast<mode_t>(access));
    if (error == 0)
        return true;
    qCCritical(EXTENSION_LOG).noquote().nospace()
        << "Cannot make the directory \"" << path << "\": " << QString::fromLocal8Bit(std::strerror(error))
        << ". Check that nothing else has that name, and that its parent is a directory that this user may write to.";
    return false;
}
