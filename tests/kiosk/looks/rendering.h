// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QSize>
#include <QWidget>

#include <memory>

/// Draws widgets into memory, the same on every machine and however busy it is: no event loop runs, so no count-down
/// moves, and fonts are drawn as fonts.conf beside this file says.
namespace Rendering {
/// To be called before there is an application object.
void prepareFonts();

/// A screen of that size that nobody sees, with a widget that fills it and goes with it.
class Stage
{
public:
    Stage(std::unique_ptr<QWidget> widget, const QSize &size);

    [[nodiscard]] QWidget &widget() { return *m_widget; }

private:
    QWidget m_ground;
    QWidget *m_widget;
};

/// Lays out again what has changed.
void settle(QWidget &widget);
/// The widget as a customer sees it.
[[nodiscard]] QImage picture(QWidget &widget);

/// Makes each text that the widget shows 40 % longer, as a translation may be. It ends the program where they do not
/// stay so.
void lengthenTexts(QWidget &widget);
} // namespace Rendering
