// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checklist.h"

#include <algorithm>
#include <iterator>

namespace conformance {
namespace {
using Strings = std::vector<std::string>;

const Strings HEADER = {"PartnerId", "ParkingId", "TermId", "SessionId", "CardUid", "CardId", "RequestTime"};
const Strings PAYMENT = {"Uin", "DateTime", "Amount", "Type"};

using Make = std::function<Request(Bench &)>;

Request parkingCheck(Bench &bench)
{
    return bench.parkingCheck();
}

Request parkInfoPay(Bench &bench)
{
    return bench.parkInfoPay();
}

const std::vector<Make> BOTH = {parkingCheck, parkInfoPay};
const std::vector<Make> PAYING = {parkInfoPay};

/// A request made wrong, and in what.
struct Wrong
{
    std::string situation;
    std::function<Request(const Request &)> made;
};

Check refuses(const std::string &name, const std::vector<Make> &makers, const std::vector<Wrong> &wrongs)
{
    return {name, [=](Trial &trial) {
                for (const Make &make : makers) {
                    for (const Wrong &wrong : wrongs) {
                        const Request request = wrong.made(make(trial.bench()));
                        trial.situation(request.operation + ", " + wrong.situation);
                        trial.refuses(request);
                    }
                }
            }};
}

std::string joined(const std::string &name, const std::string &what)
{
    return name + " " + what;
}

std::string joinedQuoted(const std::string &name, const std::string &text)
{
    return joined(name, "\"" + text + "\"");
}

std::vector<Wrong> each(const Strings &elements, const std::string &what,
                        Request (*change)(Request request, const std::string &element))
{
    std::vector<Wrong> wrongs;
    for (const std::string &element : elements)
        wrongs.push_back({joined(element, what), [=](const Request &request) { return change(request, element); }});
    return wrongs;
}

std::vector<Wrong> values(const std::string &element, const Strings &texts)
{
    std::vector<Wrong> wrongs;
    for (const std::string &text : texts) {
        wrongs.push_back(
            {joinedQuoted(element, text), [=](const Request &request) { return with(request, element, text); }});
    }
    return wrongs;
}

std::vector<Wrong> attributes(const std::string &attribute, const Strings &texts)
{
    std::vector<Wrong> wrongs = {
        {attribute + " missing", [=](const Request &request) { return withoutAttribute(request, attribute); }}};
    for (const std::string &text : texts) {
        wrongs.push_back({joinedQuoted(attribute, text),
                          [=](const Request &request) { return withAttribute(request, attribute, text); }});
    }
    return wrongs;
}

Strings wrongTimes()
{
    return {"",
            "+03:00",
            "07.03.2024 14:05:09",
            "2024-03-07 14:05:09",
            "2024-03-07T14:05",
            "2024-03-07T14:05:09+3",
            "2024-02-30T14:05:09"};
}

Strings wrongNumbers()
{
    return {"", "ten", "1e3", "0x10", "+3", "3.00", "3,00", "9223372036854775808"};
}

Wrong wrongRoot(const std::string &name)
{
    return {"root " + name, [name](Request request) {
                request.root.name = name;
                return request;
            }};
}

Wrong wrapped()
{
    return {"in a SOAP envelope", [](Request request) {
                const Node inner = request.root;
                request.root = {"Envelope", {}, {{"Body", {}, {inner}}}};
                return request;
            }};
}

Wrong withStranger()
{
    return {"an element Discount after the others", [](Request request) {
                request.root.children.push_back({"Discount", "0", {}});
                return request;
            }};
}

Wrong withoutPayment()
{
    return {"Payments without a Payment", [](const Request &request) { return without(request, "Payment"); }};
}

Wrong withTwoPayments()
{
    return {"two of them", [](const Request &request) { return withTwice(request, "Payment"); }};
}

/// The card's UID written otherwise than requests have it.
std::vector<Wrong> wrongUids()
{
    const auto changed = [](const std::string &situation, std::string (*change)(const std::string &uid)) {
        return Wrong{situation, [change](const Request &request) {
                         const auto isUid = [](const Node &element) { return element.name == "CardUid"; };
                         const auto &elements = request.root.children;
                         const auto uid = std::find_if(elements.begin(), elements.end(), isUid);
                         return with(request, "CardUid", change(uid->text));
                     }};
    };
    return {changed("the UID without its last digit", [](const std::string &uid) { return uid.substr(0, 7); }),
            changed("the UID with another digit", [](const std::string &uid) { return uid + "0"; }),
            changed("the UID with a blank in front", [](const std::string &uid) { return " " + uid; }),
            changed("the UID with 0x in front", [](const std::string &uid) { return "0x" + uid; }),
            changed("the UID with a G in it", [](const std::string &uid) { return "G" + uid.substr(1); })};
}

std::vector<Wrong> wrongSessionIds()
{
    // With digits alone some of these could be read as the identifier of a terminal with a shorter number.
    const std::string good = Bench::sessionId("T042", 1);
    std::vector<Wrong> wrongs = values("SessionId", {"", "1"});
    const auto add = [&](const std::string &situation, const std::string &id) {
        wrongs.push_back({situation, [id](const Request &request) { return with(request, "SessionId", id); }});
    };
    const auto replaced = [&](std::size_t at, const std::string &digits) {
        return std::string(good).replace(at, digits.size(), digits);
    };
    add("the SessionId without its last digit", good.substr(0, good.size() - 1));
    add("the SessionId without its first character", good.substr(1));
    add("the SessionId with a letter behind it", good + "x");
    add("the SessionId with 24 for the hour", replaced(6, "24"));
    add("the SessionId with 60 for the minute", replaced(8, "60"));
    add("the SessionId with 370 for the day", replaced(12, "370"));
    return wrongs;
}

void refusesWhatIsNoXml(Trial &trial)
{
    for (const Request &request : {trial.bench().parkingCheck(), trial.bench().parkInfoPay()}) {
        const std::string good = request.xml();
        const std::vector<std::pair<std::string, std::string>> texts = {
            {"an empty body", {}},
            {"a body that is no XML", "a payment, please"},
            {"a body cut off before its end", good.substr(0, good.find("</Request>"))},
            {"a body with a tag that is not closed", good.substr(0, good.find("</CardId>")) + "</Request>\n"}};
        for (const auto &[situation, text] : texts) {
            trial.situation(request.operation + ", " + situation);
            trial.expectRefusal(trial.sendText(request.operation, text));
        }
    }
}

/// 0xEA 0xE0 is Cyrillic in windows-1251 and nothing in UTF-8, which is what a request without a declaration is in.
void refusesWhatIsNotUtf8(Trial &trial)
{
    for (const Request &request : {trial.bench().parkingCheck(), trial.bench().parkInfoPay()}) {
        trial.situation(request.operation);
        trial.refuses(with(request, "PartnerId", "\xEA\xE0\xF1\xF1\xE0"));
    }
}

void knowsNoOtherOperation(Trial &trial)
{
    const Exchange exchange = trial.sendText("ParkingStop", trial.bench().parkingCheck().xml());
    trial.expect(exchange.failure.empty() && !exchange.answer.isSuccess(), "no success", exchange.summary());
}

/// Of both paths; what is right for one of them is the other's wrong.
void refusesAnotherOperation(Trial &trial)
{
    for (const Make &make : BOTH) {
        const std::string right = make(trial.bench()).operation;
        const std::string other = right == "ParkInfoPay" ? "ParkingCheck" : "ParkInfoPay";
        refuses({}, {make}, attributes("Operation", {other, "ParkingStop", ""})).run(trial);
    }
}

void refusesUnknownCard(Trial &trial)
{
    trial.refuses(trial.bench().parkingCheck(Bench::unknownCard()));
}

void refusesPaymentForUnknownCard(Trial &trial)
{
    trial.refuses(trial.bench().parkInfoPay(Bench::unknownCard(), Bench::AMOUNT));
}

void registersNothingRefused(Trial &trial)
{
    const long long before = trial.amountSum();
    trial.refuses(with(trial.bench().parkInfoPay(), "Type", "whole"));
    const long long after = trial.amountSum();
    trial.expect(after == before, "AmountSum " + std::to_string(before) + " as before",
                 "AmountSum " + std::to_string(after));
}

Strings operator+(Strings a, const Strings &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// All but the last: an element and the one after it change places.
Strings butLast(Strings elements)
{
    elements.pop_back();
    return elements;
}
} // namespace

// NumRequest and ResultCode of a request are not among these: what a service makes of them is its own business.
Checklist badRequestChecks()
{
    return {
        {"What is not XML is refused", refusesWhatIsNoXml},
        {"What is not UTF-8 is refused", refusesWhatIsNotUtf8},
        refuses("A document whose root is not Request is refused", BOTH,
                {wrongRoot("request"), wrongRoot("Response"), wrapped()}),
        {"An operation that there is not is no success", knowsNoOtherOperation},
        {"A document of another Operation than the path's is refused", refusesAnotherOperation},
        refuses("A RecordVersion other than 2 is refused", BOTH, attributes("RecordVersion", {"", "1", "3", "two"})),
        refuses("ParkingCheck without one of its elements is refused", {parkingCheck},
                each(HEADER, "missing", without)),
        refuses("ParkInfoPay without one of its elements is refused", PAYING,
                each(HEADER + PAYMENT + Strings{"Payments"}, "missing", without)),
        refuses("ParkingCheck with one of its elements twice is refused", {parkingCheck},
                each(HEADER, "twice", withTwice)),
        refuses("ParkInfoPay with one of its elements twice is refused", PAYING,
                each(HEADER + PAYMENT + Strings{"Payments"}, "twice", withTwice)),
        refuses("ParkingCheck with its elements in another order is refused", {parkingCheck},
                each(butLast(HEADER), "one place later", withLater)),
        refuses("ParkInfoPay with its elements in another order is refused", PAYING,
                each(HEADER + butLast(PAYMENT), "one place later", withLater)),
        refuses("A request with an element of another name is refused", BOTH, {withStranger()}),
        refuses("A malformed SessionId is refused", BOTH, wrongSessionIds()),
        refuses("A malformed CardUid is refused", BOTH, wrongUids()),
        refuses("A malformed RequestTime is refused", BOTH, values("RequestTime", wrongTimes())),
        refuses("A malformed Uin is refused", PAYING, values("Uin", wrongNumbers())),
        refuses("A malformed DateTime is refused", PAYING, values("DateTime", wrongTimes())),
        refuses("A malformed Amount is refused", PAYING, values("Amount", wrongNumbers())),
        refuses("A Type other than full and partial is refused", PAYING,
                values("Type", {"", "Full", "PARTIAL", "whole", "full "})),
        refuses("A ParkInfoPay with no payment or with two is refused", PAYING, {withoutPayment(), withTwoPayments()}),
        refuses("An empty CardUid is refused: so small UIDs arrive", BOTH, values("CardUid", {""})),
        {"ParkingCheck of an unknown card is refused", refusesUnknownCard},
        {"ParkInfoPay for an unknown card is refused", refusesPaymentForUnknownCard},
        {"A ParkInfoPay that is refused registers nothing", registersNothingRefused},
    };
}
} // namespace conformance
