// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/extensionlog.h"

Q_LOGGING_CATEGORY(EXTENSION_LOG, "terminal.extension")
