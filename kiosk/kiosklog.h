// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// The terminal's own log category, "terminal.kiosk".
Q_DECLARE_LOGGING_CATEGORY(KIOSK_LOG)
