// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checklist.h"

namespace conformance {
namespace {
using Change = std::function<Request(const Request &)>;

/// A check that both operations take a request with each of the changes.
Check bothTake(const std::string &name, const std::vector<Change> &changes)
{
    return {name, [changes](Trial &trial) {
                for (const Change &change : changes) {
                    for (const Request &request : {trial.bench().parkingCheck(), trial.bench().parkInfoPay()}) {
                        trial.situation(request.operation);
                        trial.takes(change(request));
                    }
                }
            }};
}

/// A check that both operations return a SessionId that begins with @a terminal as it was sent.
Check bothReturn(const std::string &name, const std::string &terminal)
{
    return {name, [terminal](Trial &trial) {
                for (const Request &request : {trial.bench().parkingCheck(), trial.bench().parkInfoPay()}) {
                    trial.situation(request.operation);
                    const std::string sent = trial.bench().newSessionId(terminal);
                    const Exchange exchange = trial.send(with(request, "SessionId", sent));
                    const std::string came = exchange.answer.field("SessionId").value_or("");
                    trial.expect(came == sent, "SessionId \"" + sent + "\"",
                                 exchange.summary() + ", SessionId \"" + came + "\"");
                }
            }};
}

Request withoutOffset(const Request &request)
{
    const Request changed = with(request, "RequestTime", Bench::localTime());
    return request.operation == "ParkInfoPay" ? with(changed, "DateTime", Bench::localTime()) : changed;
}

Change madeAt(const std::string &time)
{
    return [time](const Request &request) { return with(request, "RequestTime", time); };
}

/// The session identifier of a terminal with a number of fewer than four characters.
Change ofShortTerminal(const std::string &zeros)
{
    return [zeros](const Request &request) { return with(request, "SessionId", Bench::sessionId(zeros, 1)); };
}

void ask(Trial &trial)
{
    trial.takes(trial.bench().parkingCheck());
}

void pay(Trial &trial)
{
    trial.takes(trial.bench().parkInfoPay());
}

void payWithoutAsking(Trial &trial)
{
    trial.takes(with(trial.bench().parkInfoPay(), "TermId", trial.bench().payingTerminal()));
}

void askAfterPaying(Trial &trial)
{
    trial.takes(trial.bench().parkInfoPay());
    trial.takes(trial.bench().parkingCheck());
}

void payInTheSecondOfAsking(Trial &trial)
{
    const std::string id = trial.bench().newSessionId();
    trial.takes(with(trial.bench().parkingCheck(), "SessionId", id));
    trial.takes(with(trial.bench().parkInfoPay(), "SessionId", id));
}
} // namespace

Checklist goodRequestChecks()
{
    return {
        {"ParkingCheck of a card that owes succeeds", ask},
        {"ParkInfoPay for that card succeeds", pay},
        {"ParkInfoPay needs no ParkingCheck of that terminal before it", payWithoutAsking},
        {"ParkingCheck succeeds after a ParkInfoPay too", askAfterPaying},
        {"ParkInfoPay may have the SessionId of the ParkingCheck in the same second", payInTheSecondOfAsking},
        bothTake("A time stamp may have no offset", {withoutOffset}),
        bothTake("The terminal's clock and its offset are not judged",
                 {madeAt("2001-01-01T00:00:00+03:00"), madeAt("2099-12-31T23:59:59+03:00"),
                  madeAt(Bench::localTime() + "-09:30")}),
        bothTake("A SessionId may begin with one to four zeros for the terminal, and end in 001 each time",
                 {ofShortTerminal("0"), ofShortTerminal("00"), ofShortTerminal("000"), ofShortTerminal("0000")}),
        bothReturn("Requests are read as UTF-8: a SessionId with other letters comes back as it was sent", "Касса-7€"),
        bothReturn("A SessionId with characters that XML escapes comes back as it was sent", "<A&B>\"7'"),
    };
}
} // namespace conformance
