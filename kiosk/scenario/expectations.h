// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/step.h"

#include <QWidget>

namespace kiosk {
class Terminal;

/// @return what is expected and is not there, with what is there in its place, for people; empty: all of it is there.
[[nodiscard]] QString difference(const Expectation &expected, const Terminal &terminal, QWidget &window);
} // namespace kiosk
