// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// The extension library's own category, "terminal.extension".
Q_DECLARE_LOGGING_CATEGORY(EXTENSION_LOG)
