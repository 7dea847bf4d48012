// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/logger.h"

namespace trelmbus {
Q_LOGGING_CATEGORY(LOGGER, "trelmbus")
} // namespace trelmbus
