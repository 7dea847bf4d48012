// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checklist.h"
#include "formats.h"

#include <algorithm>
#include <regex>

namespace conformance {
namespace {
bool isOneOf(const std::vector<std::string> &names, const std::string &name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string quoted(const std::optional<std::string> &text)
{
    return text ? "\"" + *text + "\"" : "none";
}

using Rule = std::function<void(Trial &, const Exchange &)>;

/// A rule that every sample must keep.
Check ofEverySample(const std::string &name, const Rule &rule)
{
    return {name, [rule](Trial &trial) {
                for (const Exchange &exchange : trial.bench().samples()) {
                    trial.situation({});
                    trial.look(exchange);
                    rule(trial, exchange);
                }
            }};
}

/// The same, of samples that are a Response at all: there is a check for those that are not.
Check ofEveryResponse(const std::string &name, const Rule &rule)
{
    return ofEverySample(name, [rule](Trial &trial, const Exchange &exchange) {
        if (exchange.answer.isResponse)
            rule(trial, exchange);
    });
}

Check ofEverySuccess(const std::string &name, const Rule &rule)
{
    return ofEveryResponse(name, [rule](Trial &trial, const Exchange &exchange) {
        if (exchange.answer.isSuccess())
            rule(trial, exchange);
    });
}

Check ofTheForm(const std::string &name, const std::vector<std::string> &elements, bool (*hasForm)(const std::string &),
                const std::string &form)
{
    return ofEveryResponse(name, [=](Trial &trial, const Exchange &exchange) {
        for (const Field &field : exchange.answer.fields) {
            if (isOneOf(elements, field.name))
                trial.expect(hasForm(field.text), field.name + " " + form, quoted(field.text));
        }
    });
}

/// @a which are the elements that an answer of success must have.
Rule has(const std::string &operation, const std::vector<std::string> &which)
{
    return [=](Trial &trial, const Exchange &exchange) {
        for (const std::string &element : which) {
            if (exchange.operation == operation)
                trial.expect(exchange.answer.field(element).has_value(), element, "none");
        }
    };
}

/// Whether an answer must have it is another check's.
Rule returns(const std::string &element)
{
    return [=](Trial &trial, const Exchange &exchange) {
        const std::string sent = exchange.sentText(element);
        const std::string came = exchange.answer.field(element).value_or(sent);
        trial.expect(came == sent, element + " " + quoted(sent), quoted(came));
    };
}

void comesWithStatus200(Trial &trial, const Exchange &exchange)
{
    trial.expect(exchange.status == 200, "HTTP 200", exchange.summary());
}

void comesAsXml(Trial &trial, const Exchange &exchange)
{
    static const std::regex XML_TYPE(R"((text/xml|application/xml|application/[a-z0-9.-]+\+xml)\s*(;.*)?)",
                                     std::regex::icase);
    trial.expect(std::regex_match(exchange.contentType, XML_TYPE), "Content-Type text/xml, application/xml or …+xml",
                 quoted(exchange.contentType));
}

void isWellFormed(Trial &trial, const Exchange &exchange)
{
    trial.expect(exchange.answer.xmlComplaint.empty(), "well-formed XML", exchange.answer.xmlComplaint);
}

void isEncodedAsDeclared(Trial &trial, const Exchange &exchange)
{
    trial.expect(exchange.answer.encodingComplaint.empty(), "the encoding that the XML declaration names, else UTF-8",
                 exchange.answer.encodingComplaint);
}

void isNotWrapped(Trial &trial, const Exchange &exchange)
{
    trial.expect(!exchange.answer.isWrapped, "Response as the outermost element", "Response inside of another element");
}

void rootIsResponse(Trial &trial, const Exchange &exchange)
{
    trial.expect(exchange.answer.name == "Response", "an element Response",
                 exchange.answer.isResponse ? "an element " + exchange.answer.name : exchange.summary());
}

void operationNamesTheAnswer(Trial &trial, const Exchange &exchange)
{
    const std::string name = exchange.operation + "Response";
    const std::optional<std::string> came = exchange.answer.attribute("Operation");
    const bool isThat = came && std::regex_match(*came, std::regex(name, std::regex::icase));
    trial.expect(isThat, "Operation \"" + name + "\", in upper or lower case", quoted(came));
}

void resultCodeIsWhole(Trial &trial, const Exchange &exchange)
{
    const std::optional<std::string> came = exchange.answer.attribute("ResultCode");
    trial.expect(came && isResultCode(*came), "an attribute ResultCode with a whole number", quoted(came));
}

void elementsDiffer(Trial &trial, const Exchange &exchange)
{
    std::vector<std::string> names;
    for (const Field &field : exchange.answer.fields) {
        trial.expect(!isOneOf(names, field.name), field.name + " once", "twice");
        names.push_back(field.name);
    }
}

void elementsHoldText(Trial &trial, const Exchange &exchange)
{
    for (const Field &field : exchange.answer.fields)
        trial.expect(!field.holdsElements, "text alone in " + field.name, "an element");
}

void refusalSaysWhy(Trial &trial, const Exchange &exchange)
{
    const std::optional<std::string> why = exchange.answer.field("ErrorInfo");
    trial.expect(exchange.answer.isSuccess() || !why.value_or("").empty(), "an ErrorInfo with a text", quoted(why));
}

void successHasNoError(Trial &trial, const Exchange &exchange)
{
    const std::string error = exchange.answer.field("ErrorInfo").value_or("");
    trial.expect(error.empty(), "no ErrorInfo, or an empty one", quoted(error));
}
} // namespace

Checklist answerChecks()
{
    return {
        ofEverySample("Every answer, a refusal too, comes with HTTP status 200", comesWithStatus200),
        ofEverySample("The body of every answer holds an element Response, so written", rootIsResponse),
        ofEveryResponse("Nothing is wrapped around it, no SOAP envelope either", isNotWrapped),
        ofEveryResponse("The Content-Type of every answer is one of XML", comesAsXml),
        ofEveryResponse("Every answer is well-formed XML", isWellFormed),
        ofEveryResponse("Every answer is in the encoding that it declares, in UTF-8 if it declares none",
                        isEncodedAsDeclared),
        ofEveryResponse("Its attribute Operation is the request's, followed by Response", operationNamesTheAnswer),
        ofEveryResponse("Its attribute ResultCode is a whole number", resultCodeIsWhole),
        ofEveryResponse("No element stands twice in an answer", elementsDiffer),
        ofEveryResponse("The elements of an answer hold text alone", elementsHoldText),
        ofTheForm("Times in an answer are dates and times that there are",
                  {"StartTime", "AnticipatedStopTime", "LastChangeTime", "AnswerTime"}, isTimeStamp,
                  "as yyyy-MM-ddTHH:mm:ss, with a fraction, Z or an offset if wanted, else no such element"),
        ofTheForm("Amounts in an answer are whole hundredths", {"TotalCharge", "AmountSum"}, isWholeNumber,
                  "as a whole number of hundredths: 15000 for 150.00"),
        ofTheForm("Flags in an answer are numbers", {"CanExtend", "CanStop"}, isFlag, "as 0 or 1"),
        ofEveryResponse("A refusal says why in ErrorInfo", refusalSaysWhy),
        ofEverySuccess("A success says nothing in ErrorInfo", successHasNoError),
        ofEverySuccess("A success of ParkingCheck has SessionId, StartTime, TotalCharge, AmountSum and AnswerTime",
                       has("ParkingCheck", {"SessionId", "StartTime", "TotalCharge", "AmountSum", "AnswerTime"})),
        ofEverySuccess("A success of ParkInfoPay has PartnerId, SessionId and AnswerTime",
                       has("ParkInfoPay", {"PartnerId", "SessionId", "AnswerTime"})),
        ofEverySuccess("A success returns the request's SessionId", returns("SessionId")),
        ofEverySuccess("A success of ParkInfoPay returns the request's PartnerId", returns("PartnerId")),
    };
}
} // namespace conformance
