// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "trial.h"

#include <functional>
#include <string>
#include <vector>

namespace conformance {
/// A sentence of the protocol and how it is tried.
struct Check
{
    std::string name;
    std::function<void(Trial &)> run;
};
using Checklist = std::vector<Check>;

/// The form of every answer.
[[nodiscard]] Checklist answerChecks();
/// What a terminal may send and the service must take.
[[nodiscard]] Checklist goodRequestChecks();
/// What the service must refuse.
[[nodiscard]] Checklist badRequestChecks();
/// That a payment is registered, once.
[[nodiscard]] Checklist paymentChecks();
/// The last one, after which the card owes nothing.
[[nodiscard]] Check fullPaymentCheck();
} // namespace conformance
