// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/guiclientlog.h"

Q_LOGGING_CATEGORY(GUICLIENT_LOG, "terminal.guiclient")
