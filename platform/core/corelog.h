// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// The core library's own category, "terminal.core".
Q_DECLARE_LOGGING_CATEGORY(CORE_LOG)
