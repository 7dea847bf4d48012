// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "handlerchildren.h"
#include "support/handlerbench.h"

#include <algorithm>

/// The cash service of a random walk: it answers when it is told to, now well, now badly, now not to the end.
class WalkService
{
public:
    WalkService()
    {
        use();
        m_server.planForAll(RawAnswer::held());
    }

    /// Lets the plugin's settings name it.
    void use() const { HandlerBench::useService(m_server.port()); }

    /// Answers one of the requests that wait for it, if any, and lets the plugin see it.
    void answer(const ParkomatPluginHandler &handler, unsigned which, unsigned how)
    {
        static const QList<RawAnswer> answers = {
            {RawAnswer::http("200 OK", "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"1\"/>")},
            {RawAnswer::http("200 OK", "<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"1\"/>")},
            {RawAnswer::http("200 OK", "<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"6\"/>")},
            {RawAnswer::http("200 OK", "no answer")},
            {RawAnswer::http("503 Service Unavailable", QByteArray())},
            {"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n<Response", RawAnswer::Then::Reset}};
        const QList<int> waiting = held();
        if (waiting.isEmpty())
            return;
        const int request = waiting.at(static_cast<int>(which) % waiting.size());
        const QList<QPointer<QNetworkReply>> before = unanswered(&handler);
        m_answered.append(request);
        m_server.send(m_server.requests().at(request).connection, answers.at(static_cast<int>(how) % answers.size()));
        const auto isOver = [](const QPointer<QNetworkReply> &reply) { return !reply || reply->isFinished(); };
        waitUntil([&before, isOver] { return std::any_of(before.cbegin(), before.cend(), isOver); });
    }

    /// Whether it has all the requests of a handler, which may be null, that Qt lets reach it.
    [[nodiscard]] bool hasAllOf(const ParkomatPluginHandler *handler) const
    {
        return handler != nullptr ? held().size() >= expectedOf(*handler) : m_server.openConnections() == 0;
    }

    [[nodiscard]] QString complaint() const { return m_server.complaint(); }

private:
    /// Requests that wait for an answer.
    [[nodiscard]] QList<int> held() const
    {
        QList<int> all;
        for (int i = 0; i < m_server.requests().size(); ++i) {
            if (!m_answered.contains(i) && m_server.isOpen(m_server.requests().at(i).connection))
                all.append(i);
        }
        return all;
    }
    [[nodiscard]] static int expectedOf(const ParkomatPluginHandler &handler)
    {
        // Qt opens so many connections to one service, and lets other requests wait for them.
        constexpr int mostConnections = 6;
        int sum = 0;
        for (const QNetworkAccessManager *manager : handler.findChildren<QNetworkAccessManager *>())
            sum += std::min(mostConnections, unanswered(manager).size());
        return sum;
    }

    RawServer m_server;
    QList<int> m_answered;
};
