// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace kiosk {
/// The plugin's settings as they stand in the terminal's file, for those who set them without the plugin's page.
namespace PluginSettings {
/// The six keys.
[[nodiscard]] QStringList keys();
/// What is wrong with the setting, for people; empty where nothing is.
[[nodiscard]] QString mistake(const QString &key, const QString &value);
/// Stores them as the plugin's page would: as texts, the port as a plain number. @param settings without mistakes.
/// @return why they are not stored; empty: they are.
[[nodiscard]] QString write(const QVariantMap &settings);
/// @param write writes settings, and tells nothing of whether it could. @return as above.
[[nodiscard]] QString whyNotWritten(const std::function<void()> &write);
} // namespace PluginSettings
} // namespace kiosk
