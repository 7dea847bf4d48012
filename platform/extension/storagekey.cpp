// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/storagekey.h"

#include "extension/dircreator.h"
#include "extension/extensionlog.h"
#include "extension/filedescriptor.h"
#include "extension/initconfig.h"

#include <QFile>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sodium.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr mode_t OWNER_READS_AND_WRITES = S_IRUSR | S_IWUSR;

std::nullopt_t refuse(const QString &what, const char *whatToDo)
{
    qCCritical(EXTENSION_LOG).noquote().nospace()
        << "The storage key \"" << StorageKey::path() << "\" " << what << ". " << whatToDo;
    return std::nullopt;
}

QString reason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

FileDescriptor openForReading(const QByteArray &path)
{
    // Not to wait for a writer, should it be a pipe.
    return FileDescriptor(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

/// Returns 0 or an errno value.
int writeNewKey(int file)
{
    std::array<unsigned char, StorageKey::SIZE> bytes = {};
    randombytes_buf(bytes.data(), bytes.size());
    // On disk before it gets its name: a power cut must not leave a key that is only half there.
    // A disk that takes a part only sets no errno.
    errno = EIO;
    const bool isWritten =
        ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) && ::fsync(file) == 0;
    const int error = isWritten ? 0 : errno;
    sodium_memzero(bytes.data(), bytes.size());
    return error;
}

struct Failure
{
    QString what;
    const char *whatToDo;
};

std::optional<Failure> failedToMake(int error)
{
    return Failure{QStringLiteral("cannot be made: ") + reason(error),
                   "Check that this user may write to the work directory, and that its disk is not full."};
}

/// Gives the file @a unnamed its name unless that is taken.
std::optional<Failure> nameKey(const QByteArray &unnamed, const QByteArray &path)
{
    // A link, unlike a rename, never replaces a key that another process has put there and already uses.
    if (::link(unnamed.constData(), path.constData()) == 0 || errno == EEXIST)
        return std::nullopt;
    if (errno == EPERM || errno == EOPNOTSUPP)
        return Failure{
            QStringLiteral("cannot be made: the file system that it lies on has no hard links (%1)").arg(reason(errno)),
            "Move the work directory to a file system that has them, such as ext4."};
    return failedToMake(errno);
}

/// Puts a fresh key under @a path unless another process was first. Returns what went wrong.
std::optional<Failure> createKey(const QByteArray &path)
{
    QByteArray unnamed = path + ".XXXXXX";
    const FileDescriptor file(::mkstemp(unnamed.data()));
    if (!file.isOpen())
        return failedToMake(errno);
    const int error = writeNewKey(file.get());
    const std::optional<Failure> failure = error == 0 ? nameKey(unnamed, path) : failedToMake(error);
    ::unlink(unnamed.constData());
    // The name, too, must outlast a power cut: what is sealed from now on can be opened with this key alone.
    const FileDescriptor directory = openForReading(path.left(path.lastIndexOf('/') + 1));
    ::fsync(directory.get());
    return failure;
}

/// Returns how many bytes were read, or -1: then errno says why.
ssize_t readBytes(int file, std::array<unsigned char, StorageKey::SIZE> &bytes)
{
    // One byte more than a key has, so that a longer file is noticed.
    std::array<unsigned char, StorageKey::SIZE + 1> read = {};
    const ssize_t size = ::read(file, read.data(), read.size());
    std::memcpy(bytes.data(), read.data(), bytes.size());
    sodium_memzero(read.data(), read.size());
    return size;
}

void closeToOthers(int file)
{
    struct stat info = {};
    if (::fstat(file, &info) != 0 || (info.st_mode & (S_IRWXG | S_IRWXO)) == 0)
        return;
    const bool isClosed = ::fchmod(file, OWNER_READS_AND_WRITES) == 0;
    qCWarning(EXTENSION_LOG).noquote().nospace()
        << "The storage key \"" << StorageKey::path() << "\" was open to other users; "
        << (isClosed ? "now only its owner can read it. Who could read it before may still know it."
                     : "that could not be mended. Give it mode 0600.");
}

std::optional<StorageKey> readKey(int file)
{
    std::array<unsigned char, StorageKey::SIZE> bytes = {};
    const ssize_t size = readBytes(file, bytes);
    if (size < 0)
        return refuse(QStringLiteral("cannot be read: ") + reason(errno), "Put it back from a backup.");
    if (size != static_cast<ssize_t>(StorageKey::SIZE))
        return refuse(QStringLiteral("is damaged: it has not the 32 bytes of a key"),
                      "Put it back from a backup, or remove it to start with a new one; files sealed with the old one "
                      "will then be kept aside.");
    closeToOthers(file);
    StorageKey key(bytes);
    sodium_memzero(bytes.data(), bytes.size());
    return key;
}
} // namespace

StorageKey::~StorageKey()
{
    sodium_memzero(m_bytes.data(), m_bytes.size());
}

QString StorageKey::path()
{
    return InitConfig::workDir() + QStringLiteral("/storage.key");
}

std::optional<StorageKey> StorageKey::obtain()
{
    if (sodium_init() < 0)
        return refuse(QStringLiteral("cannot be used: the encryption library found no source of randomness"),
                      "Check that /dev/urandom can be read.");
    const QByteArray path = QFile::encodeName(StorageKey::path());
    FileDescriptor file = openForReading(path);
    if (!file.isOpen() && (errno == ENOENT || errno == ENOTDIR)) {
        // It says itself why it could not.
        if (!DirCreator::checkAndCreate(InitConfig::workDir(), DirCreator::OWNER_ONLY))
            return std::nullopt;
        if (const auto failure = createKey(path))
            return refuse(failure->what, failure->whatToDo);
        file = openForReading(path);
        // The name is taken, but leads nowhere.
        if (!file.isOpen() && errno == ENOENT)
            return refuse(QStringLiteral("is a symbolic link to a file that does not exist"),
                          "Put the key back where the link leads, or remove the link to start with a new key; files "
                          "sealed with the old one will then be kept aside.");
    }
    if (!file.isOpen())
        return refuse(QStringLiteral("cannot be read: ") + reason(errno),
                      "It must belong to the user that runs the terminal.");
    return readKey(file.get());
}
