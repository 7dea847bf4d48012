// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger.h"

#include <utility>

namespace cash {
namespace {
using Outcome = Registration::Outcome;

constexpr char SCHEMA[] = R"(
CREATE TABLE IF NOT EXISTS payments (
    number INTEGER PRIMARY KEY,
    term_id TEXT NOT NULL, session_id TEXT NOT NULL, uin INTEGER NOT NULL,
    card_uid TEXT NOT NULL, stay_id TEXT NOT NULL,
    amount INTEGER NOT NULL, type TEXT NOT NULL, paid_at TEXT NOT NULL,
    registered_at TEXT NOT NULL, answer TEXT NOT NULL,
    UNIQUE (term_id, session_id, uin)) STRICT;
CREATE TABLE IF NOT EXISTS stays (
    stay_id TEXT PRIMARY KEY, paid INTEGER NOT NULL, last_payment INTEGER NOT NULL) STRICT, WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS log (
    number INTEGER PRIMARY KEY,
    time TEXT NOT NULL, term_id TEXT NOT NULL, session_id TEXT NOT NULL, uin INTEGER NOT NULL,
    card_uid TEXT NOT NULL, amount INTEGER NOT NULL, type TEXT NOT NULL, outcome TEXT NOT NULL) STRICT;
)";

/// Prepared statements need the tables.
Database opened(const std::string &path, std::chrono::milliseconds patience)
{
    Database database(path, patience);
    // A payment is answered only when it has reached the disk, not only the write-ahead log's cache.
    database.run("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL;");
    database.run(SCHEMA);
    // A file that can only be read would be noticed with the first payment otherwise.
    database.run("BEGIN IMMEDIATE; PRAGMA user_version = 1; COMMIT;");
    return database;
}

/// Of a payment whose key is taken.
Outcome outcomeOf(bool isAmountOther, bool isCardOther)
{
    if (isCardOther)
        return isAmountOther ? Outcome::OtherCardAndAmount : Outcome::OtherCard;
    return isAmountOther ? Outcome::OtherAmount : Outcome::Repeated;
}
} // namespace

Ledger::Ledger(const std::string &path, std::chrono::milliseconds patience)
    : m_lock(path), m_database(opened(path, patience)), m_begin(m_database, "BEGIN IMMEDIATE"),
      m_commit(m_database, "COMMIT"),
      m_find(m_database,
             "SELECT amount, card_uid, answer FROM payments WHERE term_id = ? AND session_id = ? AND uin = ?"),
      m_insert(m_database, "INSERT INTO payments (term_id, session_id, uin, card_uid, stay_id, amount, type, paid_at, "
                           "registered_at, answer) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
      m_saveStay(m_database, "INSERT OR REPLACE INTO stays (stay_id, paid, last_payment) VALUES (?, ?, ?)"),
      m_log(m_database, "INSERT INTO log (time, term_id, session_id, uin, card_uid, amount, type, outcome) "
                        "VALUES (?, ?, ?, ?, ?, ?, ?, ?)")
{
    Statement all(m_database, "SELECT stay_id, paid, last_payment FROM stays");
    while (all.step())
        m_stays[all.text(0)] = {all.number(1), all.number(2)};
}

/// The first to come writes for all who wait: a commit costs the same for one payment as for thirty.
Registration Ledger::registerPayment(const Payment &payment)
{
    Job job;
    job.payment = &payment;
    std::unique_lock lock(m_queueing);
    m_queue.push_back(&job);
    m_written.wait(lock, [this, &job] { return job.isDone || !m_isWriting; });
    if (!job.isDone) {
        m_isWriting = true;
        const std::vector<Job *> jobs = std::exchange(m_queue, {});
        lock.unlock();
        write(jobs);
        lock.lock();
        for (Job *done : jobs)
            done->isDone = true;
        m_isWriting = false;
        m_written.notify_all();
    }
    if (!job.error.empty())
        throw DatabaseError(job.error);
    return job.result;
}

void Ledger::write(const std::vector<Job *> &jobs)
{
    const std::lock_guard lock(m_writing);
    Stays changed;
    try {
        writeAll(jobs, changed);
    } catch (const std::exception &error) {
        // Nothing is left of a transaction that failed, or SQLite has rolled it back already.
        sqlite3_exec(m_database.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        for (Job *job : jobs)
            job->error = error.what();
        return;
    }
    const std::lock_guard reading(m_reading);
    for (auto &[id, stay] : changed)
        m_stays[id] = stay;
}

void Ledger::writeAll(const std::vector<Job *> &jobs, Stays &changed)
{
    m_begin.finish();
    for (Job *job : jobs)
        job->result = writeOne(*job->payment, changed);
    for (const auto &[id, stay] : changed)
        m_saveStay.bind(1, id).bind(2, stay.paid).bind(3, stay.lastPayment.value_or(0)).finish();
    m_commit.finish();
}

Registration Ledger::writeOne(const Payment &payment, Stays &changed)
{
    if (std::optional<Registration> found = earlier(payment.request)) {
        log(payment.request, payment.receivedAt, found->outcome);
        return *std::move(found);
    }
    const auto known = changed.find(payment.stayId);
    Stay after = known == changed.end() ? stay(payment.stayId) : known->second;
    after.paid = sum(after.paid, payment.request.amount);
    after.lastPayment = payment.receivedAt;
    Registration registration{Outcome::Registered, payment.answer(after)};
    insert(payment, registration.answer);
    log(payment.request, payment.receivedAt, registration.outcome);
    changed[payment.stayId] = after;
    return registration;
}

std::optional<Registration> Ledger::earlier(const Request &request)
{
    m_find.bind(1, request.termId).bind(2, request.sessionId).bind(3, request.uin);
    std::optional<Registration> found;
    if (m_find.step())
        found.emplace(Registration{outcomeOf(m_find.number(0) != request.amount, m_find.text(1) != request.cardUid),
                                   m_find.text(2)});
    m_find.reset();
    return found;
}

void Ledger::insert(const Payment &payment, const std::string &answer)
{
    const Request &request = payment.request;
    const std::string now = localText(payment.receivedAt);
    m_insert.bind(1, request.termId).bind(2, request.sessionId).bind(3, request.uin);
    m_insert.bind(4, request.cardUid).bind(5, payment.stayId).bind(6, request.amount).bind(7, request.type);
    m_insert.bind(8, request.paidAt).bind(9, now).bind(10, answer).finish();
}

void Ledger::log(const Request &request, Moment receivedAt, Outcome outcome)
{
    const std::string now = localText(receivedAt);
    const std::string name = outcomeName(outcome);
    m_log.bind(1, now).bind(2, request.termId).bind(3, request.sessionId).bind(4, request.uin);
    m_log.bind(5, request.cardUid).bind(6, request.amount).bind(7, request.type).bind(8, name).finish();
}

std::optional<Registration> Ledger::registerAgain(const Request &request, Moment receivedAt)
{
    const std::lock_guard lock(m_writing);
    std::optional<Registration> found = earlier(request);
    if (found)
        log(request, receivedAt, found->outcome);
    return found;
}

Stay Ledger::stay(const std::string &stayId) const
{
    const std::lock_guard lock(m_reading);
    const auto found = m_stays.find(stayId);
    return found == m_stays.end() ? Stay() : found->second;
}

std::vector<LogRow> Ledger::payments() const
{
    return rows("SELECT registered_at, term_id, session_id, uin, card_uid, amount, type, 'registered' FROM payments "
                "ORDER BY number");
}

std::vector<LogRow> Ledger::conflicts() const
{
    return rows("SELECT time, term_id, session_id, uin, card_uid, amount, type, outcome FROM log AS row "
                "WHERE outcome <> 'repeated' AND EXISTS (SELECT 1 FROM log AS other WHERE other.term_id = row.term_id "
                "AND other.session_id = row.session_id AND other.uin = row.uin AND other.outcome LIKE 'other %') "
                "ORDER BY number");
}

std::vector<LogRow> Ledger::rows(const char *sql) const
{
    const std::lock_guard lock(m_writing);
    Statement all(m_database, sql);
    std::vector<LogRow> found;
    while (all.step())
        found.push_back({all.text(0), all.text(1), all.text(2), all.number(3), all.text(4), all.number(5), all.text(6),
                         all.text(7)});
    return found;
}

std::string outcomeName(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Registered:
        return "registered";
    case Outcome::Repeated:
        return "repeated";
    case Outcome::OtherAmount:
        return "other amount";
    case Outcome::OtherCard:
        return "other card";
    case Outcome::OtherCardAndAmount:
        return "other card and amount";
    }
    return std::string();
}
} // namespace cash
