// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/amounttext.h"

namespace kiosk {
QString amountText(const FixNumber &amount, const Currency &currency)
{
    const QChar noBreakSpace(QChar::Nbsp);
    return amount.toString() + noBreakSpace + currency.shortName;
}
} // namespace kiosk
