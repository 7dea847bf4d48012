// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>

/// The terminal that the measured code finds itself on.
namespace Terminal {
/// Back to the initial state: all settings in terminal.ini, no journal files, log lines formatted and then dropped.
/// @throws std::runtime_error when the work directory cannot be brought into that state.
void reset();

/// What the card reader sends for a card with a full payload.
[[nodiscard]] QVariantMap cardMap();
} // namespace Terminal
