// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/till.h"

#include "ledger/ledger.h"
#include "payee.h"

namespace kiosk {
Till::Till(Ledger &ledger, const FixNumber &comission) : m_ledger(&ledger), m_purchase(comission) {}

void Till::take(const FixNumber &note, const QString &cardNumber, const QString &parkingSession)
{
    if (m_uid == 0)
        m_uid = m_ledger->open(m_purchase, cardNumber, parkingSession, note);
    else
        m_ledger->addNote(m_uid, note);
    m_purchase.add(note);
}

Payment Till::beginCommit()
{
    m_ledger->beginCommit(m_uid, m_purchase);
    Payment payment(m_uid, entry().created, Payee::PROVIDER_ID);
    payment.setSumm(m_purchase.summ());
    payment.setComission(m_purchase.comission(), false, false);
    return payment;
}

LedgerEntry Till::entry() const
{
    return m_ledger->entry(m_uid);
}
} // namespace kiosk
