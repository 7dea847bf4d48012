// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"
#include "ledger/ledgerentry.h"
#include "purchase.h"

namespace kiosk {
class Ledger;

/// One customer's money on its way into the ledger: nothing counts before it is written there. Every call may throw
/// LedgerError; nothing has changed then.
class Till
{
public:
    /// @param ledger outlives the till. @param comission see Purchase.
    Till(Ledger &ledger, const FixNumber &comission);

    [[nodiscard]] const Purchase &purchase() const { return m_purchase; }
    void setDue(const QString &sumDue) { m_purchase.setDue(sumDue); }

    /// @param note above zero. The payment's first note opens it in the ledger, under these two texts.
    void take(const FixNumber &note, const QString &cardNumber, const QString &parkingSession);

    /// Fixes the amounts. @return the payment for the payee. Call with cash alone.
    [[nodiscard]] Payment beginCommit();

    /// The payment as the ledger has it.
    [[nodiscard]] LedgerEntry entry() const;

private:
    Ledger *m_ledger;
    Purchase m_purchase;
    qint64 m_uid = 0;
};
} // namespace kiosk
