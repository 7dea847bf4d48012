// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "ledger/ledgerentry.h"

#include <QString>

/// What became of a payment, in words that leave nothing to guess. Customers and service engineers read the same.
namespace kiosk::OutcomeText {
/// In a few words, as a heading.
[[nodiscard]] QString title(const LedgerEntry &payment);
/// What is known and what is not, in a sentence; empty where the title says it all.
[[nodiscard]] QString explanation(const LedgerEntry &payment);
/// What the customer is to do; empty where there is nothing to do.
/// @param phone whom to call; may be empty.
[[nodiscard]] QString advice(const LedgerEntry &payment, const QString &phone);
/// What the customer is owed is called.
[[nodiscard]] QString changeCaption(const LedgerEntry &payment);
/// What the sum due is above what was paid in is called: owed only where the payee is known to have what was paid in.
[[nodiscard]] QString remainderCaption(const LedgerEntry &payment);
/// How a sentence ends in which the customer is told to call. @param phone may be empty.
[[nodiscard]] QString call(const QString &phone);
/// Whether the payee is known to have all that it asked for.
[[nodiscard]] bool isSettled(const LedgerEntry &payment);
} // namespace kiosk::OutcomeText
