// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checklist.h"

#include <algorithm>

namespace conformance {
namespace {
constexpr long long AMOUNT = Bench::AMOUNT;

std::string signedText(long long amount)
{
    return (amount < 0 ? "" : "+") + std::to_string(amount);
}

/// What AmountSum grows by while something is done.
template <typename Action>
long long growth(Trial &trial, const Action &action)
{
    const long long before = trial.amountSum();
    action();
    return trial.amountSum() - before;
}

void expectGrowth(Trial &trial, long long came, long long expected)
{
    trial.expect(came == expected, "AmountSum " + signedText(expected), "AmountSum " + signedText(came));
}

/// A payment that is not seen at all is another check's.
void expectNoMore(Trial &trial, long long came, long long most)
{
    trial.expect(came <= most, "AmountSum " + signedText(most), "AmountSum " + signedText(came));
}

void amountSumGrows(Trial &trial)
{
    const long long came = growth(trial, [&] { trial.takes(trial.bench().parkInfoPay()); });
    expectGrowth(trial, came, AMOUNT);
}

void expectFall(Trial &trial)
{
    const long long before = trial.totalCharge();
    trial.takes(trial.bench().parkInfoPay());
    const long long after = trial.totalCharge();
    trial.expect(before - after == AMOUNT, "TotalCharge " + signedText(-AMOUNT),
                 "TotalCharge " + signedText(after - before));
}

/// What is owed may rise at that very moment, but not twice within seconds.
void totalChargeFalls(Trial &trial)
{
    expectFall(trial);
    if (trial.breaches().empty())
        return;
    trial.forgetBreaches();
    trial.situation("at the second try");
    expectFall(trial);
}

void askingRegistersNothing(Trial &trial)
{
    const long long came = growth(trial, [&] { trial.takes(trial.bench().parkingCheck()); });
    expectGrowth(trial, came, 0);
}

void twiceIsOne(Trial &trial)
{
    const Request payment = trial.bench().parkInfoPay();
    const long long came = growth(trial, [&] {
        trial.takes(payment);
        trial.send(payment);
    });
    expectNoMore(trial, came, AMOUNT);
}

/// What an answer says, but for the time of the answer itself.
std::string content(const Answer &answer)
{
    std::vector<std::string> lines = {"ResultCode " + answer.attribute("ResultCode").value_or("")};
    for (const Field &field : answer.fields) {
        if (field.name != "AnswerTime")
            lines.push_back(field.name + " \"" + field.text + "\"");
    }
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string &line : lines)
        text += (text.empty() ? "" : ", ") + line;
    return text;
}

void twiceIsAnsweredTheSame(Trial &trial)
{
    const Request payment = trial.bench().parkInfoPay();
    const std::string first = content(trial.send(payment).answer);
    const std::string second = content(trial.send(payment).answer);
    trial.expect(first == second, "as at first: " + first, second);
}

void atOnceIsOne(Trial &trial)
{
    constexpr int TIMES = 4;
    const Request payment = trial.bench().parkInfoPay();
    const long long came = growth(trial, [&] { trial.sendAtOnce(payment, TIMES); });
    expectNoMore(trial, came, AMOUNT);
}

void keyDecides(Trial &trial)
{
    const Request payment = trial.bench().parkInfoPay();
    const Request later = with(payment, "RequestTime", "2099-12-31T23:59:59+03:00");
    const long long came = growth(trial, [&] {
        trial.takes(payment);
        trial.send(later);
    });
    expectNoMore(trial, came, AMOUNT);
}

Request ofOtherAmount(const Request &payment)
{
    return with(payment, "Amount", std::to_string(Bench::OTHER_AMOUNT));
}

void otherAmountIsRefused(Trial &trial)
{
    const Request payment = trial.bench().parkInfoPay();
    trial.takes(payment);
    trial.refuses(ofOtherAmount(payment));
}

void otherAmountChangesNothing(Trial &trial)
{
    const Request payment = trial.bench().parkInfoPay();
    const long long came = growth(trial, [&] {
        trial.takes(payment);
        trial.send(ofOtherAmount(payment));
    });
    trial.expect(came == 0 || came == AMOUNT, "AmountSum " + signedText(AMOUNT), "AmountSum " + signedText(came));
    trial.takes(payment);
}

/// A check that a payment with one part of the key changed is another payment.
Check isAnother(const std::string &name, const std::string &element, std::string (*other)(Bench &))
{
    return {name, [=](Trial &trial) {
                const Request payment = trial.bench().parkInfoPay();
                const long long came = growth(trial, [&] {
                    trial.takes(payment);
                    trial.takes(with(payment, element, other(trial.bench())));
                });
                expectGrowth(trial, came, 2 * AMOUNT);
            }};
}

void fullPaymentSettles(Trial &trial)
{
    const Request payment = trial.bench().parkInfoPay(trial.bench().card(), trial.totalCharge());
    trial.takes(with(payment, "Type", "full"));
    const Exchange after = trial.send(trial.bench().parkingCheck());
    trial.expect(!after.answer.isSuccess() || after.answer.amount("TotalCharge") == 0,
                 "a refusal, or a TotalCharge of 0",
                 after.summary() + ", TotalCharge " + std::to_string(after.answer.amount("TotalCharge")));
}
} // namespace

Checklist paymentChecks()
{
    return {
        {"AmountSum grows by what is registered", amountSumGrows},
        {"TotalCharge falls by what is registered", totalChargeFalls},
        {"ParkingCheck registers nothing", askingRegistersNothing},
        {"The same TermId, SessionId and Uin twice are one payment", twiceIsOne},
        {"The second time is answered as the first", twiceIsAnsweredTheSame},
        {"The same payment on four connections at once is one payment, confirmed on each", atOnceIsOne},
        {"A payment sent again with a later RequestTime is still the same", keyDecides},
        {"Another amount under the same TermId, SessionId and Uin is refused", otherAmountIsRefused},
        {"After that refusal the payment stands as it was, and is confirmed again", otherAmountChangesNothing},
        isAnother("With another Uin it is another payment", "Uin", [](Bench &bench) { return bench.newUin(); }),
        isAnother("With another SessionId it is another payment", "SessionId",
                  [](Bench &bench) { return bench.newSessionId(); }),
        isAnother("With another TermId it is another payment", "TermId",
                  [](Bench &bench) { return bench.payingTerminal(); }),
    };
}

Check fullPaymentCheck()
{
    return {"After a payment of all that is owed nothing is owed", fullPaymentSettles};
}
} // namespace conformance
