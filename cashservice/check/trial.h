// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "bench.h"

#include <string>
#include <vector>

namespace conformance {
struct Breach
{
    std::string situation; ///< which one of the check's, empty if it has but one
    std::string expected;
    std::string came;
    std::vector<std::string> curlLines; ///< what was sent in that situation
};

/// One check being made: sends its requests, judges what comes and notes what breaks.
class Trial
{
public:
    explicit Trial(Bench &bench) : m_bench(bench) {}

    [[nodiscard]] Bench &bench() const { return m_bench; }
    [[nodiscard]] const std::vector<Breach> &breaches() const { return m_breaches; }

    /// Begins anew: what was sent before has nothing to do with what comes.
    void situation(const std::string &name);
    Exchange send(const Request &request);
    Exchange sendText(const std::string &operation, const std::string &document);
    /// Takes an exchange into the evidence that was made before.
    void look(const Exchange &exchange);
    /// Sends the same from several connections at once.
    void sendAtOnce(const Request &request, int times);

    void expect(bool holds, const std::string &expected, const std::string &came);
    void expectSuccess(const Exchange &exchange);
    void expectRefusal(const Exchange &exchange);
    void takes(const Request &request) { expectSuccess(send(request)); }
    void refuses(const Request &request) { expectRefusal(send(request)); }

    /// AmountSum of the card, by a ParkingCheck.
    [[nodiscard]] long long amountSum();
    [[nodiscard]] long long totalCharge();
    void forgetBreaches() { m_breaches.clear(); }

private:
    Bench &m_bench;
    std::string m_situation;
    std::vector<std::string> m_evidence;
    std::vector<Breach> m_breaches;
};
} // namespace conformance
