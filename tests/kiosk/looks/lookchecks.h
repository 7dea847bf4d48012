// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

class QWidget;

/// What must hold of every screen, whatever is on it. Each check returns what is wrong, one line for each control; the
/// widget has been laid out by Rendering. What another form viewer covers is not looked at: nobody sees it.
namespace LookChecks {
/// Whether a message's text may be longer than its place: it is never cut off, but seldom scrolled by who is in a
/// hurry.
enum class Scrolling
{
    AFault,
    Meant
};

/// Texts that are cut off, parts that stick out of what they are in, a window that needs more than it has.
[[nodiscard]] QStringList clipped(QWidget &window, Scrolling scrolling = Scrolling::AFault);
/// Controls and texts that lie on each other.
[[nodiscard]] QStringList overlapping(QWidget &window);
/// Controls that a screen reader has no name for.
[[nodiscard]] QStringList nameless(QWidget &window);
/// Controls that are lower or narrower than @a side pixels.
[[nodiscard]] QStringList smallTargets(QWidget &window, int side);
/// Texts and captions in letters of less than @a least pixels, as they are drawn: message texts make theirs fit.
[[nodiscard]] QStringList smallTexts(QWidget &window, int least);
/// Texts whose colour and ground, as they are drawn, have less contrast than @a ratio, as WCAG counts it; what is out
/// of sight is scrolled into it. A text with mark-up is a fault: it may have several colours, of which the palest
/// counts.
[[nodiscard]] QStringList paleTexts(QWidget &window, double ratio);
} // namespace LookChecks
