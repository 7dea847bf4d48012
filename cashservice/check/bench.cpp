// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <utility>

namespace conformance {
namespace {
std::string now(const char *format)
{
    const std::time_t moment = std::time(nullptr);
    std::tm parts = {};
    localtime_r(&moment, &parts);
    std::ostringstream text;
    text << std::put_time(&parts, format);
    return text.str();
}

/// As the terminal writes it: the offset with a colon, none where it is zero.
std::string timeStamp()
{
    std::string offset = now("%z").insert(3, ":");
    return Bench::localTime() + (offset == "+00:00" ? "" : offset);
}

/// Two that differ: those given, as far as they do.
std::vector<std::string> twoTerminals(const std::vector<std::string> &given)
{
    std::vector<std::string> candidates = given;
    candidates.insert(candidates.end(), {"0042", "0043"});
    const auto isOther = [&](const std::string &name) { return name != candidates.front(); };
    return {candidates.front(), *std::find_if(candidates.begin(), candidates.end(), isOther)};
}
} // namespace

Bench::Bench(ServiceUrl url, const CheckOptions &options, std::vector<Card> cards)
    : m_wire(std::move(url), options.timeout), m_options(options), m_cards(std::move(cards)),
      m_terminals(twoTerminals(options.terminals))
{}

Card Bench::unknownCard()
{
    return {"EFBEADDE", "999999999"};
}

Exchange Bench::post(const Request &request)
{
    return post(request.operation, request.xml());
}

Exchange Bench::post(const std::string &operation, const std::string &document)
{
    Exchange exchange = m_wire.post(operation, document);
    m_unanswered = exchange.failure.empty() ? 0 : m_unanswered + 1;
    return exchange;
}

Request Bench::request(const char *operation, const Card &card)
{
    return {operation,
            {{"RecordVersion", "2", {}}, {"NumRequest", "1", {}}, {"Operation", operation, {}}},
            {"Request",
             {},
             {{"PartnerId", m_options.partner, {}},
              {"ParkingId", m_options.parking, {}},
              {"TermId", m_terminals.front(), {}},
              {"SessionId", newSessionId(), {}},
              {"CardUid", card.uid, {}},
              {"CardId", card.id, {}},
              {"RequestTime", timeStamp(), {}}}}};
}

Request Bench::parkingCheck(const Card &card)
{
    Request made = request("ParkingCheck", card);
    made.attributes.push_back({"ResultCode", "0", {}});
    return made;
}

Request Bench::parkInfoPay(const Card &card, long long amount)
{
    Request made = request("ParkInfoPay", card);
    const Node payment = {"Payment",
                          {},
                          {{"Uin", newUin(), {}},
                           {"DateTime", timeStamp(), {}},
                           {"Amount", std::to_string(amount), {}},
                           {"Type", "partial", {}}}};
    made.root.children.push_back({"Payments", {}, {payment}});
    return made;
}

std::string Bench::newSessionId()
{
    constexpr std::size_t SHORTEST = 4;
    const std::string &terminal = m_terminals.front();
    // So terminals do with a number that is too short.
    return newSessionId(terminal.size() < SHORTEST ? std::string(SHORTEST - terminal.size(), '0') : terminal);
}

std::string Bench::newSessionId(const std::string &terminal)
{
    return sessionId(terminal, ++m_counter);
}

std::string Bench::sessionId(const std::string &terminal, int number)
{
    char digits[16];
    std::snprintf(digits, sizeof(digits), "%03d", number);
    return terminal + now("%y%H%M%S%j") + digits;
}

std::string Bench::localTime()
{
    return now("%Y-%m-%dT%H:%M:%S");
}

std::string Bench::newUin()
{
    using std::chrono::microseconds;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto ticks = std::chrono::duration_cast<microseconds>(sinceEpoch).count();
    return std::to_string(ticks * 1000 + ++m_counter % 1000);
}

const std::vector<Exchange> &Bench::samples()
{
    if (!m_samples.empty())
        return m_samples;
    for (const Card &card : m_cards)
        m_samples.push_back(post(parkingCheck(card)));
    for (const Card &card : {m_card, unknownCard()}) {
        m_samples.push_back(post(parkingCheck(card)));
        m_samples.push_back(post(parkInfoPay(card, AMOUNT)));
    }
    m_samples.push_back(post(without(parkingCheck(), "TermId")));
    m_samples.push_back(post(without(parkInfoPay(), "TermId")));
    return m_samples;
}
} // namespace conformance
