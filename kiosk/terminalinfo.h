// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"

namespace kiosk {
/// The terminal's name, address and telephone number, from the group "TERMINAL" of its settings.
[[nodiscard]] TrelmInfo terminalInfo();
} // namespace kiosk
