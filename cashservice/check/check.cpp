// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "check.h"

#include "checklist.h"

#include <csignal>
#include <ostream>

namespace conformance {
namespace {
// Cards of the seeded car park: one that owes, one that owes nothing, a blocked one, one under maintenance.
const char *const SEEDED_CARDS[] = {"78563412:000123456", "03000010:000000003", "04000010:000000004",
                                    "05000010:000000005"};

/// Thrown where the service cannot be tested; the text says what to do.
struct CannotTest
{
    std::string why;
};

ServiceUrl serviceUrl(const CheckOptions &options)
{
    const std::optional<ServiceUrl> url = readServiceUrl(options.url);
    if (!url)
        throw CannotTest{
            "\"" + options.url +
            "\" is no URL of a cash service: give http://HOST:PORT/PATH, what stands before /ParkingCheck"};
    return *url;
}

std::vector<Card> givenCards(const CheckOptions &options)
{
    std::vector<std::string> texts = options.cards;
    if (texts.empty())
        texts.assign(std::begin(SEEDED_CARDS), std::end(SEEDED_CARDS));
    std::vector<Card> cards;
    for (const std::string &text : texts) {
        const std::optional<Card> card = readCard(text);
        if (!card)
            throw CannotTest{
                "\"" + text +
                "\" is no card: give UID:ID, the UID as requests carry it, for example 78563412:000123456"};
        cards.push_back(*card);
    }
    return cards;
}

/// Takes the first of the cards that owes enough, whatever else is wrong with the answer.
void chooseCard(Bench &bench)
{
    std::string seen;
    for (const Card &card : bench.cards()) {
        const Exchange exchange = bench.post(bench.parkingCheck(card));
        const std::string url = bench.wire().urlOf("ParkingCheck");
        if (!exchange.failure.empty())
            throw CannotTest{"nothing answers at " + url + " (" + exchange.failure +
                             "): start the service, or correct the URL"};
        if (!exchange.answer.isResponse && exchange.status != 200)
            throw CannotTest{url + " answers HTTP " + std::to_string(exchange.status) +
                             ": correct the URL, it is what stands before /ParkingCheck"};
        const long long owed = exchange.answer.amount("TotalCharge");
        if (owed >= Bench::LEAST_CHARGE)
            return bench.setCard(card);
        seen += "\n  " + toString(card) + ": " + exchange.summary() + ", TotalCharge " + std::to_string(owed);
    }
    throw CannotTest{"no card owes at least " + std::to_string(Bench::LEAST_CHARGE) +
                     " hundredths: let one into the car park and name it with --card UID:ID" + seen};
}

Checklist allChecks(const CheckOptions &options)
{
    Checklist checks;
    for (const Checklist &part : {answerChecks(), goodRequestChecks(), badRequestChecks(), paymentChecks()})
        checks.insert(checks.end(), part.begin(), part.end());
    if (options.payInFull)
        checks.push_back(fullPaymentCheck());
    return checks;
}

void print(const Breach &breach, std::ostream &out)
{
    if (!breach.situation.empty())
        out << "        in:       " << breach.situation << '\n';
    out << "        expected: " << breach.expected << '\n' << "        came:     " << breach.came << '\n';
    for (const std::string &line : breach.curlLines)
        out << "        " << line << '\n';
}

/// @return whether it holds.
bool make(const Check &check, Bench &bench, std::ostream &out)
{
    Trial trial(bench);
    check.run(trial);
    out << (trial.breaches().empty() ? "holds   " : "breaks  ") << check.name << '\n';
    for (const Breach &breach : trial.breaches())
        print(breach, out);
    out.flush();
    return trial.breaches().empty();
}

int makeAll(const Checklist &checks, Bench &bench, std::ostream &out)
{
    std::size_t holding = 0;
    for (const Check &check : checks) {
        if (bench.isSilent())
            out << "breaks  " << check.name << "\n        not tried: the service has left off answering\n";
        else if (make(check, bench, out))
            ++holding;
    }
    out << "RESULT: " << holding << " of " << checks.size() << " checks hold" << std::endl;
    return holding == checks.size() ? ALL_HOLD : SOMETHING_BREAKS;
}
} // namespace
} // namespace conformance

int runCheck(const CheckOptions &options, std::ostream &out)
{
    using namespace conformance;
    // A service may close a connection that is being written to: that is an exchange without an answer, no reason to
    // die.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        Bench bench(serviceUrl(options), options, givenCards(options));
        chooseCard(bench);
        return makeAll(allChecks(options), bench, out);
    } catch (const CannotTest &reason) {
        out << "cannot test: " << reason.why << std::endl;
        return COULD_NOT_TEST;
    }
}

std::vector<std::string> checkNames(const CheckOptions &options)
{
    std::vector<std::string> names;
    for (const conformance::Check &check : conformance::allChecks(options))
        names.push_back(check.name);
    return names;
}
