// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cash {
/// Says what SQLite says, and what was being done.
class DatabaseError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// One connection to an SQLite database. To be used by one thread at a time.
class Database
{
public:
    /// @param path a file, or ":memory:".
    /// @param patience how long to wait for other processes that use the file.
    explicit Database(const std::string &path, std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// Runs statements that give no rows.
    void run(const char *sql);
    [[nodiscard]] sqlite3 *handle() const { return m_handle.get(); }

private:
    struct Close
    {
        void operator()(sqlite3 *handle) const { sqlite3_close(handle); }
    };

    std::unique_ptr<sqlite3, Close> m_handle;
};

/// A prepared statement. Texts that are bound must live until the next reset().
class Statement
{
public:
    Statement(Database &database, const char *sql);

    Statement &bind(int index, std::string_view text);
    Statement &bind(int index, std::int64_t number);
    /// Whether there is a row; throws DatabaseError.
    bool step();
    /// Runs a statement that gives no rows, and makes it ready for the next time.
    void finish();
    void reset();

    [[nodiscard]] std::string text(int column) const;
    [[nodiscard]] std::int64_t number(int column) const;

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
    };

    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};
} // namespace cash
