// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"

#include <QList>

/// The payments that the host is about to commit together.
class PayPack
{
public:
    [[nodiscard]] QList<Payment> payments() const { return m_payments; }
    void addPayment(const Payment &payment) { m_payments.append(payment); }

private:
    QList<Payment> m_payments;
};
