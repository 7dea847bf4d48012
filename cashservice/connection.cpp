// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "connection.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace cash {
namespace {
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds LINGER{1'000};

using NameOf = int (*)(int, sockaddr *, socklen_t *);

void addressOf(NameOf nameOf, int socket, std::string &ip, int &port)
{
    sockaddr_storage address = {};
    socklen_t length = sizeof address;
    std::array<char, INET6_ADDRSTRLEN> text = {};
    if (nameOf(socket, reinterpret_cast<sockaddr *>(&address), &length) != 0)
        return;
    if (address.ss_family == AF_INET) {
        const auto *const v4 = reinterpret_cast<const sockaddr_in *>(&address);
        inet_ntop(AF_INET, &v4->sin_addr, text.data(), text.size());
        port = ntohs(v4->sin_port);
    } else {
        const auto *const v6 = reinterpret_cast<const sockaddr_in6 *>(&address);
        inet_ntop(AF_INET6, &v6->sin6_addr, text.data(), text.size());
        port = ntohs(v6->sin6_port);
    }
    ip = text.data();
}
} // namespace

Connection::Connection(int socket, int stop, const Limits &limits, Journal &journal)
    : m_socket(socket), m_stop(stop), m_limits(limits), m_journal(journal)
{}

bool Connection::awaitRequest()
{
    m_request.clear();
    m_headSize = 0;
    m_number = 0;
    m_hasAnswered = false;
    if (m_begin == m_end && !fill(steady_clock::now() + m_limits.idle))
        return false;
    m_deadline = steady_clock::now() + m_limits.request;
    m_isLast = true;
    return true;
}

void Connection::keepOpen()
{
    m_isLast = !isHeadPlain();
}

/// Whether nobody can read other headers in it than cpp-httplib, which skips lines that do not end with CR LF and takes
/// blanks before a colon or at the start of a line for a part of the name.
bool Connection::isHeadPlain() const
{
    const std::string_view head = std::string_view(m_request).substr(0, m_headSize);
    std::size_t begin = head.find('\n') + 1;
    if (begin < 2 || head[begin - 2] != '\r')
        return false;
    while (begin + 2 < head.size()) {
        const std::size_t end = head.find('\n', begin);
        const std::string_view line = head.substr(begin, end - begin);
        const std::size_t blank = line.find_first_of(" \t");
        const std::size_t colon = line.find(':');
        if (line.back() != '\r' || colon == std::string_view::npos || blank < colon)
            return false;
        begin = end + 1;
    }
    return true;
}

void Connection::note()
{
    const std::string_view target = std::string_view(m_request).substr(std::min(m_request.find(' '), m_request.size()));
    constexpr std::string_view admin = " /admin";
    const bool isAdmin = target.substr(0, admin.size()) == admin && target.size() > admin.size() &&
                         std::string_view("/? ").find(target[admin.size()]) != std::string_view::npos;
    if (m_number == 0 && !isAdmin)
        m_number = m_journal.begin(m_request);
}

void Connection::refuse(int status)
{
    if (m_refusal == 0)
        m_refusal = status;
}

void Connection::close()
{
    if (isRefused() && !m_hasAnswered && !m_hasFailed) {
        m_answer = refusalText(m_refusal);
        note();
        flush();
    }
    if (!m_hasClientClosed) {
        shutdown(m_socket, SHUT_WR);
        drain();
    }
    ::close(m_socket);
}

/// A socket closed with unread bytes is reset, and the client may lose the answer that it has not read yet.
void Connection::drain()
{
    constexpr std::size_t most = 1024 * 1024;
    const Deadline deadline = steady_clock::now() + LINGER;
    std::size_t drained = 0;
    while (drained < most && wait(POLLIN, deadline, true)) {
        const ssize_t got = recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
        if (got <= 0)
            return;
        drained += static_cast<std::size_t>(got);
    }
}

bool Connection::is_readable() const
{
    return m_begin != m_end || wait(POLLIN, m_deadline, true);
}

bool Connection::is_writable() const
{
    return wait(POLLOUT, steady_clock::now() + m_limits.request, false);
}

ssize_t Connection::read(char *data, std::size_t size)
{
    if (isRefused() || m_hasFailed)
        return -1;
    if (m_begin == m_end && !fill(m_deadline)) {
        if (steady_clock::now() >= m_deadline)
            refuse(408);
        m_hasFailed = !isRefused();
        return isRefused() ? -1 : 0;
    }
    const std::size_t taken = std::min(size, m_end - m_begin);
    std::memcpy(data, m_buffer.data() + m_begin, taken);
    m_request.append(data, taken);
    m_begin += taken;
    return isWithinLimits(taken) ? static_cast<ssize_t>(taken) : -1;
}

/// @param size of what was appended to the request last.
bool Connection::isWithinLimits(std::size_t size)
{
    if (m_headSize == 0) {
        // cpp-httplib takes a head byte by byte: most of them end nothing.
        const std::size_t searched = m_request.size() - size;
        const bool canEnd = size > 1 || m_request.back() == '\n';
        const std::size_t end =
            canEnd ? m_request.find("\r\n\r\n", searched < 3 ? 0 : searched - 3) : std::string::npos;
        if (end != std::string::npos)
            m_headSize = end + 4;
        else if (m_request.size() > m_limits.head)
            refuse(431);
    }
    if (m_headSize > m_limits.head)
        refuse(431);
    if (m_headSize != 0 && m_request.size() - m_headSize > m_limits.body)
        refuse(413);
    return !isRefused();
}

ssize_t Connection::write(const char *data, std::size_t size)
{
    if (isRefused() && !m_hasAnswered)
        return static_cast<ssize_t>(size); // close() sends the answer that counts
    constexpr std::string_view goOn = "HTTP/1.1 100 ";
    if (std::string_view(data, size).substr(0, goOn.size()) != goOn) {
        note();
        m_hasAnswered = true;
    }
    m_answer.append(data, size);
    return static_cast<ssize_t>(size);
}

void Connection::flush()
{
    if (m_answer.empty())
        return;
    m_journal.addAnswer(m_number, m_answer);
    m_hasFailed = !send(m_answer) || m_hasFailed;
    m_answer.clear();
}

bool Connection::send(const std::string &bytes)
{
    const Deadline deadline = steady_clock::now() + m_limits.request;
    std::string_view left = bytes;
    while (!left.empty()) {
        const ssize_t sent = ::send(m_socket, left.data(), left.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0)
            left.remove_prefix(static_cast<std::size_t>(sent));
        else if (errno == EAGAIN ? !wait(POLLOUT, deadline, false) : errno != EINTR)
            return false;
    }
    return true;
}

bool Connection::fill(Deadline deadline)
{
    flush(); // the client may wait for it before it sends the rest, as with "Expect: 100-continue"
    while (wait(POLLIN, deadline, true)) {
        const ssize_t got = recv(m_socket, m_buffer.data(), m_buffer.size(), MSG_DONTWAIT);
        if (got < 0 && (errno == EAGAIN || errno == EINTR))
            continue;
        m_begin = 0;
        m_end = static_cast<std::size_t>(std::max<ssize_t>(got, 0));
        m_hasClientClosed = got <= 0;
        return got > 0;
    }
    return false;
}

/// @param untilStop whether the end of the service ends the waiting; else only a socket that is not ready does.
bool Connection::wait(short events, Deadline deadline, bool untilStop) const
{
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
        std::array<pollfd, 2> polled = {{{m_socket, events, 0}, {m_stop, POLLIN, 0}}};
        const int ready = poll(polled.data(), polled.size(), static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready < 0 && errno == EINTR)
            continue;
        const bool isStopping = polled[1].revents != 0;
        return ready > 0 && !(isStopping && (untilStop || polled[0].revents == 0));
    }
}

void Connection::get_remote_ip_and_port(std::string &ip, int &port) const
{
    addressOf(getpeername, m_socket, ip, port);
}

void Connection::get_local_ip_and_port(std::string &ip, int &port) const
{
    addressOf(getsockname, m_socket, ip, port);
}

std::string refusalText(int status)
{
    const std::string text = statusText(status) + "\n";
    return "HTTP/1.1 " + statusText(status) +
           "\r\nConnection: close\r\nContent-Type: text/plain\r\nContent-Length: " + std::to_string(text.size()) +
           "\r\n\r\n" + text;
}

std::string statusText(int status)
{
    const char *reason = "Error";
    switch (status) {
    case 400:
        reason = "Bad Request";
        break;
    case 403:
        reason = "Forbidden";
        break;
    case 404:
        reason = "Not Found";
        break;
    case 405:
        reason = "Method Not Allowed";
        break;
    case 408:
        reason = "Request Timeout";
        break;
    case 411:
        reason = "Length Required";
        break;
    case 413:
        reason = "Payload Too Large";
        break;
    case 415:
        reason = "Unsupported Media Type";
        break;
    case 431:
        reason = "Request Header Fields Too Large";
        break;
    case 500:
        reason = "Internal Server Error";
        break;
    case 501:
        reason = "Not Implemented";
        break;
    case 503:
        reason = "Service Unavailable";
        break;
    default:
        break;
    }
    return std::to_string(status) + " " + reason;
}
} // namespace cash
