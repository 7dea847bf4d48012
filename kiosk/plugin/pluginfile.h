// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/pluginidentity.h"

namespace kiosk {
/// What a plugin's file tells about itself without being loaded: nothing of it runs.
namespace PluginFile {
/// Path, interface id and Qt version; the latter two are empty where the file is no plugin of Qt.
[[nodiscard]] PluginIdentity describe(const QString &path);
/// Why the file cannot be a payment plugin, for people; empty where it can.
[[nodiscard]] QString mistake(const QString &path);
/// The first file of the folder, by name, that says it has the payment plugins' interface. Where there is none it is
/// the folder itself, whose mistake() says so.
[[nodiscard]] QString find(const QString &folder);
} // namespace PluginFile
} // namespace kiosk
