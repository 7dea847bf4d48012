// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "journal.h"

#include <httplib.h>

#include <array>
#include <chrono>
#include <string>

namespace cash {
/// What a client may take of the service. A client beyond them is answered with an HTTP status and put off.
struct Limits
{
    /// Start line and headers, in bytes: 431.
    std::size_t head = 8 * 1024;
    /// In bytes, as sent: 413.
    std::size_t body = 64 * 1024;
    /// Open at one time: 503.
    int connections = 256;
    /// To send a request, from its first byte to its last: 408. Also to take an answer.
    std::chrono::milliseconds request{10'000};
    /// Between two requests of one connection; then it is closed.
    std::chrono::milliseconds idle{5'000};
};

/// One client's connection, as cpp-httplib reads and writes it: keeps the limits and the journal.
class Connection : public httplib::Stream
{
public:
    /// @param stop readable as soon as the service is to end.
    Connection(int socket, int stop, const Limits &limits, Journal &journal);

    /// Waits for the first byte of a request. False: there will be none.
    [[nodiscard]] bool awaitRequest();
    /// Notes the request that has been read in the journal, unless it is one of /admin or noted already.
    void note();
    /// Sends the answer: head and body together, so that the client is woken once.
    void flush();
    /// Breaks the exchange off with this status; what cpp-httplib answers then is not sent.
    void refuse(int status);
    [[nodiscard]] bool isRefused() const { return m_refusal != 0; }
    /// Another request may follow: it is known where this one ends, and it has been read as far as there. Unless this
    /// is said of a request, its answer is the last one.
    void keepOpen();
    [[nodiscard]] bool isLast() const { return m_isLast || m_hasFailed || isRefused(); }
    /// Sends what is left to say and closes the socket, so that the client can read the answer to its end.
    void close();

    [[nodiscard]] bool is_readable() const override;
    [[nodiscard]] bool is_writable() const override;
    ssize_t read(char *data, std::size_t size) override;
    ssize_t write(const char *data, std::size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    [[nodiscard]] int socket() const override { return m_socket; }

private:
    using Deadline = std::chrono::steady_clock::time_point;

    [[nodiscard]] bool fill(Deadline deadline);
    [[nodiscard]] bool isWithinLimits(std::size_t size);
    [[nodiscard]] bool wait(short events, Deadline deadline, bool untilStop) const;
    [[nodiscard]] bool isHeadPlain() const;
    [[nodiscard]] bool send(const std::string &bytes);
    void drain();

    int m_socket;
    int m_stop;
    Limits m_limits;
    Journal &m_journal;

    std::array<char, 4096> m_buffer = {};
    std::size_t m_begin = 0;
    std::size_t m_end = 0;

    /// Of the request that is being read.
    Deadline m_deadline;
    std::string m_request;
    std::size_t m_headSize = 0;
    std::uint64_t m_number = 0;
    /// Written and not sent yet.
    std::string m_answer;

    int m_refusal = 0;
    bool m_hasAnswered = false;
    bool m_isLast = false;
    bool m_hasFailed = false;
    bool m_hasClientClosed = false;
};

[[nodiscard]] std::string statusText(int status);
/// A whole HTTP answer of that status, behind which the connection is closed.
[[nodiscard]] std::string refusalText(int status);
} // namespace cash
