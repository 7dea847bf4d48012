// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "card.h"
#include "check.h"
#include "request.h"
#include "wire.h"

#include <string>
#include <vector>

namespace conformance {
/// The service under test and what it is asked with: makes good requests, each new, and keeps the answers that the
/// checks of every answer's form look at.
class Bench
{
public:
    /// In hundredths: small, so that many of them do not pay what the card owes.
    static constexpr long long AMOUNT = 3;
    static constexpr long long OTHER_AMOUNT = 5;
    /// What the card must owe at least for all the payments of a run.
    static constexpr long long LEAST_CHARGE = 500;

    Bench(ServiceUrl url, const CheckOptions &options, std::vector<Card> cards);

    [[nodiscard]] const Wire &wire() const { return m_wire; }
    [[nodiscard]] const std::vector<Card> &cards() const { return m_cards; }
    /// The card that owes; set once it is known.
    [[nodiscard]] const Card &card() const { return m_card; }
    void setCard(const Card &card) { m_card = card; }
    /// A card of no car park.
    [[nodiscard]] static Card unknownCard();

    [[nodiscard]] Exchange post(const Request &request);
    [[nodiscard]] Exchange post(const std::string &operation, const std::string &document);
    [[nodiscard]] Request parkingCheck() { return parkingCheck(m_card); }
    [[nodiscard]] Request parkingCheck(const Card &card);
    [[nodiscard]] Request parkInfoPay() { return parkInfoPay(m_card, AMOUNT); }
    [[nodiscard]] Request parkInfoPay(const Card &card, long long amount);
    /// A good session identifier of the terminal that asks.
    [[nodiscard]] std::string newSessionId();
    /// One whose first part, the terminal's number, is @a terminal.
    [[nodiscard]] std::string newSessionId(const std::string &terminal);
    /// The same with a number that is not new: terminals repeat it.
    [[nodiscard]] static std::string sessionId(const std::string &terminal, int number);
    /// yyyy-MM-ddTHH:mm:ss.
    [[nodiscard]] static std::string localTime();
    /// A payment's number that no run has used.
    [[nodiscard]] std::string newUin();
    /// The TermId of a terminal that never asks, only pays.
    [[nodiscard]] const std::string &payingTerminal() const { return m_terminals.back(); }

    /// Answers of each kind: successes and refusals of both operations, and of each card.
    [[nodiscard]] const std::vector<Exchange> &samples();
    /// Whether the service has left off answering.
    [[nodiscard]] bool isSilent() const { return m_unanswered >= MOST_UNANSWERED; }

private:
    static constexpr int MOST_UNANSWERED = 3;

    [[nodiscard]] Request request(const char *operation, const Card &card);

    Wire m_wire;
    CheckOptions m_options;
    std::vector<Card> m_cards;
    std::vector<std::string> m_terminals;
    Card m_card;
    std::vector<Exchange> m_samples;
    int m_counter = 0;
    int m_unanswered = 0;
};
} // namespace conformance
