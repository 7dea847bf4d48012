// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/fixnumber.h"

#include <QDateTime>
#include <QMetaType>
#include <QString>

namespace kiosk {
/// How far a payment came.
enum class Outcome
{
    Open,        ///< money is being taken
    Committing,  ///< the plugin registers it
    Confirmed,   ///< the payee is known to have it
    Unconfirmed, ///< committed, but whether the payee has it is not known
    Interrupted  ///< the terminal died while money was being taken: it was never sent to the payee
};

/// "open", "committing", "confirmed", "unconfirmed" or "interrupted", as scenarios and the ledger's file spell it.
[[nodiscard]] QString toText(Outcome outcome);
/// Of the texts that toText() gives; anything else is what is not known: Unconfirmed.
[[nodiscard]] Outcome outcomeFromText(const QString &text);

/// One payment as the ledger has it. Amounts are in hundredths.
struct LedgerEntry
{
    /// Never given out twice in one work directory; 0: no payment.
    qint64 uid = 0;
    /// When the first note was taken.
    QDateTime created;
    Outcome outcome = Outcome::Open;
    FixNumber due;
    /// The sum of the payment's notes.
    FixNumber cash;
    FixNumber summ;
    FixNumber comission;
    FixNumber total;
    /// Owed to the customer.
    FixNumber change;
    /// What the customer still owes.
    FixNumber remainder;
    /// The number printed on the parking card, and the parking session at the payee.
    QString cardNumber;
    QString parkingSession;
};
} // namespace kiosk

Q_DECLARE_METATYPE(kiosk::Outcome)
