// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "filelock.h"

#include "database.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace cash {
FileLock::FileLock(const std::string &path)
{
    if (path == ":memory:")
        return;
    m_descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    // SQLite's own locks are of another kind and do not meet this one.
    if (m_descriptor >= 0 && flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        close(m_descriptor);
        throw DatabaseError("another cash service uses it");
    }
}

FileLock::~FileLock()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}
} // namespace cash
