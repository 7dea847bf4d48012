// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "checkservicebreaks.h"

#include <string>
#include <vector>

/// Every way in which the check makes a request wrong, and how a service recognises it that takes it all the same.
namespace Situations {
using ServiceBreaks::count;
using ServiceBreaks::element;
using ServiceBreaks::has;
using ServiceBreaks::isBefore;
using ServiceBreaks::Judgement;
using ServiceBreaks::Post;
using Strings = std::vector<std::string>;

struct Situation
{
    std::string rule;
    /// As the check writes it behind "in:".
    std::string text;
    Judgement isIt;
    /// The same request is sent for other rules too.
    Strings alsoBroken;
};

const Strings HEADER = {"PartnerId", "ParkingId", "TermId", "SessionId", "CardUid", "CardId", "RequestTime"};
const Strings PAYMENT = {"Uin", "DateTime", "Amount", "Type"};
const Strings CHECK = {"ParkingCheck"};
const Strings PAY = {"ParkInfoPay"};
const Strings BOTH = {"ParkingCheck", "ParkInfoPay"};

inline std::string tag(const std::string &name)
{
    return "<" + name + ">";
}

/// With each of its tags closed, so far as the check leaves one open.
inline bool isWhole(const Post &post)
{
    return has(post.body, "<Request ") && has(post.body, "</Request>") &&
           count(post.body, "<CardId>") == count(post.body, "</CardId>");
}

class Table
{
public:
    void add(const std::string &rule, const Strings &operations, const std::string &text, const Judgement &isIt)
    {
        for (const std::string &operation : operations) {
            m_situations.push_back({rule,
                                    operation + (text.empty() ? "" : ", " + text),
                                    [=](const Post &post) { return post.operation == operation && isIt(post); },
                                    {}});
        }
    }

    void addValues(const std::string &rule, const Strings &operations, const std::string &name, const Strings &texts)
    {
        for (const std::string &text : texts) {
            const std::string whole = tag(name) + text + "</" + name + ">";
            add(rule, operations, name + " \"" + text + "\"",
                [=](const Post &post) { return has(post.body, whole) && isWhole(post); });
        }
    }

    void addAttribute(const std::string &rule, const std::string &operation, const std::string &name,
                      const Strings &texts)
    {
        const std::string start = " " + name + "=\"";
        add(rule, {operation}, name + " missing",
            [=](const Post &post) { return isWhole(post) && !has(post.body, start); });
        for (const std::string &text : texts) {
            add(rule, {operation}, name + " \"" + text + "\"",
                [=](const Post &post) { return isWhole(post) && has(post.body, start + text + "\""); });
        }
    }

    /// Of elements that lie side by side within @a parent.
    void addMissingAndTwice(const std::string &operation, const std::string &parent, const Strings &names)
    {
        for (const std::string &name : names) {
            add(operation + " without one of its elements is refused", {operation}, name + " missing",
                [=](const Post &post) {
                    return has(post.body, parent) && isWhole(post) && !has(post.body, tag(name));
                });
            add(operation + " with one of its elements twice is refused", {operation}, name + " twice",
                [=](const Post &post) { return count(post.body, parent) == 1 && count(post.body, tag(name)) == 2; });
        }
    }

    /// @param names in their order; all but the last change places with the next.
    void addLater(const std::string &operation, const Strings &names)
    {
        for (std::size_t i = 0; i + 1 < names.size(); ++i) {
            add(operation + " with its elements in another order is refused", {operation},
                names[i] + " one place later",
                [=](const Post &post) { return isBefore(post.body, tag(names[i + 1]), tag(names[i])); });
        }
    }

    /// Where the same request is sent for another rule too.
    void addAlsoBroken(const std::string &text, const std::string &rule)
    {
        for (Situation &situation : m_situations) {
            if (situation.text == text)
                situation.alsoBroken.push_back(rule);
        }
    }

    [[nodiscard]] std::vector<Situation> situations() const { return m_situations; }

private:
    std::vector<Situation> m_situations;
};

inline void addDocuments(Table &table)
{
    const std::string noXml = "What is not XML is refused";
    table.add(noXml, BOTH, "an empty body", [](const Post &post) { return post.body.empty(); });
    table.add(noXml, BOTH, "a body that is no XML", [](const Post &post) { return post.body == "a payment, please"; });
    table.add(noXml, BOTH, "a body cut off before its end",
              [](const Post &post) { return has(post.body, "<Request ") && !has(post.body, "</Request>"); });
    table.add(noXml, BOTH, "a body with a tag that is not closed", [](const Post &post) {
        return has(post.body, "</Request>") && has(post.body, "<CardId>") && !has(post.body, "</CardId>");
    });
    table.add("What is not UTF-8 is refused", BOTH, "", [](const Post &post) { return has(post.body, "\xEA\xE0"); });
    const std::string otherRoot = "A document whose root is not Request is refused";
    table.add(otherRoot, BOTH, "root request", [](const Post &post) { return has(post.body, "<request "); });
    table.add(otherRoot, BOTH, "root Response", [](const Post &post) { return has(post.body, "<Response "); });
    table.add(otherRoot, BOTH, "in a SOAP envelope", [](const Post &post) { return has(post.body, "<Envelope "); });
    const std::string otherOperation = "A document of another Operation than the path's is refused";
    table.addAttribute(otherOperation, "ParkingCheck", "Operation", {"ParkInfoPay", "ParkingStop", ""});
    table.addAttribute(otherOperation, "ParkInfoPay", "Operation", {"ParkingCheck", "ParkingStop", ""});
    for (const std::string &operation : BOTH)
        table.addAttribute("A RecordVersion other than 2 is refused", operation, "RecordVersion",
                           {"", "1", "3", "two"});
}

inline void addElements(Table &table)
{
    for (const std::string &operation : BOTH)
        table.addMissingAndTwice(operation, "<Request ", HEADER);
    table.addMissingAndTwice("ParkInfoPay", "<Payment>", PAYMENT);
    table.addMissingAndTwice("ParkInfoPay", "<Request ", {"Payments"});
    Strings payHeader = HEADER;
    payHeader.push_back("Payments");
    table.addLater("ParkingCheck", HEADER);
    table.addLater("ParkInfoPay", payHeader);
    table.addLater("ParkInfoPay", PAYMENT);
    table.add("A request with an element of another name is refused", BOTH, "an element Discount after the others",
              [](const Post &post) { return has(post.body, "<Discount>"); });
    const std::string onePayment = "A ParkInfoPay with no payment or with two is refused";
    table.add(onePayment, PAY, "Payments without a Payment",
              [](const Post &post) { return has(post.body, "<Payments>") && !has(post.body, "<Payment>"); });
    table.add(onePayment, PAY, "two of them", [](const Post &post) {
        return count(post.body, "<Payment>") == 2 && count(post.body, "<Payments>") == 1;
    });
}

inline void addSessionIds(Table &table)
{
    const std::string rule = "A malformed SessionId is refused";
    const auto add = [&](const std::string &text, bool (*isIt)(const std::string &id)) {
        table.add(rule, BOTH, "the SessionId " + text,
                  [=](const Post &post) { return isIt(element(post.body, "SessionId")); });
    };
    table.addValues(rule, BOTH, "SessionId", {"", "1"});
    // A whole one is T042, then year, hour, minute and second of two digits each, day and number of three.
    add("without its last digit", [](const std::string &id) { return id.size() == 17 && id[0] == 'T'; });
    add("without its first character",
        [](const std::string &id) { return id.size() == 17 && id.substr(0, 3) == "042"; });
    add("with a letter behind it", [](const std::string &id) { return id.size() == 19 && id.back() == 'x'; });
    add("with 24 for the hour", [](const std::string &id) { return id[0] == 'T' && id.substr(6, 2) == "24"; });
    add("with 60 for the minute", [](const std::string &id) { return id[0] == 'T' && id.substr(8, 2) == "60"; });
    add("with 370 for the day", [](const std::string &id) { return id[0] == 'T' && id.substr(12, 3) == "370"; });
}

inline void addUids(Table &table)
{
    const auto add = [&](const std::string &text, const std::string &uid) {
        table.add("A malformed CardUid is refused", BOTH, "the UID " + text,
                  [=](const Post &post) { return has(post.body, "<CardUid>" + uid + "</CardUid>"); });
    };
    add("without its last digit", "7856341");
    add("with another digit", "785634120");
    add("with a blank in front", " 78563412");
    add("with 0x in front", "0x78563412");
    add("with a G in it", "G8563412");
    table.addValues("An empty CardUid is refused: so small UIDs arrive", BOTH, "CardUid", {""});
}

inline void addValues(Table &table)
{
    const Strings times = {"",
                           "+03:00",
                           "07.03.2024 14:05:09",
                           "2024-03-07 14:05:09",
                           "2024-03-07T14:05",
                           "2024-03-07T14:05:09+3",
                           "2024-02-30T14:05:09"};
    const Strings numbers = {"", "ten", "1e3", "0x10", "+3", "3.00", "3,00", "9223372036854775808"};
    table.addValues("A malformed RequestTime is refused", BOTH, "RequestTime", times);
    table.addValues("A malformed DateTime is refused", PAY, "DateTime", times);
    table.addValues("A malformed Uin is refused", PAY, "Uin", numbers);
    table.addValues("A malformed Amount is refused", PAY, "Amount", numbers);
    table.addValues("A Type other than full and partial is refused", PAY, "Type",
                    {"", "Full", "PARTIAL", "whole", "full "});
    table.addAlsoBroken("ParkInfoPay, Type \"whole\"", "A ParkInfoPay that is refused registers nothing");
}

inline std::vector<Situation> all()
{
    Table table;
    addDocuments(table);
    addElements(table);
    addSessionIds(table);
    addUids(table);
    addValues(table);
    return table.situations();
}
} // namespace Situations
