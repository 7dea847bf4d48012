// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "trial.h"

#include <thread>

namespace conformance {
void Trial::situation(const std::string &name)
{
    m_situation = name;
    m_evidence.clear();
}

Exchange Trial::send(const Request &request)
{
    return sendText(request.operation, request.xml());
}

Exchange Trial::sendText(const std::string &operation, const std::string &document)
{
    Exchange exchange = m_bench.post(operation, document);
    look(exchange);
    return exchange;
}

void Trial::look(const Exchange &exchange)
{
    m_evidence.push_back(m_bench.wire().curlLine(exchange));
}

void Trial::sendAtOnce(const Request &request, int times)
{
    const std::string document = request.xml();
    std::vector<Exchange> exchanges(static_cast<std::size_t>(times));
    std::vector<std::thread> threads;
    threads.reserve(exchanges.size());
    for (Exchange &exchange : exchanges)
        threads.emplace_back([&] { exchange = m_bench.wire().post(request.operation, document); });
    for (std::thread &thread : threads)
        thread.join();
    for (const Exchange &exchange : exchanges) {
        look(exchange);
        expectSuccess(exchange);
    }
}

void Trial::expect(bool holds, const std::string &expected, const std::string &came)
{
    if (!holds)
        m_breaches.push_back({m_situation, expected, came, m_evidence});
}

void Trial::expectSuccess(const Exchange &exchange)
{
    expect(exchange.answer.isSuccess(), "a Response with ResultCode 1", exchange.summary());
}

void Trial::expectRefusal(const Exchange &exchange)
{
    expect(exchange.answer.isResponse && !exchange.answer.isSuccess(), "a Response with a ResultCode other than 1",
           exchange.summary());
}

long long Trial::amountSum()
{
    return send(m_bench.parkingCheck()).answer.amount("AmountSum");
}

long long Trial::totalCharge()
{
    return send(m_bench.parkingCheck()).answer.amount("TotalCharge");
}
} // namespace conformance
