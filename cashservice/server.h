// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "connection.h"
#include "service.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace cash {
/// Says which address cannot be listened on, and why.
class ListenError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Serves the protocol and /admin over HTTP: what a client sends wrongly on that level is answered with an HTTP status,
/// and no client waits for another.
class Server
{
public:
    /// @param path where the operations are: "/api", "api" and "/api/" are the same.
    Server(Service &service, std::string path, const Limits &limits = Limits());
    /// Stops it.
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Returns when clients can connect. @param port 0: a free one. @throw ListenError
    void start(const std::string &host, int port);
    /// Returns when the exchanges that were under way have ended; delays are cut short.
    void stop();

    [[nodiscard]] int port() const;
    /// "http://127.0.0.1:13006/api"
    [[nodiscard]] std::string url() const;

private:
    class Http;

    std::unique_ptr<Http> m_http;
};
} // namespace cash
