// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/payment.h"

#include <tuple>

namespace {
FixNumber inHundredths(const FixNumber &amount)
{
    // Text is read into a given scale by cutting what is beyond it, which is what an amount needs.
    return amount.scale() == 100 ? amount : FixNumber(100, amount.toString());
}
} // namespace

void Payment::setSumm(const FixNumber &summ)
{
    m_summ = inHundredths(summ);
}

void Payment::setComission(const FixNumber &comission, bool usePrepay, bool devidePrepay)
{
    m_comission = inHundredths(comission);
    m_usePrepay = usePrepay;
    m_devidePrepay = devidePrepay;
}

bool operator==(const Payment &left, const Payment &right)
{
    const auto fields = [](const Payment &p) {
        return std::tie(p.m_uid, p.m_created, p.m_providerId, p.m_summ, p.m_comission, p.m_usePrepay, p.m_devidePrepay);
    };
    return fields(left) == fields(right);
}
