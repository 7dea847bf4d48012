// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "database.h"

namespace cash {
namespace {
void check(int result, sqlite3 *handle)
{
    if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW)
        throw DatabaseError(handle != nullptr ? sqlite3_errmsg(handle) : sqlite3_errstr(result));
}
} // namespace

Database::Database(const std::string &path, std::chrono::milliseconds patience)
{
    sqlite3 *handle = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &handle,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_handle.reset(handle);
    check(result, handle);
    sqlite3_busy_timeout(handle, static_cast<int>(patience.count()));
}

void Database::run(const char *sql)
{
    check(sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr), handle());
}

Statement::Statement(Database &database, const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    check(sqlite3_prepare_v3(database.handle(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr),
          database.handle());
    m_statement.reset(statement);
}

Statement &Statement::bind(int index, std::string_view text)
{
    check(sqlite3_bind_text64(m_statement.get(), index, text.data() == nullptr ? "" : text.data(), text.size(),
                              SQLITE_STATIC, SQLITE_UTF8),
          sqlite3_db_handle(m_statement.get()));
    return *this;
}

Statement &Statement::bind(int index, std::int64_t number)
{
    check(sqlite3_bind_int64(m_statement.get(), index, number), sqlite3_db_handle(m_statement.get()));
    return *this;
}

bool Statement::step()
{
    const int result = sqlite3_step(m_statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        const std::string message = sqlite3_errmsg(sqlite3_db_handle(m_statement.get()));
        reset();
        throw DatabaseError(message);
    }
    return result == SQLITE_ROW;
}

void Statement::finish()
{
    step();
    reset();
}

void Statement::reset()
{
    sqlite3_reset(m_statement.get());
}

std::string Statement::text(int column) const
{
    const auto *characters = reinterpret_cast<const char *>(sqlite3_column_text(m_statement.get(), column));
    const int size = sqlite3_column_bytes(m_statement.get(), column);
    return characters == nullptr ? std::string() : std::string(characters, static_cast<std::size_t>(size));
}

std::int64_t Statement::number(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}
} // namespace cash
