// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

/// How long a payment's second exchange takes on the clock, beside a bare exchange of the same bytes.
namespace ClientPace {
/// Lets clients that have one exchange behind them and bare exchanges take turns, and prints what each takes, the
/// median of the ratios and its bound.
/// @return 1, and a line on standard error, when the ratio is beyond its bound; else 0.
[[nodiscard]] int print();
} // namespace ClientPace
