// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "service.h"

#include "text.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace cash {
namespace {
constexpr Refusal MALFORMED = {0, "Неверный запрос: CardUid"};
constexpr Refusal NO_CARD = {2, "Карта не найдена"};
constexpr Refusal NOTHING_OWED = {3, "Парковка уже оплачена"};
constexpr Refusal BLOCKED = {4, "Карта заблокирована"};
constexpr Refusal UNAVAILABLE = {5, "Сервис временно недоступен"};
constexpr Refusal OTHER_AMOUNT = {6, "Платёж уже зарегистрирован с другой суммой"};
constexpr Refusal OTHER_CARD = {6, "Платёж уже зарегистрирован за другую карту"};
constexpr Refusal OTHER_CARD_AND_AMOUNT = {6, "Платёж уже зарегистрирован за другую карту и с другой суммой"};

std::optional<Refusal> refusalOf(const Card *card, Operation operation)
{
    if (card == nullptr)
        return NO_CARD;
    switch (card->state) {
    case CardState::Malformed:
        return MALFORMED;
    case CardState::Unknown:
        return NO_CARD;
    case CardState::Paid:
        return NOTHING_OWED;
    case CardState::Blocked:
        return BLOCKED;
    case CardState::Maintenance:
        return UNAVAILABLE;
    case CardState::Conflict:
        return operation == Operation::ParkInfoPay ? std::optional(OTHER_AMOUNT) : std::nullopt;
    case CardState::Parked:
        break;
    }
    return std::nullopt;
}

std::optional<Refusal> refusalOf(Registration::Outcome outcome)
{
    switch (outcome) {
    case Registration::Outcome::Registered:
    case Registration::Outcome::Repeated:
        break;
    case Registration::Outcome::OtherAmount:
        return OTHER_AMOUNT;
    case Registration::Outcome::OtherCard:
        return OTHER_CARD;
    case Registration::Outcome::OtherCardAndAmount:
        return OTHER_CARD_AND_AMOUNT;
    }
    return std::nullopt;
}

std::chrono::milliseconds timeOf(const Card *card)
{
    return card == nullptr ? std::chrono::milliseconds(0) : card->answerAfter;
}

/// Upper and lower case are the same; parameters, and blanks before them, do not count.
bool isContentTypeRight(std::string_view contentType)
{
    std::string type(contentType.substr(0, contentType.find(';')));
    type.erase(type.find_last_not_of(" \t") + 1);
    return inLowerCase(type) == CONTENT_TYPE;
}

Answer::Texts attributes(Operation operation, int resultCode)
{
    return {{"Operation", operationName(operation) + "Response"}, {"ResultCode", std::to_string(resultCode)}};
}

void waitFor(const std::vector<Fault> &faults, Stage stage, const Service::Wait &wait)
{
    for (const Fault &fault : faults) {
        if (fault.action == Fault::Action::Delay && fault.stage == stage)
            wait(fault.delay);
    }
}

/// A delay before the payment is recorded only delays; every other fault of that stage comes in its place.
bool preventsRecord(const Fault &fault)
{
    return fault.stage == Stage::Before && fault.action != Fault::Action::Delay;
}

Reply spoiled(Answer answer, const std::vector<Fault> &faults)
{
    Encoding encoding = Encoding::Utf8;
    for (const Fault &fault : faults) {
        if (fault.action == Fault::Action::Status)
            return {fault.number, std::string()};
        if (fault.action == Fault::Action::Empty)
            return {200, std::string()};
        if (fault.action == Fault::Action::Encoding)
            encoding = fault.encoding;
        else
            spoil(answer, fault);
    }
    return {200, toXml(answer, encoding)};
}
} // namespace

Service::Service(CarPark park, Ledger &ledger, Clock clock)
    : m_park(std::move(park)), m_ledger(ledger), m_clock(std::move(clock))
{}

Reply Service::answer(const Incoming &incoming, const Wait &wait)
{
    const std::vector<Fault> faults = m_faults.strike(incoming.operation);
    waitFor(faults, Stage::Before, wait);
    Composed composed = compose(incoming, std::none_of(faults.begin(), faults.end(), preventsRecord));
    mixUpCards(composed, faults);
    if (composed.answerAfter.count() > 0)
        wait(composed.answerAfter);
    waitFor(faults, Stage::After, wait);
    const auto onlyDelays = [](const Fault &fault) { return fault.action == Fault::Action::Delay; };
    if (composed.xml.empty())
        return spoiled(std::move(composed.answer), faults);
    if (std::all_of(faults.begin(), faults.end(), onlyDelays))
        return {200, composed.xml};
    return spoiled(answerFromXml(composed.xml), faults);
}

std::vector<Session> Service::sessions() const
{
    std::vector<Session> sessions;
    for (const auto &[uid, card] : m_park.cards) {
        const Stay stay = m_ledger.stay(card.stayId());
        sessions.push_back({card, paidFor(card, stay), owedFor(card, stay)});
    }
    return sessions;
}

Service::Composed Service::compose(const Incoming &incoming, bool mayRecord)
{
    const Operation operation = incoming.operation;
    if (!isContentTypeRight(incoming.contentType))
        return Composed(
            failure(operation, "", 0, std::string("Неверный запрос: Content-Type: ожидается ") + CONTENT_TYPE));
    const std::variant<Request, Breach> read = readRequest(operation, incoming.body);
    if (const auto *const breach = std::get_if<Breach>(&read))
        return Composed(
            failure(operation, breach->sessionId, 0, "Неверный запрос: " + breach->field + ": " + breach->reason));
    const Request &request = std::get<Request>(read);
    const Card *const card = m_park.find(request.cardUid);
    Composed composed = composeUnlessBroken(request, card, mayRecord);
    composed.answerAfter = timeOf(card);
    return composed;
}

Service::Composed Service::composeUnlessBroken(const Request &request, const Card *card, bool mayRecord)
{
    try {
        Composed composed = composeFor(request, card, mayRecord);
        composed.request = request;
        return composed;
    } catch (const DatabaseError &error) {
        std::cerr << "cash-service: the database cannot be used: " << error.what() << std::endl;
        return Composed(failure(request, UNAVAILABLE));
    }
}

Service::Composed Service::composeFor(const Request &request, const Card *card, bool mayRecord)
{
    if (request.operation == Operation::ParkingCheck)
        return Composed(answerFor(request, card));
    if (mayRecord && !refusalOf(card, request.operation))
        return registered(request, registerPayment(request, *card));
    // What was once registered stays so, whatever has become of the card and whatever goes wrong now.
    if (std::optional<Registration> known = m_ledger.registerAgain(request, m_clock()))
        return registered(request, *std::move(known));
    return Composed(answerFor(request, card));
}

/// Money that a terminal has taken is recorded whatever is owed by now.
Registration Service::registerPayment(const Request &request, const Card &card)
{
    Payment payment{request, card.stayId(), m_clock(), {}};
    payment.answer = [&](const Stay &stay) { return toXml(payAnswer(request, card, stay)); };
    return m_ledger.registerPayment(payment);
}

Service::Composed Service::registered(const Request &request, Registration registration) const
{
    if (const std::optional<Refusal> refusal = refusalOf(registration.outcome))
        return Composed(failure(request, *refusal));
    return Composed(std::move(registration.answer));
}

/// Answers as for another card, in its time.
void Service::mixUpCards(Composed &composed, const std::vector<Fault> &faults) const
{
    if (!composed.request)
        return;
    for (const Fault &fault : faults) {
        if (fault.action != Fault::Action::Card)
            continue;
        const Card *const card = m_park.find(wireUid(uidFromText(fault.name).value_or(0)));
        composed.answer = answerFor(*composed.request, card);
        composed.xml.clear();
        composed.answerAfter = timeOf(card);
    }
}

/// Records nothing: a payment is answered as if it were recorded.
Answer Service::answerFor(const Request &request, const Card *card) const
{
    if (const std::optional<Refusal> refusal = refusalOf(card, request.operation))
        return failure(request, *refusal);
    const Stay stay = m_ledger.stay(card->stayId());
    if (request.operation == Operation::ParkInfoPay)
        return payAnswer(request, *card, {sum(stay.paid, request.amount), {}});
    return owedFor(*card, stay) <= 0 ? failure(request, NOTHING_OWED) : checkAnswer(request, *card, stay);
}

Answer Service::failure(const Request &request, const Refusal &refusal) const
{
    return failure(request.operation, request.sessionId, refusal.code, refusal.text);
}

Answer Service::failure(Operation operation, const std::string &sessionId, int code, const std::string &text) const
{
    return {attributes(operation, code),
            {{"SessionId", sessionId}, {"AnswerTime", localText(m_clock())}, {"ErrorInfo", text}}};
}

Answer Service::checkAnswer(const Request &request, const Card &card, const Stay &stay) const
{
    const Moment now = m_clock();
    return {attributes(request.operation, 1),
            {{"SessionId", request.sessionId},
             {"ExternalSessionId", card.stayId()},
             {"ParkingId", m_park.parkingId},
             {"StartTime", localText(card.entered)},
             {"AnticipatedStopTime", localText(m_park.tariff.coveredByCharge(card.entered, now))},
             {"LastChangeTime", localText(std::max(card.entered, stay.lastPayment.value_or(card.entered)))},
             {"TotalCharge", std::to_string(owedFor(card, stay))},
             {"AmountSum", std::to_string(paidFor(card, stay))},
             {"CanExtend", "1"},
             {"CanStop", "0"},
             {"AnswerTime", localText(now)},
             {"ErrorInfo", ""}}};
}

Answer Service::payAnswer(const Request &request, const Card &card, const Stay &stay) const
{
    return {attributes(request.operation, 1),
            {{"PartnerId", request.partnerId},
             {"SessionId", request.sessionId},
             {"ExternalSessionId", card.stayId()},
             {"AnticipatedStopTime", localText(m_park.tariff.coveredBy(card.entered, paidFor(card, stay)))},
             {"AnswerTime", localText(m_clock())},
             {"ErrorInfo", ""}}};
}

Hundredths Service::paidFor(const Card &card, const Stay &stay) const
{
    return sum(card.paid, stay.paid);
}

Hundredths Service::owedFor(const Card &card, const Stay &stay) const
{
    return difference(m_park.tariff.charge(card.entered, m_clock()), paidFor(card, stay));
}
} // namespace cash
