// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace cash {
/// A thread for each connection that is open, so that no client waits for another; threads without one are used again.
class ConnectionThreads : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> task) override;
    /// Returns when every task has ended.
    void shutdown() override;

private:
    void run();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks;
    std::vector<std::thread> m_threads;
    std::size_t m_idle = 0;
    bool m_isEnding = false;
};
} // namespace cash
