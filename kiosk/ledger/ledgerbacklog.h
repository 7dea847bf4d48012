// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <list>

namespace kiosk {
class Ledger;

/// Writes to the ledger what has happened already and so must not be lost: what the ledger cannot take (its disk is
/// full, another program holds it) waits here, in order, and is tried again until it is written.
///
/// For outcomes and receipts. What may still be refused, a note say, is written directly.
class LedgerBacklog : public QObject
{
    Q_OBJECT

public:
    /// What is done to the ledger; it may throw LedgerError, and is then done again.
    using Write = std::function<void(Ledger &)>;

    static constexpr std::chrono::seconds RETRY_AFTER{10};

    /// @param ledger outlives this.
    explicit LedgerBacklog(Ledger &ledger, QObject *parent = nullptr);

    /// Does it at once, or behind what waits already.
    void write(const Write &write);
    /// Does what waits: every RETRY_AFTER, and when somebody calls.
    void retry();
    /// What the ledger says, for people; empty: nothing waits.
    [[nodiscard]] QString fault() const { return m_fault; }

private:
    void setFault(const QString &fault);

    Ledger &m_ledger;
    std::list<Write> m_waiting;
    QString m_fault;
    QTimer m_timer;
};
} // namespace kiosk
