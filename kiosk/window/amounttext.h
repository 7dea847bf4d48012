// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/currency.h"
#include "extension/fixnumber.h"

#include <QString>

namespace kiosk {
/// An amount as the form's details show it: "150.00 руб.", which no line breaks.
[[nodiscard]] QString amountText(const FixNumber &amount, const Currency &currency);
} // namespace kiosk
