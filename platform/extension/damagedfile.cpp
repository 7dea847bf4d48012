// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/damagedfile.h"

#include "extension/extensionlog.h"
#include "extension/storagekey.h"

#include <QFile>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace {
bool isSameFile(const QByteArray &left, const QByteArray &right)
{
    struct stat leftInfo = {};
    struct stat rightInfo = {};
    return ::stat(left.constData(), &leftInfo) == 0 && ::stat(right.constData(), &rightInfo) == 0 &&
           leftInfo.st_ino == rightInfo.st_ino && leftInfo.st_dev == rightInfo.st_dev;
}
} // namespace

void DamagedFile::report(const QString &fileName)
{
    qCCritical(EXTENSION_LOG).noquote().nospace()
        << "The sealed settings file \"" << fileName << "\" is damaged, or was sealed with another key than \""
        << StorageKey::path() << "\". It is taken as empty. Put it or the key back from a backup; if something is "
        << "written first, it is kept aside as \"" << fileName << ".damaged\".";
}

bool DamagedFile::keepAside(const QString &fileName)
{
    const QByteArray path = QFile::encodeName(fileName);
    QByteArray aside = path + ".damaged";
    for (int n = 2; ::link(path.constData(), aside.constData()) != 0; ++n) {
        if (errno != EEXIST) {
            qCCritical(EXTENSION_LOG).noquote().nospace()
                << "Nothing is written to \"" << fileName << "\": it is damaged, and cannot be kept aside as \""
                << QFile::decodeName(aside) << "\": " << QString::fromLocal8Bit(std::strerror(errno))
                << ". Move it away by hand, or put it back from a backup.";
            return false;
        }
        // Kept already, by an earlier attempt to write that then failed.
        if (isSameFile(path, aside))
            return true;
        aside = path + ".damaged-" + QByteArray::number(n);
    }
    qCWarning(EXTENSION_LOG).noquote().nospace()
        << "The damaged settings file \"" << fileName << "\" is kept as \"" << QFile::decodeName(aside) << "\".";
    return true;
}
