// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// The GUI client library's own category, "terminal.guiclient".
Q_DECLARE_LOGGING_CATEGORY(GUICLIENT_LOG)
