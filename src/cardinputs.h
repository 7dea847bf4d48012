// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/providerparameter.h"

/// What the hand-input screens ask for.
namespace CardInputs {
/// The number printed on the card.
[[nodiscard]] ProviderParameter cardNumber();
/// The chip's UID, in hexadecimal.
[[nodiscard]] ProviderParameter cardUid();
/// The car's number. @param cardId the number of the card that it is asked for.
[[nodiscard]] ProviderParameter carNumber(const QString &cardId);
} // namespace CardInputs
