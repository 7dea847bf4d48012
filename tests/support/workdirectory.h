// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Every test process works in a fresh directory that is gone when it ends, whatever TERMINAL_WORK_DIR was: it is set
/// up while this library is loaded, so before anything asks for it. Child processes share their parent's.
namespace WorkDirectory {
[[nodiscard]] QString path();
/// Removes everything in it.
void clear();
} // namespace WorkDirectory
