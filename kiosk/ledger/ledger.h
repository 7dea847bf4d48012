// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "ledger/ledgerentry.h"

#include <QVector>

#include <stdexcept>

namespace kiosk {
class Purchase;

/// Says what the database says, and what was being done.
class LedgerError : public std::runtime_error
{
public:
    explicit LedgerError(const QString &text) : std::runtime_error(text.toStdString()) {}
    [[nodiscard]] QString text() const { return QString::fromUtf8(what()); }
};

/// The terminal's book of payments and notes: an SQLite file. What a call has written when it returns survives a crash
/// of the program and of the machine. Every call throws LedgerError when the file cannot be read or written; the file
/// is then as before the call.
class Ledger
{
public:
    /// Opens or makes the file. Payments that an earlier program left behind are settled: one that was being committed
    /// is Unconfirmed from now on (and never sent again), one that took money is Interrupted.
    explicit Ledger(const QString &path);
    ~Ledger();
    Ledger(const Ledger &) = delete;
    Ledger &operator=(const Ledger &) = delete;

    /// Opens a payment and gives it its number. @param purchase with what is due, @param first its first note.
    /// The notes belong to the payment from then on.
    [[nodiscard]] qint64 open(const Purchase &purchase, const QString &cardNumber, const QString &parkingSession,
                              const FixNumber &first);
    void addNote(qint64 uid, const FixNumber &note);

    /// The payment is about to be registered: its amounts are fixed, and what is owed to the customer gets its row.
    void beginCommit(qint64 uid, const Purchase &purchase);
    void finishCommit(qint64 uid, Outcome outcome);

    /// The customer has seen the receipt.
    void closeReceipt(qint64 uid);
    /// Payments with money whose receipt nobody has seen, oldest first: what was in progress when the terminal stopped.
    [[nodiscard]] QVector<LedgerEntry> unseen() const;

    /// @return an entry of uid 0 if there is none.
    [[nodiscard]] LedgerEntry entry(qint64 uid) const;
    /// The newest first.
    [[nodiscard]] QVector<LedgerEntry> latest(int most) const;

private:
    /// What it leaves goes with ~Ledger(), also where the file cannot be opened.
    Ledger();
    void settle();
    [[nodiscard]] QVector<LedgerEntry> select(const QString &condition, const QVariantList &values) const;

    QString m_connection;
};
} // namespace kiosk
