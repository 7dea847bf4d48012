// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosklog.h"

Q_LOGGING_CATEGORY(KIOSK_LOG, "terminal.kiosk")
