// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/providerparameter.h"

#include <QVariantMap>

/// What the hand-input screens ask for, and what becomes of it.
namespace CardInputs {
/// The number printed on the card.
[[nodiscard]] ProviderParameter cardNumber();
/// The chip's UID, in hexadecimal.
[[nodiscard]] ProviderParameter cardUid();
/// The car's number. @param cardId the number of the card that it is asked for.
[[nodiscard]] ProviderParameter carNumber(const QString &cardId);

/// Puts a typed number into the map of a card, as a reader gives one, with the rest that only a reader could read.
void keepCardNumber(QVariantMap &card, const QString &text);
/// Puts a typed UID into it. @param text hexadecimal, the highest byte first; what is no such digit is skipped, what is
/// behind the fourth byte too, and fewer than four bytes are 0.
void keepCardUid(QVariantMap &card, const QString &text);
} // namespace CardInputs
