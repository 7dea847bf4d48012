// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/step.h"
#include "window/bench/carpark.h"

#include <QVector>

/// The steps behind the bench panel's buttons; a step's caption is its button's.
namespace kiosk::BenchSteps {
/// The card is held to the reader.
[[nodiscard]] Step card(const ParkedCard &card);
/// The notes that the acceptor takes.
[[nodiscard]] QVector<Step> notes();
/// A customer's and an engineer's touches.
[[nodiscard]] QVector<Step> touches();
/// Faults of the cash service worth a button, and the end of them all.
[[nodiscard]] QVector<Step> faults();
/// Ends the terminal.
[[nodiscard]] Step quit();
/// What is typed: on the terminal, or as a fault's rule.
[[nodiscard]] Step typed(Verb verb, const QString &text);
} // namespace kiosk::BenchSteps
