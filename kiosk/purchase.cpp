// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "purchase.h"

#include <algorithm>

namespace kiosk {
namespace {
FixNumber orZero(const FixNumber &amount)
{
    return std::max(amount, FixNumber());
}
} // namespace

void Purchase::add(const FixNumber &note)
{
    m_cash = m_cash + orZero(note);
}

FixNumber Purchase::summ() const
{
    return std::min(m_cash, orZero(m_due));
}

FixNumber Purchase::comission() const
{
    return isNothingDue() ? FixNumber() : std::min(m_comission, m_cash - summ());
}

FixNumber Purchase::remainder() const
{
    return orZero(m_due) - summ();
}

FixNumber Purchase::toPayIn() const
{
    return isNothingDue() ? FixNumber() : orZero(m_due + m_comission - m_cash);
}

void Purchase::setComission(const FixNumber &comission)
{
    m_comission = orZero(comission);
}
} // namespace kiosk
