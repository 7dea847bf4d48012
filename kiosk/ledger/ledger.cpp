// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger/ledger.h"

#include "purchase.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

namespace kiosk {
namespace {
constexpr int SCALE = 100;

QSqlDatabase database(const QString &connection)
{
    return QSqlDatabase::database(connection, false);
}

LedgerError failure(const QString &what, const QSqlError &error)
{
    return LedgerError(QStringLiteral("the ledger: %1: %2").arg(what, error.text()));
}

QSqlQuery run(const QString &connection, const QString &sql, const QVariantList &values = {})
{
    QSqlQuery query(database(connection));
    query.setForwardOnly(true);
    bool isDone = query.prepare(sql);
    for (const QVariant &value : values)
        query.addBindValue(value);
    isDone = isDone && query.exec();
    if (!isDone)
        throw failure(sql, query.lastError());
    return query;
}

/// All that happens while it lives is written by commit(), or not at all.
class Transaction
{
public:
    explicit Transaction(const QString &connection) : m_connection(connection)
    {
        run(m_connection, QStringLiteral("BEGIN IMMEDIATE"));
    }
    ~Transaction()
    {
        if (!m_isCommitted)
            database(m_connection).exec(QStringLiteral("ROLLBACK"));
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    void commit()
    {
        run(m_connection, QStringLiteral("COMMIT"));
        m_isCommitted = true;
    }

private:
    QString m_connection;
    bool m_isCommitted = false;
};

FixNumber amount(const QVariant &value)
{
    return {SCALE, value.toLongLong()};
}

QString now()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}
} // namespace

Ledger::Ledger() : m_connection(QUuid::createUuid().toString()) {}

Ledger::Ledger(const QString &path) : Ledger()
{
    QSqlDatabase opened = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    opened.setDatabaseName(path);
    // The window stands still meanwhile. Who holds the file for longer is waited for elsewhere.
    opened.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000"));
    if (!opened.open())
        throw failure(path, opened.lastError());
    for (const auto *statement : {
             "PRAGMA journal_mode = WAL",
             // Otherwise the last payments before a power cut would be gone.
             "PRAGMA synchronous = FULL",
             "CREATE TABLE IF NOT EXISTS payments (uid INTEGER PRIMARY KEY AUTOINCREMENT, created TEXT NOT NULL,"
             " outcome TEXT NOT NULL, due INTEGER NOT NULL, summ INTEGER NOT NULL, comission INTEGER NOT NULL,"
             " remainder INTEGER NOT NULL, card_number TEXT NOT NULL, parking_session TEXT NOT NULL,"
             " receipt_seen INTEGER NOT NULL DEFAULT 0)",
             "CREATE TABLE IF NOT EXISTS notes (id INTEGER PRIMARY KEY, taken TEXT NOT NULL,"
             " uid INTEGER NOT NULL REFERENCES payments, value INTEGER NOT NULL)",
             "CREATE INDEX IF NOT EXISTS notes_of_payment ON notes (uid)",
             "CREATE TABLE IF NOT EXISTS change_owed (uid INTEGER PRIMARY KEY REFERENCES payments,"
             " amount INTEGER NOT NULL)",
         })
        run(m_connection, QString::fromLatin1(statement));
    settle();
}

Ledger::~Ledger()
{
    database(m_connection).close();
    QSqlDatabase::removeDatabase(m_connection);
}

void Ledger::settle()
{
    Transaction transaction(m_connection);
    // Nothing of an interrupted payment was sent: the customer is owed every note of it.
    run(m_connection,
        QStringLiteral("INSERT INTO change_owed SELECT uid, sum(value) FROM notes JOIN payments USING (uid)"
                       " WHERE outcome = ? GROUP BY uid"),
        {toText(Outcome::Open)});
    run(m_connection, QStringLiteral("UPDATE payments SET outcome = ? WHERE outcome = ?"),
        {toText(Outcome::Interrupted), toText(Outcome::Open)});
    run(m_connection, QStringLiteral("UPDATE payments SET outcome = ? WHERE outcome = ?"),
        {toText(Outcome::Unconfirmed), toText(Outcome::Committing)});
    transaction.commit();
}

qint64 Ledger::open(const Purchase &purchase, const QString &cardNumber, const QString &parkingSession,
                    const FixNumber &first)
{
    Transaction transaction(m_connection);
    const auto text = [](const QString &value) { return value.isNull() ? QStringLiteral("") : value; };
    const qint64 uid =
        run(m_connection,
            QStringLiteral("INSERT INTO payments (created, outcome, due, summ, comission, remainder, card_number,"
                           " parking_session) VALUES (?, ?, ?, 0, 0, ?, ?, ?)"),
            {now(), toText(Outcome::Open), purchase.due().value(), purchase.remainder().value(), text(cardNumber),
             text(parkingSession)})
            .lastInsertId()
            .toLongLong();
    addNote(uid, first);
    transaction.commit();
    return uid;
}

void Ledger::addNote(qint64 uid, const FixNumber &note)
{
    run(m_connection, QStringLiteral("INSERT INTO notes (taken, uid, value) VALUES (?, ?, ?)"),
        {now(), uid, note.value()});
}

void Ledger::beginCommit(qint64 uid, const Purchase &purchase)
{
    Transaction transaction(m_connection);
    run(m_connection,
        QStringLiteral(
            "UPDATE payments SET outcome = ?, due = ?, summ = ?, comission = ?, remainder = ? WHERE uid = ?"),
        {toText(Outcome::Committing), purchase.due().value(), purchase.summ().value(), purchase.comission().value(),
         purchase.remainder().value(), uid});
    if (purchase.change() > FixNumber())
        run(m_connection, QStringLiteral("INSERT OR REPLACE INTO change_owed VALUES (?, ?)"),
            {uid, purchase.change().value()});
    transaction.commit();
}

void Ledger::finishCommit(qint64 uid, Outcome outcome)
{
    run(m_connection, QStringLiteral("UPDATE payments SET outcome = ? WHERE uid = ?"), {toText(outcome), uid});
}

void Ledger::closeReceipt(qint64 uid)
{
    run(m_connection, QStringLiteral("UPDATE payments SET receipt_seen = 1 WHERE uid = ?"), {uid});
}

QVector<LedgerEntry> Ledger::unseen() const
{
    return select(QStringLiteral("WHERE NOT receipt_seen ORDER BY uid"), {});
}

LedgerEntry Ledger::entry(qint64 uid) const
{
    return select(QStringLiteral("WHERE uid = ?"), {uid}).value(0);
}

QVector<LedgerEntry> Ledger::latest(int most) const
{
    return select(QStringLiteral("ORDER BY uid DESC LIMIT ?"), {most});
}

QVector<LedgerEntry> Ledger::select(const QString &condition, const QVariantList &values) const
{
    QVector<LedgerEntry> entries;
    QSqlQuery query =
        run(m_connection,
            QStringLiteral("SELECT uid, created, outcome, due,"
                           " (SELECT coalesce(sum(value), 0) FROM notes WHERE notes.uid = payments.uid), summ,"
                           " comission, (SELECT coalesce(sum(amount), 0) FROM change_owed"
                           " WHERE change_owed.uid = payments.uid), remainder, card_number, parking_session"
                           " FROM payments ") +
                condition,
            values);
    while (query.next()) {
        int column = 0;
        LedgerEntry entry;
        entry.uid = query.value(column++).toLongLong();
        entry.created = QDateTime::fromString(query.value(column++).toString(), Qt::ISODateWithMs).toLocalTime();
        entry.outcome = outcomeFromText(query.value(column++).toString());
        for (FixNumber *sum : {&entry.due, &entry.cash, &entry.summ, &entry.comission, &entry.change, &entry.remainder})
            *sum = amount(query.value(column++));
        entry.total = entry.summ + entry.comission;
        entry.cardNumber = query.value(column++).toString();
        entry.parkingSession = query.value(column++).toString();
        entries.append(entry);
    }
    return entries;
}
} // namespace kiosk
