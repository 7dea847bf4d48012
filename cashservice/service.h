// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "carpark.h"
#include "fault.h"
#include "ledger.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cash {
/// A request as HTTP brought it.
struct Incoming
{
    Operation operation = Operation::ParkingCheck;
    std::string contentType;
    std::string body;
};

/// What HTTP is to send back.
struct Reply
{
    int status = 200;
    std::string body;
};

/// What the service says about a card, for /admin.
struct Session
{
    Card card;
    Hundredths paid = 0;
    Hundredths owed = 0;
};

/// A result code other than 1, and its text.
struct Refusal
{
    int code = 0;
    const char *text = "";
};

constexpr char CONTENT_TYPE[] = "application/soap+xml";

/// Answers the protocol's two operations: judges the request, looks up the card, asks the tariff, records the payment.
/// Safe to use from any thread; knows nothing of sockets.
class Service
{
public:
    /// Returns when so much time has passed, or earlier when the service is to end.
    using Wait = std::function<void(std::chrono::milliseconds)>;

    Service(CarPark park, Ledger &ledger, Clock clock);

    [[nodiscard]] Reply answer(const Incoming &incoming, const Wait &wait);

    [[nodiscard]] FaultBook &faults() { return m_faults; }
    [[nodiscard]] const Ledger &ledger() const { return m_ledger; }
    [[nodiscard]] std::vector<Session> sessions() const;

private:
    /// An answer on its way: the text is set where it must be sent byte for byte.
    struct Composed
    {
        Composed() = default;
        explicit Composed(Answer composed) : answer(std::move(composed)) {}
        explicit Composed(std::string text) : xml(std::move(text)) {}

        Answer answer;
        std::string xml;
        /// What could be answered for another card too: not what breaks the protocol.
        std::optional<Request> request;
        std::chrono::milliseconds answerAfter{0};
    };

    [[nodiscard]] Composed compose(const Incoming &incoming, bool mayRecord);
    [[nodiscard]] Composed composeUnlessBroken(const Request &request, const Card *card, bool mayRecord);
    [[nodiscard]] Composed composeFor(const Request &request, const Card *card, bool mayRecord);
    [[nodiscard]] Registration registerPayment(const Request &request, const Card &card);
    [[nodiscard]] Composed registered(const Request &request, Registration registration) const;
    void mixUpCards(Composed &composed, const std::vector<Fault> &faults) const;

    [[nodiscard]] Answer answerFor(const Request &request, const Card *card) const;
    [[nodiscard]] Answer failure(const Request &request, const Refusal &refusal) const;
    [[nodiscard]] Answer failure(Operation operation, const std::string &sessionId, int code,
                                 const std::string &text) const;
    [[nodiscard]] Answer checkAnswer(const Request &request, const Card &card, const Stay &stay) const;
    [[nodiscard]] Answer payAnswer(const Request &request, const Card &card, const Stay &stay) const;
    [[nodiscard]] Hundredths paidFor(const Card &card, const Stay &stay) const;
    [[nodiscard]] Hundredths owedFor(const Card &card, const Stay &stay) const;

    CarPark m_park;
    Ledger &m_ledger;
    Clock m_clock;
    FaultBook m_faults;
};
} // namespace cash
