// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/cryptedsettingsstorage.h"

#include "extension/damagedfile.h"
#include "extension/extensionlog.h"
#include "extension/sealedbox.h"
#include "extension/settingsmapcodec.h"
#include "extension/settingsmemory.h"
#include "extension/storagekey.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <atomic>

#include <sys/stat.h>

namespace {
// Far beyond any settings; a larger file is not ours, and is not read into memory.
constexpr qint64 LARGEST_FILE = 16 * 1024 * 1024;

QString fileNameOf(QIODevice &device)
{
    const auto *file = qobject_cast<QFileDevice *>(&device);
    return file == nullptr ? QString() : file->fileName();
}

std::optional<QSettings::SettingsMap> unsealed(QIODevice &device, const StorageKey &key)
{
    if (device.size() > LARGEST_FILE)
        return std::nullopt;
    const std::optional<QByteArray> content = SealedBox::open(device.readAll(), key);
    return content ? SettingsMapCodec::decode(*content) : std::nullopt;
}

bool readSealed(QIODevice &device, QSettings::SettingsMap &map)
{
    const std::optional<StorageKey> key = StorageKey::obtain();
    // Without a key, whose own line says what to do, nothing is known about the file.
    if (!key)
        return false;
    const std::optional<QSettings::SettingsMap> read = unsealed(device, *key);
    if (!read) {
        DamagedFile::report(fileNameOf(device));
        return false;
    }
    map = *read;
    return true;
}

/// QSettings tells two versions of a file apart by size and modification time in milliseconds, so each version must be
/// later than the one before; otherwise a writer could miss what another process wrote just now, and undo it.
bool setLaterThan(const QFileInfo &previous, QFileDevice &file)
{
    if (!file.flush())
        return false;
    const QDateTime earliest = previous.exists() ? previous.lastModified().addMSecs(1) : QDateTime();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    return file.setFileTime(earliest.isValid() ? std::max(now, earliest) : now, QFileDevice::FileModificationTime);
}

/// Whether the file with this name may be replaced: it does not exist, is intact, or is kept under another name.
bool isFreeToReplace(const QString &fileName, const StorageKey &key)
{
    QFile file(fileName);
    return !file.exists() || (file.open(QIODevice::ReadOnly) && unsealed(file, key)) ||
           DamagedFile::keepAside(fileName);
}

bool writeSealed(QIODevice &device, const QSettings::SettingsMap &map)
{
    const std::optional<StorageKey> key = StorageKey::obtain();
    // The device is the new file; the name still leads to the one that it will replace.
    auto *file = qobject_cast<QFileDevice *>(&device);
    if (!key || file == nullptr || !isFreeToReplace(file->fileName(), *key))
        return false;
    const QFileInfo replaced(file->fileName());
    if (!replaced.exists())
        file->setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QByteArray box = SealedBox::seal(SettingsMapCodec::encode(map), *key);
    return file->write(box) == box.size() && setLaterThan(replaced, *file);
}

QSettings::Format sealedFormat()
{
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("enc"), readSealed, writeSealed, Qt::CaseSensitive);
    return format;
}

// Set when QSettings may remember changes that were never written.
std::atomic<bool> hasFailedFile = false;

/// What is wrong with the file that QSettings would not notice, or would wait for. It is about to be read afresh.
QSettings::Status lookAt(const QString &path)
{
    struct stat info = {};
    const bool exists = ::stat(QFile::encodeName(path).constData(), &info) == 0;
    if (hasFailedFile.exchange(false) || exists)
        SettingsMemory::forget();
    if (!exists || S_ISDIR(info.st_mode))
        return QSettings::NoError;
    if (!S_ISREG(info.st_mode))
        return QSettings::AccessError;
    return info.st_size == 0 ? QSettings::FormatError : QSettings::NoError;
}

/// Below a pipe, socket or device nothing can exist, so that QSettings opens nothing.
QString pathToOpen(const QString &path, QSettings::Status seen)
{
    return seen == QSettings::AccessError ? path + QStringLiteral("/settings") : path;
}

/// Writes what QSettings has not yet written, if anything.
void writePending(QSettings &settings)
{
    // With its first change QSettings sends itself an event; to have it delivered is to write, and costs next to
    // nothing when there is none. It is delivered in the object's own thread only, and by an application.
    if (QCoreApplication::instance() != nullptr && settings.thread() == QThread::currentThread())
        QCoreApplication::sendPostedEvents(&settings, QEvent::UpdateRequest);
    else
        settings.sync();
}
} // namespace

CryptedSettingsStorage::CryptedSettingsStorage(const QString &path, QObject *parent)
    : CryptedSettingsStorage(path, lookAt(path), parent)
{}

CryptedSettingsStorage::CryptedSettingsStorage(const QString &path, Status seen, QObject *parent)
    : QSettings(pathToOpen(path, seen), sealedFormat(), parent), m_seen(seen)
{
    if (m_seen == FormatError)
        DamagedFile::report(path);
    if (m_seen == AccessError)
        qCCritical(EXTENSION_LOG).noquote().nospace()
            << "In place of the sealed settings file \"" << path
            << "\" there is a pipe, a socket or a device: it is taken as empty, and changes to it are lost. Remove it; "
               "the file is made when something is written next.";
}

CryptedSettingsStorage::~CryptedSettingsStorage()
{
    // Only now is it certain that all is written, or never will be, and QSettings keeps it to itself.
    if (QSettings::status() == NoError)
        writePending(*this);
    if (QSettings::status() != NoError)
        hasFailedFile = true;
    // What stands in the file's place was reported when it was seen.
    if (QSettings::status() == AccessError && m_seen != AccessError)
        qCCritical(EXTENSION_LOG).noquote().nospace()
            << "The sealed settings file \"" << fileName()
            << "\" could not be read or written: it is taken as empty, and changes to it are lost. Check that it is a "
               "file, and that this user may write to it and to its directory.";
}

QSettings::Status CryptedSettingsStorage::status() const
{
    const Status status = QSettings::status();
    return status == NoError ? m_seen : status;
}
