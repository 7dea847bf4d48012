// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <chrono>
#include <memory>

namespace kiosk {
class Ledger;
class PluginHost;
class StartWindow;
struct PluginProbe;

/// The way to a terminal. What takes time is waited for with events handled, so that the window is up, and what fails
/// and may be mended is tried again.
class Startup : public QObject
{
    Q_OBJECT

public:
    /// @param window shows what is going on; it outlives this.
    explicit Startup(StartWindow &window, QObject *parent = nullptr);

    /// Opens the ledger. While it cannot be opened the window says why, and it is tried again.
    /// @return null: the program is to end.
    [[nodiscard]] std::unique_ptr<Ledger> openLedger(const QString &path,
                                                     std::chrono::milliseconds retryAfter = std::chrono::seconds(10));
    /// Loads the plugin, which may hang for as long as the probe's patience. brokenReason() tells whether it worked.
    /// @return false: the program is to end.
    [[nodiscard]] bool load(PluginHost &plugin, const PluginProbe &probe);

public Q_SLOTS:
    /// The program is to end: what is waited for is left.
    void end();

private:
    StartWindow &m_window;
    bool m_isEnding = false;
};
} // namespace kiosk
