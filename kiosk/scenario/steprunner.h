// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/step.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QWidget>

namespace kiosk {
class ServiceFaults;
class Terminal;

/// What steps are done to.
struct Stage
{
    Terminal &terminal;
    QWidget &window;
    /// Null without a cash service to break.
    ServiceFaults *faults = nullptr;
    /// Empty: no screenshots are taken.
    QString shotsDir = {};
};

/// Does one step at a time. A step is over when its touch is delivered; what comes of it (a commit, say) goes on.
class StepRunner : public QObject
{
    Q_OBJECT

public:
    /// @param stage what it refers to outlives this.
    explicit StepRunner(const Stage &stage, QObject *parent = nullptr);

    /// Begins the step; finished() may come before it returns. Not while another is going on.
    void run(const Step &step);

Q_SIGNALS:
    /// @param failure why the step failed; empty: it held.
    /// @param note why the terminal did not take it: that is no failure. Empty: it did.
    void finished(const QString &failure, const QString &note);

private:
    [[nodiscard]] QString carryOut(const Step &step);
    void expect(const Step &step);
    void lookAgain();
    [[nodiscard]] QString takeScreenshot(const QString &name);

    Stage m_stage;
    Expectation m_expected;
    QElapsedTimer m_waiting;
    QTimer m_look;
};
} // namespace kiosk
