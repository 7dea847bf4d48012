// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "server.h"

#include "acceptor.h"
#include "adminapi.h"
#include "text.h"

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

namespace cash {
namespace {
thread_local Connection *currentConnection = nullptr;

std::string normalised(std::string path)
{
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    if (!path.empty() && path.front() != '/')
        path.insert(path.begin(), '/');
    return path;
}

/// What is wrong with the one Content-Length that a request has. 0: nothing.
int trouble(const std::string &length, std::size_t limit)
{
    if (!areDigits(length))
        return 400;
    const std::optional<std::uint64_t> size = numberFromText<std::uint64_t>(length);
    return size && *size <= limit ? 0 : 413;
}

/// What makes it impossible to say where a request ends, or what its body is. 0: nothing.
int lengthTrouble(const httplib::Request &request, std::size_t limit)
{
    const std::size_t lengths = request.get_header_value_count("Content-Length");
    const std::size_t encodings = request.get_header_value_count("Transfer-Encoding");
    if (lengths > 1 || (lengths == 1 && encodings != 0))
        return 400;
    if (encodings > 1 || (encodings == 1 && inLowerCase(request.get_header_value("Transfer-Encoding")) != "chunked"))
        return 501;
    if (const int status = lengths == 0 ? 0 : trouble(request.get_header_value("Content-Length"), limit))
        return status;
    if (lengths == 0 && encodings == 0 && (request.method == "POST" || request.method == "PUT"))
        return 411;
    return request.has_header("Content-Encoding") ? 415 : 0;
}

/// Whether cpp-httplib has read all of a request before it asks for the answer.
bool isReadWhole(const httplib::Request &request)
{
    return request.method == "POST" || request.method == "PUT" ||
           (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"));
}

void explain(httplib::Response &response)
{
    response.set_content(statusText(response.status) + "\n", "text/plain");
}
} // namespace

class Server::Http : public httplib::Server
{
public:
    Http(Service &service, std::string path, const Limits &limits)
        : m_service(service), m_admin(service, m_journal), m_path(normalised(std::move(path))), m_limits(limits)
    {
        set_tcp_nodelay(true);
        // Without this the port of a service that has just ended could not be taken; cpp-httplib's own choice would
        // also let two services share a port without noticing.
        set_socket_options([](socket_t socket) {
            const int yes = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        });
        set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
            response.status = lengthTrouble(request, m_limits.body);
            if (response.status == 0) {
                response.status = -1;
                return HandlerResponse::Unhandled;
            }
            explain(response);
            return HandlerResponse::Handled;
        });
        // A client that asks before it sends a body is told at once what is wrong with its length.
        set_expect_100_continue_handler([this](const httplib::Request &request, httplib::Response &) {
            const int status = lengthTrouble(request, m_limits.body);
            if (status != 0)
                currentConnection->refuse(status);
            return status == 0 ? 100 : status;
        });
        set_post_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
            sayWhetherToGoOn(request, response);
        });
        // Without this cpp-httplib tells every client what was thrown.
        set_exception_handler([](const httplib::Request &, httplib::Response &response, const std::exception_ptr &) {
            response.status = 500;
            explain(response);
        });
        const auto handler = [this](const httplib::Request &request, httplib::Response &response) {
            route(request, response);
        };
        const std::string anyPath = "[^]*";
        Get(anyPath, handler).Post(anyPath, handler).Put(anyPath, handler).Patch(anyPath, handler);
        Delete(anyPath, handler).Options(anyPath, handler);
    }

    ~Http() override
    {
        end();
        ::close(m_stopping);
    }

    void begin(const std::string &host, int port)
    {
        errno = 0;
        m_port = port == 0 ? bind_to_any_port(host) : bind_to_port(host, port) ? port : -1;
        if (m_port <= 0) {
            const std::string reason = errno == 0 ? "there is no such address" : std::strerror(errno);
            throw ListenError("cannot listen on " + host + ":" + std::to_string(port) + ": " + reason);
        }
        m_host = host;
        // cpp-httplib keeps a queue of five; many clients that come at once would wait a second for their next try.
        ::listen(svr_sock_, SOMAXCONN);
        m_threads.emplace([this](int socket) { serve(socket); }, m_limits.idle);
        m_acceptor.emplace(svr_sock_, m_stopping, *m_threads);
    }

    void end()
    {
        eventfd_write(m_stopping, 1);
        {
            const std::lock_guard lock(m_waiting);
            m_isEnding = true;
        }
        m_ending.notify_all();
        m_acceptor.reset();
        const int listening = svr_sock_.exchange(INVALID_SOCKET);
        if (listening != INVALID_SOCKET)
            ::close(listening);
        m_threads.reset();
    }

    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] std::string url() const
    {
        const bool isV6 = m_host.find(':') != std::string::npos;
        return "http://" + (isV6 ? "[" + m_host + "]" : m_host) + ":" + std::to_string(m_port) + m_path;
    }

private:
    void serve(int socket)
    {
        Connection connection(socket, m_stopping, m_limits, m_journal);
        currentConnection = &connection;
        if (++m_connections > m_limits.connections)
            connection.refuse(503);
        while (!connection.isLast() && connection.awaitRequest()) {
            bool isClosed = false;
            const bool isGood = process_request(connection, false, isClosed, ignoreRanges);
            connection.flush();
            if (!isGood || isClosed)
                break;
        }
        connection.close();
        --m_connections;
    }

    /// An answer is sent whole: ranges are for documents, and cpp-httplib would cut any answer with them.
    static void ignoreRanges(httplib::Request &request) { request.ranges.clear(); }

    /// cpp-httplib promises every client its own defaults.
    void sayWhetherToGoOn(const httplib::Request &request, httplib::Response &response) const
    {
        response.headers.erase("Connection");
        response.headers.erase("Keep-Alive");
        const std::string wish = request.get_header_value("Connection");
        const bool isAskedToClose = wish == "close" || (request.version == "HTTP/1.0" && wish != "Keep-Alive");
        if (isAskedToClose || currentConnection->isLast())
            response.set_header("Connection", "close");
        else
            response.set_header("Keep-Alive", "timeout=" + std::to_string(idleSeconds()));
    }
    [[nodiscard]] std::int64_t idleSeconds() const
    {
        return std::chrono::duration_cast<std::chrono::seconds>(m_limits.idle).count();
    }

    void route(const httplib::Request &request, httplib::Response &response)
    {
        currentConnection->note();
        // What is left of a body must not be taken for the next request.
        if (isReadWhole(request))
            currentConnection->keepOpen();
        if (AdminApi::isPath(request.path)) {
            m_admin.answer(request, response);
            return;
        }
        const auto *const operation = std::find_if(OPERATIONS.begin(), OPERATIONS.end(), [&](Operation candidate) {
            return request.path == m_path + "/" + operationName(candidate);
        });
        response.status = operation == OPERATIONS.end() ? 404 : request.method == "POST" ? 200 : 405;
        if (response.status == 405)
            response.set_header("Allow", "POST");
        if (response.status == 200)
            answer(*operation, request, response);
        else
            explain(response);
    }

    void answer(Operation operation, const httplib::Request &request, httplib::Response &response)
    {
        const auto wait = [this](std::chrono::milliseconds duration) {
            std::unique_lock lock(m_waiting);
            m_ending.wait_for(lock, duration, [this] { return m_isEnding; });
        };
        const Reply reply = m_service.answer({operation, request.get_header_value("Content-Type"), request.body}, wait);
        response.status = reply.status;
        response.set_content(reply.body, CONTENT_TYPE);
    }

    Service &m_service;
    Journal m_journal;
    AdminApi m_admin;
    std::string m_path;
    Limits m_limits;
    std::string m_host;
    int m_port = 0;
    std::atomic<int> m_connections = 0;

    int m_stopping = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::mutex m_waiting;
    std::condition_variable m_ending;
    bool m_isEnding = false;

    std::optional<ConnectionThreads> m_threads;
    std::optional<Acceptor> m_acceptor;
};

Server::Server(Service &service, std::string path, const Limits &limits)
    : m_http(std::make_unique<Http>(service, std::move(path), limits))
{}

Server::~Server() = default;

void Server::start(const std::string &host, int port)
{
    m_http->begin(host, port);
}

void Server::stop()
{
    m_http->end();
}

int Server::port() const
{
    return m_http->port();
}

std::string Server::url() const
{
    return m_http->url();
}
} // namespace cash
