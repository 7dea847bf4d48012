// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Makes control characters visible, so that what came over a wire cannot steer the terminal on which the log is read.
namespace VisibleControls {
enum class LineEnds
{
    KEPT,
    VISIBLE
};

/// The text with each control character written as \xNN. Tabulators stay as they are; line feeds and carriage returns
/// stay where @a lineEnds says so. Everything else comes out unchanged.
[[nodiscard]] QString in(const QString &text, LineEnds lineEnds);
} // namespace VisibleControls
