// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "checkservicebreaks.h"

#include <string>
#include <vector>

/// A rule of the protocol, a service that breaks it, and the rules that cannot hold then either.
struct ServiceBreak
{
    std::string name;
    std::string rule;
    BrokenService::Behaviour behaviour;
    std::vector<std::string> alsoBroken;
};

/// Those that take what is malformed are in checksituations.h, one that races with itself in tst_check.cpp. New ones
/// each time: some of them remember what came.
inline std::vector<ServiceBreak> serviceBreaks()
{
    using namespace ServiceBreaks;
    return {
        {"bad status",
         "Every answer, a refusal too, comes with HTTP status 200",
         changesAnswer([](Reply &reply) {
             if (!isSuccess(reply))
                 reply.status = 400;
         }),
         {}},
        {"lower-case root",
         "The body of every answer holds an element Response, so written",
         changesAnswer([](Reply &reply) {
             reply.body = replaced(replaced(reply.body, "<Response", "<response"), "</Response", "</response");
         }),
         {}},
        {"SOAP envelope",
         "Nothing is wrapped around it, no SOAP envelope either",
         changesAnswer([](Reply &reply) { reply.body = wrapped(reply.body); }),
         {}},
        {"HTML",
         "The Content-Type of every answer is one of XML",
         changesAnswer([](Reply &reply) { reply.contentType = "text/html; charset=utf-8"; }),
         {}},
        {"bare ampersand",
         "Every answer is well-formed XML",
         changesRefusal([](const std::string &body) { return replaced(body, "</ErrorInfo>", " & Co</ErrorInfo>"); }),
         {}},
        {"two roots",
         "Every answer is well-formed XML",
         changesRefusal([](const std::string &body) { return body + "<More/>"; }),
         {}},
        {"another encoding than declared",
         "Every answer is in the encoding that it declares, in UTF-8 if it declares none",
         changesRefusal([](const std::string &body) { return replaced(body, "\"UTF-8\"", "\"US-ASCII\""); }),
         {}},
        {"an encoding that nobody knows",
         "Every answer is in the encoding that it declares, in UTF-8 if it declares none",
         changesRefusal([](const std::string &body) { return replaced(body, "\"UTF-8\"", "\"UTF-9\""); }),
         {}},
        {"the request's Operation",
         "Its attribute Operation is the request's, followed by Response",
         changesAnswer([](Reply &reply) {
             reply.body = replaced(replaced(reply.body, "CheckResponse\"", "Check\""), "PayResponse\"", "Pay\"");
         }),
         {}},
        {"no ResultCode",
         "Its attribute ResultCode is a whole number",
         changesRefusal([](const std::string &body) { return replaced(body, " ResultCode=\"", " Result=\""); }),
         {}},
        {"result code in lower case",
         "Its attribute ResultCode is a whole number",
         changesAnswer([](Reply &reply) { reply.body = replaced(reply.body, " ResultCode=\"", " resultCode=\""); }),
         {}},
        {"AnswerTime twice",
         "No element stands twice in an answer",
         changesSuccess([](const std::string &body) {
             return replaced(body, "</AnswerTime>",
                             "</AnswerTime><AnswerTime>" + element(body, "AnswerTime") + "</AnswerTime>");
         }),
         {}},
        {"element in an element",
         "The elements of an answer hold text alone",
         changesSuccess([](const std::string &body) { return withElement(body, "ExternalSessionId", "<Id>7</Id>"); }),
         {}},
        {"date with dots", "Times in an answer are dates and times that there are", changesSuccess(withGermanDate), {}},
        {"no such day",
         "Times in an answer are dates and times that there are",
         changesSuccess([](const std::string &body) { return withElement(body, "StartTime", "2026-02-29T12:00:00"); }),
         {}},
        {"decimals", "Amounts in an answer are whole hundredths", changesSuccess(withDecimals), {}},
        {"flags in words",
         "Flags in an answer are numbers",
         changesSuccess([](const std::string &body) { return withElement(body, "CanStop", "false"); }),
         {}},
        {"no ErrorInfo",
         "A refusal says why in ErrorInfo",
         changesRefusal([](const std::string &body) { return withoutElement(body, "ErrorInfo"); }),
         {}},
        {"ErrorInfo of a success",
         "A success says nothing in ErrorInfo",
         changesSuccess([](const std::string &body) { return withElement(body, "ErrorInfo", "OK"); }),
         {}},
        {"no StartTime",
         "A success of ParkingCheck has SessionId, StartTime, TotalCharge, AmountSum and AnswerTime",
         changesSuccess([](const std::string &body) { return withoutElement(body, "StartTime"); }),
         {}},
        {"no PartnerId",
         "A success of ParkInfoPay has PartnerId, SessionId and AnswerTime",
         changesSuccess([](const std::string &body) { return withoutElement(body, "PartnerId"); }),
         {}},
        {"SessionId as a number",
         "A success returns the request's SessionId",
         changesSuccess(withNumberForIdentifier),
         {}},
        {"another PartnerId",
         "A success of ParkInfoPay returns the request's PartnerId",
         changesSuccess([](const std::string &body) { return withElement(body, "PartnerId", "operator"); }),
         {}},

        {"asking fails",
         "ParkingCheck of a card that owes succeeds",
         changesAnswer([](Reply &reply) {
             if (has(reply.body, "ParkingCheckResponse"))
                 reply.body =
                     withElement(replaced(reply.body, "ResultCode=\"1\"", "ResultCode=\"7\""), "ErrorInfo", "no");
         }),
         {"ParkingCheck succeeds after a ParkInfoPay too",
          "ParkInfoPay may have the SessionId of the ParkingCheck in the same second",
          "A time stamp may have no offset", "The terminal's clock and its offset are not judged",
          "A SessionId may begin with one to four zeros for the terminal, and end in 001 each time",
          "ParkingCheck registers nothing"}},
        {"paying fails",
         "ParkInfoPay for that card succeeds",
         refuses(isPayment),
         {"ParkInfoPay needs no ParkingCheck of that terminal before it",
          "ParkingCheck succeeds after a ParkInfoPay too",
          "ParkInfoPay may have the SessionId of the ParkingCheck in the same second",
          "A time stamp may have no offset", "The terminal's clock and its offset are not judged",
          "A SessionId may begin with one to four zeros for the terminal, and end in 001 each time",
          "Requests are read as UTF-8: a SessionId with other letters comes back as it was sent",
          "A SessionId with characters that XML escapes comes back as it was sent",
          "AmountSum grows by what is registered", "TotalCharge falls by what is registered",
          "The same TermId, SessionId and Uin twice are one payment",
          "The same payment on four connections at once is one payment, confirmed on each",
          "A payment sent again with a later RequestTime is still the same",
          "Another amount under the same TermId, SessionId and Uin is refused",
          "After that refusal the payment stands as it was, and is confirmed again",
          "With another Uin it is another payment", "With another SessionId it is another payment",
          "With another TermId it is another payment", "After a payment of all that is owed nothing is owed"}},
        {"needs asking first",
         "ParkInfoPay needs no ParkingCheck of that terminal before it",
         needsAskingFirst(),
         {"With another TermId it is another payment"}},
        {"no asking after paying",
         "ParkingCheck succeeds after a ParkInfoPay too",
         refusesAskingAfterPaying(),
         {"A time stamp may have no offset", "The terminal's clock and its offset are not judged",
          "A SessionId may begin with one to four zeros for the terminal, and end in 001 each time"}},
        {"SessionId of asking",
         "ParkInfoPay may have the SessionId of the ParkingCheck in the same second",
         refusesSessionIdOfAsking(),
         {"A SessionId may begin with one to four zeros for the terminal, and end in 001 each time"}},
        {"wants an offset",
         "A time stamp may have no offset",
         refuses([](const Post &post) {
             return element(post.body, "RequestTime").size() == sizeof("2024-03-07T14:05:09") - 1;
         }),
         {}},
        {"judges the clock",
         "The terminal's clock and its offset are not judged",
         refuses([](const Post &post) {
             const std::string time = element(post.body, "RequestTime");
             return time < "2010" || has(time, "-09:30");
         }),
         {}},
        {"wants a terminal's number",
         "A SessionId may begin with one to four zeros for the terminal, and end in 001 each time",
         refuses([](const Post &post) { return element(post.body, "SessionId").size() < 18; }),
         {}},
        {"cannot read UTF-8",
         "Requests are read as UTF-8: a SessionId with other letters comes back as it was sent",
         changesSuccess(withQuestionMarks),
         {}},
        {"escapes twice",
         "A SessionId with characters that XML escapes comes back as it was sent",
         changesSuccess([](const std::string &body) { return replaced(body, "&amp;", "&amp;amp;"); }),
         {}},

        {"knows every operation",
         "An operation that there is not is no success",
         takes([](const Post &post) { return post.operation == "ParkingStop"; }),
         {}},
        {"knows every card",
         "ParkingCheck of an unknown card is refused",
         takes([](const Post &post) { return !isPayment(post) && element(post.body, "CardUid") == "EFBEADDE"; }),
         {}},
        {"pays for every card",
         "ParkInfoPay for an unknown card is refused",
         takes([](const Post &post) { return isPayment(post) && element(post.body, "CardUid") == "EFBEADDE"; }),
         {}},
        {"registers what it refuses", "A ParkInfoPay that is refused registers nothing", registersRefused(), {}},

        {"AmountSum stands still",
         "AmountSum grows by what is registered",
         remembers("AmountSum"),
         {"With another Uin it is another payment", "With another SessionId it is another payment",
          "With another TermId it is another payment"}},
        {"TotalCharge stands still", "TotalCharge falls by what is registered", remembers("TotalCharge"), {}},
        {"charges for asking", "ParkingCheck registers nothing", chargesForAsking(), {}},
        {"registers twice",
         "The same TermId, SessionId and Uin twice are one payment",
         onSameDocument([](const Post &post, const Forward &forward) { return forward(asAnother(post)); }),
         {"The same payment on four connections at once is one payment, confirmed on each"}},
        {"answers otherwise",
         "The second time is answered as the first",
         onSameDocument([](const Post &post, const Forward &forward) {
             Reply reply = forward(post);
             reply.body = withElement(reply.body, "ExternalSessionId", "again");
             return reply;
         }),
         {}},
        {"the document decides",
         "A payment sent again with a later RequestTime is still the same",
         onRepetition({"TermId", "SessionId", "Uin", "Amount"}, "RequestTime",
                      [](const Post &post, const Forward &forward) { return forward(asAnother(post)); }),
         {}},
        {"ignores the amount",
         "Another amount under the same TermId, SessionId and Uin is refused",
         onRepetition({"TermId", "SessionId", "Uin"}, "Amount",
                      [](const Post &post, const Forward & /*forward*/) { return success(post); }),
         {}},
        {"adds the other amount",
         "After that refusal the payment stands as it was, and is confirmed again",
         onRepetition({"TermId", "SessionId", "Uin"}, "Amount",
                      [](const Post &post, const Forward &forward) {
                          forward(asAnother(post));
                          return refusal(post);
                      }),
         {}},
        {"key without Uin",
         "With another Uin it is another payment",
         onRepetition({"TermId", "SessionId"}, "Uin",
                      [](const Post &post, const Forward & /*forward*/) { return success(post); }),
         {}},
        {"key without SessionId",
         "With another SessionId it is another payment",
         onRepetition({"TermId", "Uin"}, "SessionId",
                      [](const Post &post, const Forward & /*forward*/) { return success(post); }),
         {}},
        {"key without TermId",
         "With another TermId it is another payment",
         onRepetition({"SessionId", "Uin"}, "TermId",
                      [](const Post &post, const Forward & /*forward*/) { return success(post); }),
         {}},
        {"full is not full", "After a payment of all that is owed nothing is owed", registersLessThanAll(), {}},
    };
}
