// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <memory>

/// The service engineer's screens, with the settings page of the parking plugin and the reasons that a terminal gives.
namespace ServiceScenes {
[[nodiscard]] std::unique_ptr<QWidget> settings();
[[nodiscard]] std::unique_ptr<QWidget> payments();
[[nodiscard]] std::unique_ptr<QWidget> paymentsNone();
[[nodiscard]] std::unique_ptr<QWidget> ledgerFault();
[[nodiscard]] std::unique_ptr<QWidget> plugin();
[[nodiscard]] std::unique_ptr<QWidget> broken();
[[nodiscard]] std::unique_ptr<QWidget> brokenLibrary();
} // namespace ServiceScenes
