// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "connectionthreads.h"

#include <system_error>
#include <utility>

namespace cash {
ConnectionThreads::ConnectionThreads(Serve serve, std::chrono::milliseconds idle)
    : m_serve(std::move(serve)), m_idleTime(idle)
{}

ConnectionThreads::~ConnectionThreads()
{
    std::unique_lock lock(m_mutex);
    m_isEnding = true;
    m_changed.notify_all();
    m_empty.wait(lock, [this] { return m_threads.empty(); });
    lock.unlock();
    if (m_lastEnded.joinable())
        m_lastEnded.join();
}

bool ConnectionThreads::take(int socket)
{
    const std::lock_guard lock(m_mutex);
    if (m_idle <= m_sockets.size() && !startThread())
        return false;
    m_sockets.push_back(socket);
    m_changed.notify_one();
    return true;
}

bool ConnectionThreads::startThread()
{
    const auto self = m_threads.emplace(m_threads.end());
    try {
        *self = std::thread([this, self] { run(self); });
        return true;
    } catch (const std::system_error &) {
        m_threads.erase(self);
        return false;
    }
}

void ConnectionThreads::run(Threads::iterator self)
{
    std::unique_lock lock(m_mutex);
    const auto hasWork = [this] { return !m_sockets.empty() || m_isEnding; };
    for (;;) {
        ++m_idle;
        m_changed.wait_for(lock, m_idleTime, hasWork);
        --m_idle;
        if (m_sockets.empty())
            break;
        const int socket = m_sockets.front();
        m_sockets.pop_front();
        lock.unlock();
        m_serve(socket);
        lock.lock();
    }
    end(lock, self);
}

void ConnectionThreads::end(std::unique_lock<std::mutex> &lock, Threads::iterator self)
{
    std::thread before = std::exchange(m_lastEnded, std::move(*self));
    m_threads.erase(self);
    m_empty.notify_all();
    lock.unlock();
    if (before.joinable())
        before.join();
}
} // namespace cash
