// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QUrl>
#include <QVariantMap>

namespace kiosk {
/// The program's command line.
struct Arguments
{
    /// Absolute; empty: the first plugin of the interface beside the program is taken.
    QString pluginFile;
    /// Absolute; empty: the usual one, or a temporary one for a scenario.
    QString workDir;
    /// The plugin's settings, by their keys.
    QVariantMap settings;
    /// Empty: a customer is waited for.
    QString scenario;
    /// Empty: no screenshots.
    QString shotsDir;
    /// The cash service's admin interface; empty: none.
    QUrl bench;
    bool isFullScreen = false;
    /// The plugin to load and report on, in place of being a terminal.
    QString probedPlugin;

    bool wantsHelp = false;
    QString help;
    /// Everything that is wrong; empty: nothing is.
    QStringList mistakes;

    /// @param words with the program's name first.
    [[nodiscard]] static Arguments parse(const QStringList &words);
};

/// Tells the program to load a plugin, report and end, see PluginProbe.
constexpr auto PROBE_OPTION = "probe-plugin";
} // namespace kiosk
