// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace kiosk {
/// Ends the program that has been told to end and does not, since the plugin never returns: from a commit, as a rule.
/// What the ledger says of that payment by then is what the next start goes by.
namespace EndLimit {
/// The exit status of a program that ends so.
constexpr int STATUS = 1;

/// How long the program may take from begin() on; where that has been called, from now on.
void setPatience(std::chrono::seconds patience);
/// The program has been told to end; later calls prolong nothing. It is not taken back: the plugin may hang while it is
/// let go of, too. May be called in a signal's handler.
void begin();
/// The program ends by itself: the plugin is gone.
void cancel();
} // namespace EndLimit
} // namespace kiosk
