// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/filedescriptor.h"

#include <QString>

namespace kiosk {
/// Keeps a second terminal away from a work directory. The lock ends with the process, however that ends.
class WorkDirLock
{
public:
    explicit WorkDirLock(const QString &workDir);

    [[nodiscard]] bool isTaken() const { return m_isTaken; }

private:
    FileDescriptor m_file;
    bool m_isTaken;
};
} // namespace kiosk
