// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

/// How often the process has had a file written through to its disk: fsync() and fdatasync() stand in for the C
/// library's, so that SQLite's are counted too. Each still does what it is for.
namespace DiskSyncs {
[[nodiscard]] int count();
}
