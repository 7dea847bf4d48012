// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

namespace trelmbus {
/// The terminal bus's log category, "trelmbus".
const QLoggingCategory &LOGGER();
} // namespace trelmbus
