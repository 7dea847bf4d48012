// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger/ledgerentry.h"

namespace kiosk {
QString toText(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Open:
        return QStringLiteral("open");
    case Outcome::Committing:
        return QStringLiteral("committing");
    case Outcome::Confirmed:
        return QStringLiteral("confirmed");
    case Outcome::Unconfirmed:
        break;
    case Outcome::Interrupted:
        return QStringLiteral("interrupted");
    }
    return QStringLiteral("unconfirmed");
}

Outcome outcomeFromText(const QString &text)
{
    for (const Outcome outcome : {Outcome::Open, Outcome::Committing, Outcome::Confirmed, Outcome::Interrupted}) {
        if (text == toText(outcome))
            return outcome;
    }
    return Outcome::Unconfirmed;
}
} // namespace kiosk
