// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inifile.h"

#include "core/corelog.h"
#include "core/inidocument.h"
#include "extension/dircreator.h"
#include "extension/filedescriptor.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

namespace {
// Far beyond any settings; a larger file is not ours, and is not read into memory.
constexpr off_t LARGEST_FILE = off_t{16} * 1024 * 1024;

// A writer is done within milliseconds; who waits longer waits for one that hangs, and a terminal must not hang with
// it.
constexpr int LONGEST_WAIT_MS = 5000;
// A lock file without its owner's name was left by a writer that died while making it.
constexpr int NAMELESS_LOCK_IS_STALE_AFTER_MS = 1000;

struct Contents
{
    QByteArray bytes;
    /// Why they could not be read. That there is no file is no failure: it has no settings.
    QString failure;
};

Contents failed(int error)
{
    return {{}, error == ENOENT ? QString() : QString::fromLocal8Bit(std::strerror(error))};
}

Contents readBytes(int file, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    int done = 0;
    while (done < size) {
        const ssize_t got = ::read(file, bytes.data() + done, static_cast<std::size_t>(size - done));
        if (got == 0)
            break;
        if (got > 0)
            done += static_cast<int>(got);
        else if (errno != EINTR)
            return failed(errno);
    }
    bytes.truncate(done);
    return {bytes, {}};
}

Contents readWhole(const QByteArray &path)
{
    // Not to wait for a writer, should it be a pipe.
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info = {};
    if (!file.isOpen() || ::fstat(file.get(), &info) != 0)
        return failed(errno);
    if (!S_ISREG(info.st_mode))
        return {{}, QStringLiteral("it is no regular file")};
    if (info.st_size > LARGEST_FILE)
        return {{}, QStringLiteral("it is larger than 16 MiB")};
    return readBytes(file.get(), static_cast<int>(info.st_size));
}

/// QLockFile's own wait tries ever more rarely, so that among busy writers one may never get its turn.
bool waitFor(QLockFile &lock)
{
    constexpr int tryEachMs = 10;
    const QDeadlineTimer deadline(LONGEST_WAIT_MS);
    while (!lock.tryLock(tryEachMs)) {
        if (lock.error() != QLockFile::LockFailedError || deadline.hasExpired())
            return false;
    }
    return true;
}

bool refuse(const QString &path, const QString &why)
{
    qCCritical(CORE_LOG).noquote().nospace()
        << "A setting was not written to \"" << path << "\", which is as it was: " << why
        << ". Check that it is a file of settings, and that this user may write to it and to its directory.";
    return false;
}

bool replaceFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    return refuse(path, file.errorString());
}
} // namespace

IniFile::IniFile(const QString &path) : IniFile(QFile::encodeName(path)) {}

std::optional<QString> IniFile::value(const QString &group, const QString &key) const
{
    const Contents contents = readWhole(m_path);
    if (!contents.failure.isEmpty())
        qCCritical(CORE_LOG).noquote().nospace() << "The settings in \"" << QFile::decodeName(m_path)
                                                 << "\" cannot be read, defaults are used: " << contents.failure
                                                 << ". Check that it is a file of settings that this user may read.";
    return IniDocument(contents.bytes).value(group, key);
}

bool IniFile::setValue(const QString &group, const QString &key, const QString &value)
{
    const QString path = QFile::decodeName(m_path);
    if (!DirCreator::checkAndCreate(QFileInfo(path).absolutePath(), DirCreator::OWNER_ONLY))
        return refuse(path, QStringLiteral("its directory is missing"));
    const QString lockPath = path + QStringLiteral(".lock");
    QLockFile lock(lockPath);
    lock.setStaleLockTime(NAMELESS_LOCK_IS_STALE_AFTER_MS);
    if (!waitFor(lock))
        return refuse(path, lock.error() == QLockFile::LockFailedError
                                ? QStringLiteral("another program holds \"%1\"").arg(lockPath)
                                : QStringLiteral("\"%1\" cannot be made").arg(lockPath));
    // Read under the lock: whoever had it before may have written.
    const Contents contents = readWhole(m_path);
    if (!contents.failure.isEmpty())
        return refuse(path, contents.failure);
    IniDocument document(contents.bytes);
    document.setValue(group, key, value);
    return replaceFile(path, document.bytes());
}
