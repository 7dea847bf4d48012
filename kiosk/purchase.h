// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"

#include <QString>

namespace kiosk {
/// One customer's money: what is due, what was paid in, and what follows from the two. All amounts are in hundredths.
///
/// A value. No amount is ever negative, and cash() is total() and change() together: nothing is claimed to be paid that
/// was not paid in.
class Purchase
{
public:
    /// @param comission what the terminal takes on top of the sum due; below zero is taken as zero.
    explicit Purchase(const FixNumber &comission = FixNumber()) { setComission(comission); }

    /// @param sumDue as the provider's parameter has it: "150.00". No number is a sum of zero.
    void setDue(const QString &sumDue) { m_due = FixNumber(100, sumDue); }
    /// @param note above zero; others are ignored.
    void add(const FixNumber &note);

    /// What the payee asks for; zero or less where nothing is.
    [[nodiscard]] FixNumber due() const { return m_due; }
    /// The sum due is zero, negative or no number: there is nothing to pay and no note is taken.
    [[nodiscard]] bool isNothingDue() const { return m_due <= FixNumber(); }

    [[nodiscard]] FixNumber cash() const { return m_cash; }
    [[nodiscard]] bool hasCash() const { return m_cash > FixNumber(); }

    /// What goes to the payee: the smaller of cash and sum due.
    [[nodiscard]] FixNumber summ() const;
    /// What the terminal keeps: taken of the cash beyond the sum due, up to the comission that is set; nothing
    /// where nothing is due.
    [[nodiscard]] FixNumber comission() const;
    /// summ() and comission() together.
    [[nodiscard]] FixNumber total() const { return summ() + comission(); }
    /// Cash beyond the sum due and the comission: it is owed to the customer.
    [[nodiscard]] FixNumber change() const { return m_cash - total(); }
    /// What the payee is still owed.
    [[nodiscard]] FixNumber remainder() const;
    /// What is still to be paid in: remainder() and the comission that is set.
    [[nodiscard]] FixNumber toPayIn() const;

private:
    void setComission(const FixNumber &comission);

    FixNumber m_due;
    FixNumber m_cash;
    FixNumber m_comission;
};
} // namespace kiosk
