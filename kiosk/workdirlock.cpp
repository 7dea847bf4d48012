// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "workdirlock.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>

namespace kiosk {
namespace {
int openLockFile(const QString &path)
{
    constexpr mode_t ownerOnly = 0600;
    return ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
}
} // namespace

WorkDirLock::WorkDirLock(const QString &workDir)
    : m_file(openLockFile(workDir + QStringLiteral("/kiosk.lock"))),
      m_isTaken(m_file.isOpen() && ::flock(m_file.get(), LOCK_EX | LOCK_NB) == 0)
{}
} // namespace kiosk
