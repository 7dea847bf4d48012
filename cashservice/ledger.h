// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "database.h"
#include "filelock.h"
#include "moment.h"
#include "request.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace cash {
/// What has been paid for one stay of a card.
struct Stay
{
    Hundredths paid = 0;
    std::optional<Moment> lastPayment;
};

/// A payment to be registered. TermId, SessionId and Uin together are its key.
struct Payment
{
    Request request;
    std::string stayId;
    Moment receivedAt = 0;
    /// Composes the answer of success from the stay as it is with this payment.
    std::function<std::string(const Stay &)> answer;
};

/// What became of a registration.
struct Registration
{
    enum class Outcome
    {
        Registered,
        Repeated,    ///< the same payment again: recorded once
        OtherAmount, ///< the key is taken by a payment of another amount: refused
        OtherCard,   ///< the key is taken by a payment for another card: refused
        OtherCardAndAmount,
    };

    Outcome outcome = Outcome::Registered;
    /// Of the payment that has the key: the same bytes, however often it is registered.
    std::string answer;
};

/// A row of the log for /admin: every registration that came, whatever became of it.
struct LogRow
{
    std::string time;
    std::string termId;
    std::string sessionId;
    std::int64_t uin = 0;
    std::string cardUid;
    Hundredths amount = 0;
    std::string type;
    std::string outcome;
};

/// Keeps payments, in a file or in memory. What registerPayment() has returned outlives a crash of the process and of
/// the machine. Safe to use from any thread: payments that come while another is being written are written together.
class Ledger
{
public:
    /// @param patience how long a payment waits for other processes that write the file.
    /// @throw DatabaseError where the file cannot be opened, is no such database or cannot be written.
    explicit Ledger(const std::string &path, std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// Returns when the payment is durable. @throw DatabaseError where it cannot be made so: it is then not recorded.
    [[nodiscard]] Registration registerPayment(const Payment &payment);

    /// As registerPayment() where the key is taken. A new payment is not recorded: nothing. @throw DatabaseError
    [[nodiscard]] std::optional<Registration> registerAgain(const Request &request, Moment receivedAt);
    [[nodiscard]] Stay stay(const std::string &stayId) const;
    /// The payments, in the order in which they were registered.
    [[nodiscard]] std::vector<LogRow> payments() const;
    /// What was refused for its key, each with the payment that has the key.
    [[nodiscard]] std::vector<LogRow> conflicts() const;

private:
    struct Job
    {
        const Payment *payment = nullptr;
        Registration result;
        std::string error;
        bool isDone = false;
    };

    using Stays = std::map<std::string, Stay>;

    void write(const std::vector<Job *> &jobs);
    void writeAll(const std::vector<Job *> &jobs, Stays &changed);
    [[nodiscard]] Registration writeOne(const Payment &payment, Stays &changed);
    [[nodiscard]] std::optional<Registration> earlier(const Request &request);
    void insert(const Payment &payment, const std::string &answer);
    void log(const Request &request, Moment receivedAt, Registration::Outcome outcome);
    [[nodiscard]] std::vector<LogRow> rows(const char *sql) const;

    /// Ends after the database: closing the file would end SQLite's own locks.
    FileLock m_lock;
    /// Guards the database and the statements.
    mutable std::mutex m_writing;
    mutable Database m_database;
    Statement m_begin;
    Statement m_commit;
    Statement m_find;
    Statement m_insert;
    Statement m_saveStay;
    Statement m_log;

    /// Guards the queue.
    std::mutex m_queueing;
    std::condition_variable m_written;
    std::vector<Job *> m_queue;
    bool m_isWriting = false;

    /// What is asked for most is kept at hand; it is read when the ledger is opened.
    mutable std::mutex m_reading;
    Stays m_stays;
};

[[nodiscard]] std::string outcomeName(Registration::Outcome outcome);
} // namespace cash
