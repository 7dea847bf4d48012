// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

namespace kiosk {
/// Loads a plugin once in a process of its own: a plugin that dies or hangs while it is loaded then takes that process
/// with it, and not the terminal.
struct PluginProbe
{
    /// What is run to have runInChild() called with the plugin's path, which comes behind the arguments.
    QString program;
    QStringList arguments;
    std::chrono::milliseconds patience = std::chrono::seconds(30);

    /// Returns when the process is through; events are handled meanwhile. @return why the plugin cannot be used, for
    /// people; empty where it can.
    [[nodiscard]] QString run(const QString &pluginFile) const;

    /// The child's part: loads the plugin, makes its object, and reports on standard output.
    /// @return the exit status.
    [[nodiscard]] static int runInChild(const QString &pluginFile);
};
} // namespace kiosk
