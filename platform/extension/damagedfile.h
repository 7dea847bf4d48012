// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What happens to a settings file that cannot be believed.
namespace DamagedFile {
/// Logs as critical that the file is taken as empty, and what to do.
void report(const QString &fileName);

/// Gives the file a second name, under which it survives being replaced: its own with ".damaged" (then ".damaged-2",
/// …).
/// @return false, with a critical log line saying why, when it has none.
[[nodiscard]] bool keepAside(const QString &fileName);
} // namespace DamagedFile
