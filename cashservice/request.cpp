// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "request.h"

#include "rules.h"
#include "text.h"
#include "xmlreport.h"

#include <pugixml.hpp>

#include <utility>
#include <vector>

namespace cash {
namespace {
struct Field
{
    const char *name;
    std::string Request::*target;
    bool (*holds)(std::string_view);
    const char *expected;
    bool blanksAround;
};

constexpr char NO_ROOT[] = "ожидается корневой элемент Request";
constexpr char TIME_STAMP[] = "ожидается ГГГГ-ММ-ДДTчч:мм:сс и смещение ±чч:мм";
constexpr char WHOLE_NUMBER[] = "ожидается целое число без знака плюс и ведущих нулей";
constexpr char NUMBER_RANGE[] = "ожидается число от -2^63 до 2^63-1";

constexpr std::array<Field, 7> HEADER = {{
    {"PartnerId", &Request::partnerId, rules::isAnything, "", false},
    {"ParkingId", &Request::parkingId, rules::isAnything, "", false},
    {"TermId", &Request::termId, rules::isAnything, "", false},
    {"SessionId", &Request::sessionId, rules::isSessionId,
     "ожидается номер терминала, ГГччммсс, день года и номер операции", false},
    {"CardUid", &Request::cardUid, rules::isCardUid, "ожидается 8 цифр 0-9, A-F", false},
    {"CardId", &Request::cardId, rules::isAnything, "", false},
    {"RequestTime", &Request::requestTime, rules::isTimeStamp, TIME_STAMP, true},
}};

/// Thrown inside this file alone: reading ends at the first breach, however deep.
struct Stop
{
    std::string field;
    std::string reason;
};

bool isBlank(std::string_view text)
{
    return rules::withoutBlanksAround(text).empty();
}

bool isText(const pugi::xml_node &node)
{
    return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

using Attributes = std::vector<std::pair<std::string, std::string>>;

void checkAttributes(const pugi::xml_node &element, const Attributes &expected)
{
    pugi::xml_attribute attribute = element.first_attribute();
    for (const auto &[name, value] : expected) {
        if (!element.attribute(name.c_str()))
            throw Stop{name, "нет атрибута"};
        if (name != attribute.name())
            throw Stop{attribute.name(), "атрибут лишний или не на своём месте"};
        if (value != attribute.value())
            throw Stop{name, "ожидается \"" + value + "\""};
        attribute = attribute.next_attribute();
    }
    if (attribute)
        throw Stop{attribute.name(), "лишний атрибут"};
}

/// Goes through the children of an element that holds elements alone, each in its turn.
class Children
{
public:
    explicit Children(const pugi::xml_node &parent) : m_parent(parent), m_next(parent.first_child()) { skipBlanks(); }

    pugi::xml_node take(const char *name)
    {
        if (!m_parent.child(name))
            throw Stop{name, "нет элемента"};
        if (std::string_view(m_next.name()) != name)
            throw Stop{m_next ? m_next.name() : name, "элемент лишний или не на своём месте"};
        const pugi::xml_node taken = std::exchange(m_next, m_next.next_sibling());
        skipBlanks();
        return taken;
    }

    void end() const
    {
        if (m_next)
            throw Stop{m_next.name(), "лишний элемент"};
    }

private:
    void skipBlanks()
    {
        for (; isText(m_next); m_next = m_next.next_sibling()) {
            if (m_next.type() == pugi::node_cdata || !isBlank(m_next.value()))
                throw Stop{m_parent.name(), "лишний текст"};
        }
    }

    pugi::xml_node m_parent;
    pugi::xml_node m_next;
};

/// Comments may stand inside a text: it is then several nodes.
std::string textOf(const pugi::xml_node &element)
{
    checkAttributes(element, {});
    std::string text;
    for (const pugi::xml_node &node : element.children()) {
        if (!isText(node))
            throw Stop{element.name(), "ожидается только текст"};
        text += node.value();
    }
    return text;
}

std::string readText(Children &children, const Field &field)
{
    std::string text = textOf(children.take(field.name));
    if (field.blanksAround)
        text = rules::withoutBlanksAround(text);
    if (!field.holds(text))
        throw Stop{field.name, field.expected};
    return text;
}

std::int64_t readNumber(Children &children, const char *name)
{
    const std::string text = readText(children, {name, nullptr, rules::isAnything, "", true});
    const std::optional<std::int64_t> value = numberFromText<std::int64_t>(text);
    if (!value && areDigits(std::string_view(text).substr(text.rfind('-', 0) == 0 ? 1 : 0)))
        throw Stop{name, NUMBER_RANGE};
    if (!rules::isWholeNumber(text))
        throw Stop{name, WHOLE_NUMBER};
    return *value;
}

void readPayment(const pugi::xml_node &payments, Request &request)
{
    checkAttributes(payments, {});
    Children list(payments);
    const pugi::xml_node payment = list.take("Payment");
    list.end();
    checkAttributes(payment, {});
    Children fields(payment);
    request.uin = readNumber(fields, "Uin");
    request.paidAt = readText(fields, {"DateTime", nullptr, rules::isTimeStamp, TIME_STAMP, true});
    request.amount = readNumber(fields, "Amount");
    request.type = readText(fields, {"Type", nullptr, rules::isPaymentType, "ожидается full или partial", false});
    fields.end();
}

void readRoot(const pugi::xml_node &root, Request &request)
{
    if (std::string_view(root.name()) != "Request")
        throw Stop{"Request", NO_ROOT};
    Attributes attributes = {
        {"RecordVersion", "2"}, {"NumRequest", "1"}, {"Operation", operationName(request.operation)}};
    if (request.operation == Operation::ParkingCheck)
        attributes.emplace_back("ResultCode", "0");
    checkAttributes(root, attributes);
    Children children(root);
    for (const Field &field : HEADER)
        request.*field.target = readText(children, field);
    if (request.operation == Operation::ParkInfoPay)
        readPayment(children.take("Payments"), request);
    children.end();
}

void checkXml(std::string_view body)
{
    if (isBlank(body))
        throw Stop{"Request", NO_ROOT};
    const XmlReport report = examineXml(body);
    if (!report.error.empty())
        throw Stop{"XML", "документ не читается: строка " + std::to_string(report.line) + ", столбец " +
                              std::to_string(report.column)};
    if (report.hasDocumentType)
        throw Stop{"XML", "DOCTYPE не допускается"};
    if (!report.version.empty() && report.version != "1.0")
        throw Stop{"XML", "ожидается версия 1.0"};
    if (!report.encoding.empty() && inLowerCase(report.encoding) != "utf-8")
        throw Stop{"XML", "ожидается кодировка UTF-8"};
}

void read(std::string_view body, Request &request)
{
    checkXml(body);
    // Texts of blanks alone count: a terminal's identifier may be one.
    constexpr unsigned int flags =
        pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute | pugi::parse_eol | pugi::parse_ws_pcdata;
    pugi::xml_document document;
    if (!document.load_buffer(body.data(), body.size(), flags, pugi::encoding_utf8))
        throw Stop{"XML", "документ не читается"};
    readRoot(document.document_element(), request);
}
} // namespace

std::string operationName(Operation operation)
{
    return operation == Operation::ParkingCheck ? "ParkingCheck" : "ParkInfoPay";
}

std::variant<Request, Breach> readRequest(Operation operation, std::string_view body)
{
    Request request;
    request.operation = operation;
    try {
        read(body, request);
    } catch (const Stop &stop) {
        return Breach{stop.field, stop.reason, request.sessionId};
    }
    return request;
}
} // namespace cash
