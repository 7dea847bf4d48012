// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QApplication;
class QWidget;

namespace kiosk {
/// The terminal's look: the form project that is built in, and its style sheet.
namespace Look {
/// The built-in form project's folder, for FormProject: a path inside the program.
[[nodiscard]] QString projectDir();

/// Gives the application the project's style sheet, behind that of the GUI client library.
void apply(QApplication &application);

/// A window of the terminal's: its look, title, and size where it does not fill the screen.
void setUp(QWidget &window);

/// Tells the style sheet that a property which it asks for has changed.
void refresh(QWidget &widget);
} // namespace Look
} // namespace kiosk
