// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "adminapi.h"

#include "base64.h"
#include "text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace cash {
namespace {
using Json = nlohmann::ordered_json;

constexpr std::string_view ROOT = "/admin";
constexpr std::string_view FAULTS = "/admin/faults";

void send(httplib::Response &response, int status, const Json &json)
{
    response.status = status;
    response.set_content(json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n", "application/json");
}

void refuse(httplib::Response &response, int status, const std::string &message)
{
    send(response, status, {{"error", message}});
}

/// Start line, headers in their order, body; and the whole again byte for byte, which text in JSON cannot be.
Json messageJson(const std::string &bytes)
{
    Json json;
    const std::size_t end = bytes.find("\r\n\r\n");
    const std::string head = bytes.substr(0, end);
    Json headers = Json::array();
    std::size_t line = head.find("\r\n");
    json["startLine"] = head.substr(0, line);
    while (line != std::string::npos) {
        const std::size_t next = head.find("\r\n", line + 2);
        const std::string header = head.substr(line + 2, next == std::string::npos ? next : next - line - 2);
        const std::size_t colon = header.find(':');
        const std::size_t value = header.find_first_not_of(" \t", colon == std::string::npos ? colon : colon + 1);
        headers.push_back({header.substr(0, colon), value == std::string::npos ? "" : header.substr(value)});
        line = next;
    }
    json["headers"] = headers;
    json["body"] = end == std::string::npos ? "" : bytes.substr(end + 4);
    json["bytes"] = base64(bytes);
    return json;
}

Json requestsJson(const Journal &journal)
{
    Json list = Json::array();
    for (const Exchange &exchange : journal.exchanges())
        list.push_back({{"number", exchange.number},
                        {"request", messageJson(exchange.request)},
                        {"answer", exchange.answer.empty() ? Json() : messageJson(exchange.answer)}});
    return {{"count", journal.count()}, {"requests", list}};
}

Json sessionsJson(const std::vector<Session> &sessions)
{
    Json list = Json::array();
    for (const Session &session : sessions)
        list.push_back({{"uid", uidText(session.card.uid)},
                        {"cardUid", wireUid(session.card.uid)},
                        {"state", stateName(session.card.state)},
                        {"externalSessionId", session.card.stayId()},
                        {"entered", localText(session.card.entered)},
                        {"owed", session.owed},
                        {"paid", session.paid},
                        {"note", session.card.note}});
    return {{"sessions", list}};
}

Json rowsJson(const char *name, const std::vector<LogRow> &rows)
{
    Json list = Json::array();
    for (const LogRow &row : rows)
        list.push_back({{"time", row.time},
                        {"termId", row.termId},
                        {"sessionId", row.sessionId},
                        {"uin", row.uin},
                        {"cardUid", row.cardUid},
                        {"amount", row.amount},
                        {"type", row.type},
                        {"outcome", row.outcome}});
    return {{"count", rows.size()}, {name, list}};
}

Json faultsJson(const FaultBook &faults)
{
    Json list = Json::array();
    for (const FaultBook::Entry &entry : faults.entries())
        list.push_back({{"id", entry.id}, {"rule", entry.fault.rule}, {"seen", entry.seen}, {"struck", entry.struck}});
    return {{"faults", list}};
}

Json indexJson()
{
    return {{"GET /admin/requests", "requests and answers, in order, and how many there were"},
            {"DELETE /admin/requests", "forgets them"},
            {"GET /admin/sessions", "the cards, what each owes and has paid; amounts in hundredths"},
            {"GET /admin/payments", "the payments, in order"},
            {"GET /admin/conflicts", "registrations refused because their key is taken, and the ones that have it"},
            {"GET /admin/faults", "the faults in force"},
            {"POST /admin/faults", "{\"rule\": RULE} sets one more"},
            {"DELETE /admin/faults", "ends them all"},
            {"DELETE /admin/faults/ID", "ends one"},
            {"RULE", faultHelp()}};
}
} // namespace

bool AdminApi::isPath(std::string_view path)
{
    return path.substr(0, ROOT.size()) == ROOT && (path.size() == ROOT.size() || path[ROOT.size()] == '/');
}

bool AdminApi::isLoopback(std::string_view address)
{
    constexpr std::string_view mapped = "::ffff:";
    if (address.substr(0, mapped.size()) == mapped)
        address.remove_prefix(mapped.size());
    return address == "::1" || address.substr(0, 4) == "127.";
}

bool AdminApi::isOwnName(std::string_view host)
{
    constexpr std::array<std::string_view, 3> names = {"127.0.0.1", "localhost", "[::1]"};
    const std::string name = inLowerCase(std::string(host));
    return std::any_of(names.begin(), names.end(), [&name](std::string_view own) {
        const std::string_view rest = std::string_view(name).substr(std::min(own.size(), name.size()));
        return name.rfind(own, 0) == 0 && (rest.empty() || (rest.front() == ':' && areDigits(rest.substr(1))));
    });
}

void AdminApi::answer(const httplib::Request &request, httplib::Response &response)
{
    if (!isLoopback(request.remote_addr)) {
        refuse(response, 403, "/admin is for clients on the same machine; you are " + request.remote_addr);
        return;
    }
    if (request.get_header_value_count("Host") != 1 || !isOwnName(request.get_header_value("Host"))) {
        refuse(response, 403,
               "/admin answers as 127.0.0.1, localhost or [::1] alone; you ask for \"" +
                   request.get_header_value("Host") + "\"");
        return;
    }
    try {
        answerOneOfThisMachine(request, response);
    } catch (const DatabaseError &error) {
        refuse(response, 500, std::string("the database cannot be used: ") + error.what());
    }
}

void AdminApi::answerOneOfThisMachine(const httplib::Request &request, httplib::Response &response)
{
    const std::string &path = request.path;
    const bool isGet = request.method == "GET";
    if (std::string_view(path).substr(0, FAULTS.size()) == FAULTS)
        answerFaults(request, response);
    else if (path == "/admin/requests" && request.method == "DELETE") {
        m_journal.clear();
        send(response, 200, Json::object());
    } else if (path == "/admin/requests" && isGet)
        send(response, 200, requestsJson(m_journal));
    else if (path == "/admin/sessions" && isGet)
        send(response, 200, sessionsJson(m_service.sessions()));
    else if (path == "/admin/payments" && isGet)
        send(response, 200, rowsJson("payments", m_service.ledger().payments()));
    else if (path == "/admin/conflicts" && isGet)
        send(response, 200, rowsJson("conflicts", m_service.ledger().conflicts()));
    else if (path == ROOT && isGet)
        send(response, 200, indexJson());
    else
        refuse(response, 404, request.method + " " + path + " does nothing; GET /admin says what there is");
}

void AdminApi::answerFaults(const httplib::Request &request, httplib::Response &response)
{
    FaultBook &faults = m_service.faults();
    const std::string rest = request.path.substr(FAULTS.size());
    if (rest.empty() && request.method == "GET")
        send(response, 200, faultsJson(faults));
    else if (rest.empty() && request.method == "POST")
        addFault(request.body, response);
    else if (rest.empty() && request.method == "DELETE")
        send(response, 200, {{"removed", faults.clear()}});
    else if (request.method == "DELETE" && rest.front() == '/' &&
             faults.remove(numberFromText<int>(rest.substr(1)).value_or(0)) == 1)
        send(response, 200, {{"removed", 1}});
    else
        refuse(response, 404,
               request.method + " " + request.path + ": there is no such fault; GET /admin/faults lists them");
}

void AdminApi::addFault(const std::string &body, httplib::Response &response)
{
    const Json json = Json::parse(body, nullptr, false);
    if (!json.is_object() || !json.contains("rule") || !json["rule"].is_string()) {
        refuse(response, 400, "the body is no rule; send {\"rule\": \"ParkingCheck:status=503\"}");
        return;
    }
    try {
        const Fault fault = faultFromRule(json["rule"].get<std::string>());
        send(response, 201, {{"id", m_service.faults().add(fault)}, {"rule", fault.rule}});
    } catch (const FaultError &error) {
        refuse(response, 400, error.what());
    }
}
} // namespace cash
