// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "journal.h"

namespace cash {
std::uint64_t Journal::begin(const std::string &request)
{
    const std::lock_guard lock(m_mutex);
    ++m_count;
    m_exchanges.push_back({++m_lastNumber, request, std::string()});
    if (m_exchanges.size() > KEPT)
        m_exchanges.pop_front();
    return m_lastNumber;
}

void Journal::addAnswer(std::uint64_t number, const std::string &bytes)
{
    const std::lock_guard lock(m_mutex);
    if (m_exchanges.empty() || number < m_exchanges.front().number)
        return; // it was pushed out, or cleared
    m_exchanges[number - m_exchanges.front().number].answer += bytes;
}

std::uint64_t Journal::count() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}

std::vector<Exchange> Journal::exchanges() const
{
    const std::lock_guard lock(m_mutex);
    return {m_exchanges.begin(), m_exchanges.end()};
}

void Journal::clear()
{
    const std::lock_guard lock(m_mutex);
    m_exchanges.clear();
    m_count = 0;
}
} // namespace cash
