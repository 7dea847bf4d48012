// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "mergedpayment.h"

bool MergedPayment::add(const Payment &payment)
{
    if (payment.providerId() != m_providerId)
        return false;
    if (m_payment.providerId() < 1) {
        m_payment = payment;
        return false;
    }
    m_payment.setSumm(m_payment.summ() + payment.summ());
    m_payment.setComission(m_payment.comission() + payment.comission(), m_payment.usePrepay(),
                           m_payment.devidePrepay());
    return true;
}
