// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"

#include <QDateTime>

/// One payment as the terminal keeps it. All amounts are in hundredths of the currency unit.
class Payment
{
public:
    /// An empty payment: its providerId() is below 1, its amounts are zero, its creation time is invalid.
    Payment() = default;
    /// @param uid the payment's number, unique on this terminal for good.
    /// @param providerId whom the payment is for, from 1.
    Payment(qint64 uid, const QDateTime &created, qint64 providerId)
        : m_uid(uid), m_created(created), m_providerId(providerId)
    {}

    [[nodiscard]] qint64 uid() const { return m_uid; }
    [[nodiscard]] QDateTime created() const { return m_created; }
    [[nodiscard]] qint64 providerId() const { return m_providerId; }

    /// What goes to the provider.
    [[nodiscard]] FixNumber summ() const { return m_summ; }
    void setSumm(const FixNumber &summ);

    /// What the terminal's owner takes on top.
    [[nodiscard]] FixNumber comission() const { return m_comission; }
    /// @param usePrepay the commission is taken from what was prepaid.
    /// @param devidePrepay a prepaid amount is divided between sum and commission.
    void setComission(const FixNumber &comission, bool usePrepay, bool devidePrepay);
    [[nodiscard]] bool usePrepay() const { return m_usePrepay; }
    [[nodiscard]] bool devidePrepay() const { return m_devidePrepay; }

    /// summ() and comission() together.
    [[nodiscard]] FixNumber total() const { return m_summ + m_comission; }

    friend bool operator==(const Payment &left, const Payment &right);
    friend bool operator!=(const Payment &left, const Payment &right) { return !(left == right); }

private:
    qint64 m_uid = 0;
    QDateTime m_created;
    qint64 m_providerId = 0;
    FixNumber m_summ;
    FixNumber m_comission;
    bool m_usePrepay = false;
    bool m_devidePrepay = false;
};
