// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/scenario.h"
#include "scenario/steprunner.h"

namespace kiosk {
/// Plays a scenario, step by step, until one fails.
class Player : public QObject
{
    Q_OBJECT

public:
    Player(const Scenario &scenario, const Stage &stage, QObject *parent = nullptr);

    /// Begins with the first step, from the event loop.
    void start();

Q_SIGNALS:
    /// @param number of the step, from 1. @param screen, @param text what the customer has before him then, see View.
    void stepHeld(int number, const QString &caption, const QString &screen, const QString &text);
    /// @param failure which step failed, what was expected and what was there; empty: every step held.
    void finished(const QString &failure);

private:
    void runNext();
    void takeResult(const QString &failure);

    Scenario m_scenario;
    Stage m_stage;
    StepRunner m_runner;
    int m_next = 0;
};
} // namespace kiosk
