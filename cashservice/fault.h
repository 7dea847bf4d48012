// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "answer.h"
#include "request.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace cash {
/// When a fault strikes a payment: After it is recorded, or Before, and then it is not.
enum class Stage
{
    Before,
    After
};

/// Something that the service does wrong on purpose. Written as a rule, the same on the command line and in /admin:
///
///     OPERATION[#COUNT][@STAGE]:ACTION[=VALUE]
struct Fault
{
    enum class Action
    {
        Delay,
        Status,
        Empty,
        Operation,
        Result,
        Missing,
        Doubled,
        Malformed,
        Card,
        Encoding
    };

    std::string rule;
    /// Nothing: both.
    std::optional<Operation> operation;
    /// Of the requests of that operation since the rule was set, counted from 1.
    std::uint64_t first = 1;
    std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
    Stage stage = Stage::After;
    Action action = Action::Empty;
    std::chrono::milliseconds delay{0};
    /// The HTTP status or the result code.
    int number = 0;
    /// The answer's field, operation or card.
    std::string name;
    /// The error text, or what stands in place of the field's text.
    std::string text;
    cash::Encoding encoding = cash::Encoding::Utf8;
};

/// Says what is wrong with a rule and what to write instead.
class FaultError : public std::invalid_argument
{
public:
    using std::invalid_argument::invalid_argument;
};

/// @throw FaultError
[[nodiscard]] Fault faultFromRule(const std::string &rule);
/// What --help and /admin say about rules.
[[nodiscard]] std::string faultHelp();

/// Changes an answer as the fault says; actions that concern more than its texts change nothing.
void spoil(Answer &answer, const Fault &fault);

/// The rules in force. Safe to use from any thread.
class FaultBook
{
public:
    struct Entry
    {
        int id = 0;
        Fault fault;
        /// Requests of its operation since the rule was set, and those that it struck.
        std::uint64_t seen = 0;
        std::uint64_t struck = 0;
    };

    int add(const Fault &fault);
    [[nodiscard]] std::vector<Entry> entries() const;
    /// @return how many were removed.
    int remove(int id);
    int clear();
    /// Counts a request, and returns the faults that strike it, in the order in which they were set.
    [[nodiscard]] std::vector<Fault> strike(Operation operation);

private:
    mutable std::mutex m_mutex;
    std::vector<Entry> m_entries;
    int m_lastId = 0;
};
} // namespace cash
