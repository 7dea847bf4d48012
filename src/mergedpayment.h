// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"

/// What a pack holds for one provider, as one payment: it is registered at once.
class MergedPayment
{
public:
    /// @param providerId payments of others are left out.
    explicit MergedPayment(qint64 providerId) : m_providerId(providerId) {}

    /// The first one gives number, time and flags; of the others, sum and commission are added to it.
    /// @return whether it was added to an earlier one.
    bool add(const Payment &payment);
    /// Empty where there was none.
    [[nodiscard]] const Payment &payment() const { return m_payment; }

private:
    qint64 m_providerId;
    Payment m_payment;
};
