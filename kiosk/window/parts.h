// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QString>

/// What the screens are made of. A part's role names its look in the style sheet.
namespace kiosk::Parts {
/// A text that breaks into lines.
[[nodiscard]] QLabel *label(const QString &text, const char *role);
/// A text of one line: numbers, amounts, captions above them.
[[nodiscard]] QLabel *line(const QString &text, const char *role);
/// A button to touch. @param name its object name.
[[nodiscard]] QPushButton *button(const QString &text, const char *name, const char *role);

/// Gives the widget another role.
void setRole(QWidget &widget, const char *role);
} // namespace kiosk::Parts
