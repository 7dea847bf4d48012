// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace kiosk {
class Screens;
class Terminal;

/// The terminal's window: it shows the screen that the terminal is on, and nothing else. Touches go to the terminal's
/// verbs. Closing it asks the terminal to quit.
class KioskWindow : public QWidget
{
    Q_OBJECT

public:
    /// @param terminal outlives the window.
    explicit KioskWindow(Terminal &terminal, QWidget *parent = nullptr);

protected:
    void closeEvent(QCloseEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void connectScreens();
    void showScreen();
    void showPayment();
    void start();
    void save();

    Terminal &m_terminal;
    Screens *m_screens;
    QBasicTimer m_tick;
};
} // namespace kiosk
