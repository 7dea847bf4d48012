// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "ledger/ledgerentry.h"

namespace kiosk {
/// What the customer takes home: the payment, and where and whom to ask about it.
struct Receipt
{
    LedgerEntry payment;
    /// The terminal stopped before the customer saw the receipt: it is shown after the next start.
    bool isRecovered = false;
    QString address;
    QString phone;
};
} // namespace kiosk
