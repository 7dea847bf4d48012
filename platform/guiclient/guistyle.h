// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The look of everything that a customer sees: colours, sizes, fonts, as one style sheet.
namespace GuiStyle {
/// An application that wants more rules, or others, gives them to QApplication behind these ones; a form viewer brings
/// these rules itself only where the application has no style sheet. Sizes are made for a reader who stands, on screens
/// from 1024 by 768 up; nothing to touch is lower than 64 pixels.
[[nodiscard]] QString sheet();
} // namespace GuiStyle
