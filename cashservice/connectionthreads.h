// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace cash {
/// A thread for each connection that is open, so that no client waits for another. A thread that has ended its
/// connection serves another one, or ends when none comes.
class ConnectionThreads
{
public:
    using Serve = std::function<void(int socket)>;

    /// @param serve closes the socket. @param idle how long a thread without a connection stays.
    ConnectionThreads(Serve serve, std::chrono::milliseconds idle);
    /// Returns when every connection has ended.
    ~ConnectionThreads();
    ConnectionThreads(const ConnectionThreads &) = delete;
    ConnectionThreads &operator=(const ConnectionThreads &) = delete;

    /// @return false where the system gives no further thread; the socket is then still the caller's.
    [[nodiscard]] bool take(int socket);

private:
    using Threads = std::list<std::thread>;

    [[nodiscard]] bool startThread();
    void run(Threads::iterator self);
    void end(std::unique_lock<std::mutex> &lock, Threads::iterator self);

    Serve m_serve;
    std::chrono::milliseconds m_idleTime;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_empty;
    std::deque<int> m_sockets;
    Threads m_threads;
    /// Each thread that ends waits for the one before.
    std::thread m_lastEnded;
    std::size_t m_idle = 0;
    bool m_isEnding = false;
};
} // namespace cash
