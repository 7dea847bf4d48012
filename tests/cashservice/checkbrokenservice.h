// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

#include <functional>
#include <string>
#include <thread>

/// A cash service that does what it is told by the real one behind it, but for one thing: it changes a request, an
/// answer, or answers by itself.
class BrokenService
{
public:
    struct Post
    {
        std::string operation;
        std::string body;
    };
    struct Reply
    {
        int status = 200;
        std::string contentType;
        std::string body;
    };
    using Forward = std::function<Reply(const Post &)>;
    /// May be called by several threads at once.
    using Behaviour = std::function<Reply(const Post &, const Forward &)>;

    /// @param origin of the real one: http://HOST:PORT.
    BrokenService(const std::string &origin, Behaviour behaviour);
    ~BrokenService();
    BrokenService(const BrokenService &) = delete;
    BrokenService &operator=(const BrokenService &) = delete;

    /// From the next connection on nothing answers.
    void stop() { m_server.stop(); }
    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(m_port) + "/api"; }

private:
    [[nodiscard]] Reply forward(const Post &post) const;

    std::string m_origin;
    Behaviour m_behaviour;
    httplib::Server m_server;
    int m_port = 0;
    std::thread m_thread;
};

inline BrokenService::BrokenService(const std::string &origin, Behaviour behaviour)
    : m_origin(origin), m_behaviour(std::move(behaviour))
{
    m_server.set_tcp_nodelay(true);
    m_server.Post("/api/(.*)", [this](const httplib::Request &request, httplib::Response &response) {
        const Reply reply =
            m_behaviour({request.matches[1].str(), request.body}, [this](const Post &post) { return forward(post); });
        response.status = reply.status;
        response.set_content(reply.body, reply.contentType);
    });
    m_port = m_server.bind_to_any_port("127.0.0.1");
    m_thread = std::thread([this] { m_server.listen_after_bind(); });
}

inline BrokenService::~BrokenService()
{
    m_server.stop();
    m_thread.join();
}

inline BrokenService::Reply BrokenService::forward(const Post &post) const
{
    httplib::Client client(m_origin);
    client.set_tcp_nodelay(true);
    const httplib::Result result = client.Post("/api/" + post.operation, post.body, "application/soap+xml");
    if (!result)
        return {502, "text/plain", httplib::to_string(result.error())};
    return {result->status, result->get_header_value("Content-Type"), result->body};
}
