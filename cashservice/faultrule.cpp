// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fault.h"

#include "carpark.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace cash {
namespace {
using Action = Fault::Action;

/// Each takes the text behind "=" into the fault and returns what is wrong with it.
using ReadValue = std::string (*)(Fault &, const std::string &);

template <typename Number>
bool readNumber(std::string_view text, Number &number)
{
    const std::optional<Number> read = numberFromText<Number>(text);
    number = read.value_or(number);
    return read.has_value();
}

std::string readNothing(Fault & /*fault*/, const std::string &value)
{
    return value.empty() ? "" : "it takes no value";
}

std::string readDelay(Fault &fault, const std::string &value)
{
    const auto duration = durationFromText(value);
    fault.delay = duration.value_or(fault.delay);
    return duration ? "" : "write how long: 500ms, 3s, 1m30s; at most 36500d";
}

std::string readStatus(Fault &fault, const std::string &value)
{
    return readNumber(value, fault.number) && fault.number >= 200 && fault.number <= 599
               ? ""
               : "write an HTTP status of 200 to 599";
}

std::string readOperation(Fault &fault, const std::string &value)
{
    fault.name = value;
    return "";
}

std::string readResult(Fault &fault, const std::string &value)
{
    const std::size_t comma = value.find(',');
    fault.text = comma == std::string::npos ? "" : value.substr(comma + 1);
    return readNumber(value.substr(0, comma), fault.number) ? "" : "write a whole number, and the text behind a comma";
}

std::string readField(Fault &fault, const std::string &value)
{
    constexpr std::array<std::string_view, 15> names = {
        "Operation", "ResultCode",          "PartnerId",      "SessionId",   "ExternalSessionId", "ParkingId",
        "StartTime", "AnticipatedStopTime", "LastChangeTime", "TotalCharge", "AmountSum",         "CanExtend",
        "CanStop",   "AnswerTime",          "ErrorInfo"};
    const std::size_t comma = value.find(',');
    fault.name = value.substr(0, comma);
    fault.text = comma == std::string::npos ? "?" : value.substr(comma + 1);
    return std::find(names.begin(), names.end(), fault.name) != names.end()
               ? ""
               : "\"" + fault.name + "\" is no field of an answer; write one as it stands there, TotalCharge for one";
}

std::string readChild(Fault &fault, const std::string &value)
{
    const std::string trouble = readField(fault, value);
    const bool isAttribute = fault.name == "Operation" || fault.name == "ResultCode";
    return isAttribute ? "an attribute cannot be doubled; name an element" : trouble;
}

std::string readCard(Fault &fault, const std::string &value)
{
    fault.name = value;
    return uidFromText(value) ? "" : "write the card's UID, eight hexadecimal digits";
}

std::string readEncoding(Fault &fault, const std::string &value)
{
    fault.encoding = value == "utf-16" ? Encoding::Utf16 : Encoding::Windows1251;
    return value == "utf-16" || value == "windows-1251" ? "" : "write windows-1251 or utf-16";
}

struct ActionName
{
    std::string_view name;
    Action action;
    ReadValue read;
    const char *help;
};

constexpr std::array<ActionName, 10> ACTIONS = {{
    {"delay", Action::Delay, readDelay, "delay=3s                    answers so much later"},
    {"status", Action::Status, readStatus, "status=503                  answers with this HTTP status and no body"},
    {"empty", Action::Empty, readNothing, "empty                       answers with status 200 and no body"},
    {"operation", Action::Operation, readOperation,
     "operation[=NAME]            names another operation: the other one's, or NAME"},
    {"result", Action::Result, readResult, "result=CODE[,TEXT]          answers with this result code alone"},
    {"missing", Action::Missing, readField, "missing=FIELD               leaves a field out"},
    {"doubled", Action::Doubled, readChild,
     "doubled=FIELD[,TEXT]        writes a field twice, the second time with TEXT"},
    {"malformed", Action::Malformed, readField,
     "malformed=FIELD[,TEXT]      writes TEXT into a field, \"?\" unless given"},
    {"card", Action::Card, readCard, "card=UID                    answers for another card"},
    {"encoding", Action::Encoding, readEncoding, "encoding=NAME               answers in windows-1251 or utf-16"},
}};

[[noreturn]] void refuse(const std::string &rule, const std::string &trouble)
{
    throw FaultError("fault \"" + rule + "\": " + trouble);
}

void readOperationName(Fault &fault, const std::string &name)
{
    for (const Operation operation : OPERATIONS) {
        if (operationName(operation) == name)
            fault.operation = operation;
    }
    if (!fault.operation && name != "any")
        refuse(fault.rule, "there is no operation \"" + name + "\"; write ParkingCheck, ParkInfoPay or any");
}

void readStage(Fault &fault, const std::string &name)
{
    if (name != "before" && name != "after")
        refuse(fault.rule, "there is no stage \"" + name + "\"; write before or after (the payment is recorded)");
    fault.stage = name == "before" ? Stage::Before : Stage::After;
}

void readCount(Fault &fault, const std::string &text)
{
    const std::size_t dash = text.find('-');
    bool isGood = readNumber(text.substr(0, dash), fault.first) && fault.first > 0;
    if (dash == std::string::npos)
        fault.last = fault.first;
    else if (dash + 1 < text.size())
        isGood = isGood && readNumber(text.substr(dash + 1), fault.last) && fault.last >= fault.first;
    if (!isGood)
        refuse(fault.rule,
               "\"" + text + "\" counts no requests; write 2 for the second, 2-4, or 2- for all from it on");
}

/// OPERATION[#COUNT][@STAGE]
void readWhere(Fault &fault, std::string where)
{
    const std::size_t at = where.find('@');
    if (at != std::string::npos)
        readStage(fault, where.substr(at + 1));
    where = where.substr(0, at);
    const std::size_t hash = where.find('#');
    if (hash != std::string::npos)
        readCount(fault, where.substr(hash + 1));
    readOperationName(fault, where.substr(0, hash));
}

/// ACTION[=VALUE]
void readWhat(Fault &fault, const std::string &what)
{
    const std::size_t equals = what.find('=');
    const std::string name = what.substr(0, equals);
    const auto *const found =
        std::find_if(ACTIONS.begin(), ACTIONS.end(), [&name](const ActionName &action) { return action.name == name; });
    if (found == ACTIONS.end()) {
        std::string names;
        for (const ActionName &action : ACTIONS)
            names += (names.empty() ? "" : ", ") + std::string(action.name);
        refuse(fault.rule, "there is no fault \"" + name + "\"; there are " + names);
    }
    fault.action = found->action;
    const std::string trouble = found->read(fault, equals == std::string::npos ? "" : what.substr(equals + 1));
    if (!trouble.empty())
        refuse(fault.rule, name + ": " + trouble);
}
} // namespace

Fault faultFromRule(const std::string &rule)
{
    Fault fault;
    fault.rule = rule;
    const std::size_t colon = rule.find(':');
    if (colon == std::string::npos)
        refuse(rule, "there is no colon; write OPERATION:ACTION, for example ParkingCheck:status=503");
    readWhere(fault, rule.substr(0, colon));
    readWhat(fault, rule.substr(colon + 1));
    return fault;
}

std::string faultHelp()
{
    std::string help = "A RULE is OPERATION[#COUNT][@STAGE]:ACTION[=VALUE]\n"
                       "  OPERATION  ParkingCheck, ParkInfoPay or any\n"
                       "  COUNT      2: the second request alone; 2-4; 2-: all from the second on; else every one\n"
                       "  STAGE      after: the payment is recorded (unless given); before: it is not\n"
                       "             (a delay only waits before recording it)\n"
                       "  ACTION\n";
    for (const ActionName &action : ACTIONS)
        help += "    " + std::string(action.help) + "\n";
    return help;
}
} // namespace cash
