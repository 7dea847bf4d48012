// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/corelog.h"

Q_LOGGING_CATEGORY(CORE_LOG, "terminal.core")
