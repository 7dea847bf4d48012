// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class QAbstractButton;
class QWidget;

namespace kiosk {
class Terminal;

/// What a customer has before him: the terminal's window, seen from outside.
class View
{
public:
    /// Both outlive the view.
    View(const Terminal &terminal, QWidget &window);

    /// "idle", "receipt", "service" or "broken", or what the plugin has up: "message", "input", "details", and
    /// "waiting" where it has nothing up.
    [[nodiscard]] QString screen() const;
    /// All that can be read on the topmost view, a line for each part.
    [[nodiscard]] QString text() const;
    /// What can be touched, by the names that press knows.
    [[nodiscard]] QStringList buttons() const;

    /// Touches a button: "ok" (the receipt's too), "yes", "no", "next", "back", "cancel" or "pay". Of two with one name
    /// the topmost view's is meant. @return why it cannot be touched; empty: it was.
    [[nodiscard]] QString press(const QString &name);
    /// Types on the open input screen, a key for each character. @return why not; empty: it was done.
    [[nodiscard]] QString type(const QString &text);

private:
    [[nodiscard]] QWidget *topmost() const;
    [[nodiscard]] QAbstractButton *button(const QString &name) const;
    [[nodiscard]] bool isReachable(const QWidget &widget) const;

    const Terminal &m_terminal;
    QWidget &m_window;
};
} // namespace kiosk
