// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger/ledgerbacklog.h"

#include "kiosklog.h"
#include "ledger/ledger.h"

namespace kiosk {
LedgerBacklog::LedgerBacklog(Ledger &ledger, QObject *parent) : QObject(parent), m_ledger(ledger)
{
    m_timer.setInterval(RETRY_AFTER);
    connect(&m_timer, &QTimer::timeout, this, &LedgerBacklog::retry);
}

void LedgerBacklog::write(const Write &write)
{
    m_waiting.push_back(write);
    retry();
}

void LedgerBacklog::retry()
{
    try {
        while (!m_waiting.empty()) {
            m_waiting.front()(m_ledger);
            m_waiting.pop_front();
        }
        setFault({});
    } catch (const LedgerError &error) {
        setFault(error.text());
    }
}

void LedgerBacklog::setFault(const QString &fault)
{
    if (fault.isEmpty())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
    // Said once, not with every try.
    if (fault == m_fault)
        return;
    m_fault = fault;
    if (fault.isEmpty())
        qCWarning(KIOSK_LOG) << "the ledger is written again";
    else
        qCCritical(KIOSK_LOG).noquote() << "the ledger is not written, and is tried again:" << fault;
}
} // namespace kiosk
