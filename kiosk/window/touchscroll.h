// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

class QScrollArea;

namespace kiosk::TouchScroll {
/// Makes an area fit for fingers: it is moved by dragging what is in it, up and down alone.
void prepare(QScrollArea &area);
} // namespace kiosk::TouchScroll
