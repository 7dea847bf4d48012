// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace kiosk::EditorNames {
/// Gives each editor of a plugin's page the accessible name that the label in its row has, where it has none: pages put
/// the two side by side in a grid, and to a screen reader that says nothing.
void complete(QWidget &page);
} // namespace kiosk::EditorNames
