// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The memory that QSettings has of files in the whole process.
namespace SettingsMemory {
/// Makes QSettings forget every file that no object has open.
///
/// QSettings remembers the files that it has read and closed, and believes its memory while a file's size and time (to
/// the millisecond) are the same. A file damaged right after it was written would then pass for intact, a second reader
/// of a damaged one would see no error, and a change that could not be written would come back later on. The memory has
/// no switch; opening one large file pushes the others out. Where that fails, it is logged as critical once.
/// @param existingFile any file that exists: its contents are not looked at.
void forget(const QString &existingFile = QStringLiteral("/proc/self/exe"));
} // namespace SettingsMemory
