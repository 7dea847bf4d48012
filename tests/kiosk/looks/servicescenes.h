// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

/// The service engineer's screens, with the settings page of the parking plugin and the reasons that a terminal gives.
namespace ServiceScenes {
/// They have been saved.
[[nodiscard]] std::unique_ptr<QWidget> settings();
/// The plugin has no page for them.
[[nodiscard]] std::unique_ptr<QWidget> settingsNone();
/// The plugin's page has gone while the menu is open.
[[nodiscard]] std::unique_ptr<QWidget> settingsNotSaved();
[[nodiscard]] std::unique_ptr<QWidget> payments();
[[nodiscard]] std::unique_ptr<QWidget> paymentsNone();
[[nodiscard]] std::unique_ptr<QWidget> ledgerFault();
[[nodiscard]] std::unique_ptr<QWidget> plugin();
[[nodiscard]] std::unique_ptr<QWidget> broken();
[[nodiscard]] std::unique_ptr<QWidget> brokenLibrary();
[[nodiscard]] std::unique_ptr<QWidget> brokenLedger();
} // namespace ServiceScenes
