// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "connectionthreads.h"

#include <set>
#include <string>

namespace cash {
/// Takes the connections that come to a listening socket, each into a thread of its own, until it is told to stop. A
/// connection for which the system gives no descriptor or no thread is refused, and those that are open go on; the
/// first time for each of the two reasons standard error says so.
class Acceptor
{
public:
    /// @param listening is the caller's to close, and does not block any more. @param stop readable as soon as no
    /// connection is to be taken any more. @param threads outlive this.
    Acceptor(int listening, int stop, ConnectionThreads &threads);
    /// Returns once @a stop is readable.
    ~Acceptor();
    Acceptor(const Acceptor &) = delete;
    Acceptor &operator=(const Acceptor &) = delete;

private:
    void run();
    /// @return false where it is time to end.
    [[nodiscard]] bool waitForClient() const;
    void pause() const;
    void takeOne();
    [[nodiscard]] int accept() const;
    void serve(int socket);
    void refuseWithoutDescriptor();
    void complain(const std::string &what);

    int m_listening;
    int m_stop;
    ConnectionThreads &m_threads;
    /// Given up for a moment to take a connection that there is no descriptor for, and refuse it.
    int m_spare;
    std::set<std::string> m_complaints;
    std::thread m_thread;
};
} // namespace cash
