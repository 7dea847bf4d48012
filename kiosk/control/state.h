// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>

namespace kiosk {
struct Stage;

/// What is on the terminal's screen, what was paid in, and what became of the latest payment. Amounts are texts in
/// currency units ("150.00").
[[nodiscard]] QJsonObject stateOf(const Stage &stage);
} // namespace kiosk
