// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/currency.h"
#include "guiclient/touchscrollarea.h"
#include "ledger/ledgerentry.h"

#include <QVector>

namespace kiosk {
/// The latest payments for the service engineer: what came in, what went where, what is owed, and what is not known.
class LedgerList : public TouchScrollArea
{
    Q_OBJECT

public:
    explicit LedgerList(QWidget *parent = nullptr);

    /// @param entries in the order in which they are shown.
    void setEntries(const QVector<LedgerEntry> &entries, const Currency &currency);
};
} // namespace kiosk
