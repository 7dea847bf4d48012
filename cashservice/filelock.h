// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cash {
/// Keeps a second service away from a database: each would answer by what it remembers, and know nothing of the other's
/// payments. Who only looks into the file is not kept away. The lock ends with the process, however that ends.
class FileLock
{
public:
    /// Locks nothing where the file cannot be opened: who opens it next says why. @throw DatabaseError where it is
    /// taken.
    explicit FileLock(const std::string &path);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

private:
    int m_descriptor = -1;
};
} // namespace cash
