// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace cash {
/// One request and its answer as they went over the wire: start line, headers and body, byte for byte.
struct Exchange
{
    /// In the order of arrival, from 1; never given twice.
    std::uint64_t number = 0;
    std::string request;
    std::string answer;
};

/// What was asked and answered, for /admin: the last thousand exchanges, and how many there were. An answer is in it
/// before its bytes leave, so who has got an answer finds it here. Safe to use from any thread.
class Journal
{
public:
    static constexpr std::size_t KEPT = 1'000;

    /// @return the exchange's number.
    std::uint64_t begin(const std::string &request);
    void addAnswer(std::uint64_t number, const std::string &bytes);

    /// Since the service was started or the journal cleared.
    [[nodiscard]] std::uint64_t count() const;
    [[nodiscard]] std::vector<Exchange> exchanges() const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::deque<Exchange> m_exchanges;
    std::uint64_t m_lastNumber = 0;
    std::uint64_t m_count = 0;
};
} // namespace cash
