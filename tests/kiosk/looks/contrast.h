// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

class QImage;

/// Contrast as WCAG 2.1 defines it: from 1 (none) to 21 (black on white).
namespace Contrast {
[[nodiscard]] double ratio(const QColor &one, const QColor &other);

/// Of a text as it is drawn: between the commonest colour, which is the ground, and the colour that stands out most of
/// it. Letters are thinner than their smoothed edges at worst, so what is found is the least that it is.
[[nodiscard]] double ofText(const QImage &picture);
} // namespace Contrast
