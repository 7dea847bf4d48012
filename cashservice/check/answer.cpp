// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "answer.h"

#include "decoding.h"
#include "text.h"
#include "xmlreport.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cstdlib>

namespace conformance {
namespace {
std::string localName(const char *name)
{
    const std::string whole = name;
    return whole.substr(whole.find(':') + 1);
}

bool isResponseElement(const pugi::xml_node &node)
{
    return node.type() == pugi::node_element && cash::inLowerCase(localName(node.name())) == "response";
}

Field fieldOf(const pugi::xml_node &element)
{
    Field field = {localName(element.name()), {}, false};
    for (const pugi::xml_node &child : element.children()) {
        if (child.type() == pugi::node_element)
            field.holdsElements = true;
        else
            field.text += child.value();
    }
    return field;
}

std::vector<Field> attributesOf(const pugi::xml_node &element)
{
    std::vector<Field> attributes;
    for (const pugi::xml_attribute &attribute : element.attributes())
        attributes.push_back({attribute.name(), attribute.value()});
    return attributes;
}

std::vector<Field> childrenOf(const pugi::xml_node &element)
{
    std::vector<Field> fields;
    for (const pugi::xml_node &child : element.children()) {
        if (child.type() == pugi::node_element)
            fields.push_back(fieldOf(child));
    }
    return fields;
}

std::optional<std::string> lastOf(const std::vector<Field> &fields, const std::string &name)
{
    const auto found = std::find_if(fields.rbegin(), fields.rend(), [&](const Field &f) { return f.name == name; });
    return found == fields.rend() ? std::nullopt : std::optional(found->text);
}
} // namespace

Answer::Answer(const std::string &body)
{
    const Decoded document = decoded(body);
    encodingComplaint = document.complaint;
    pugi::xml_document tree;
    tree.load_buffer(document.text.data(), document.text.size(), pugi::parse_default, pugi::encoding_utf8);
    const cash::XmlReport report = cash::examineXml(document.text);
    if (!report.error.empty())
        xmlComplaint =
            report.error + ", line " + std::to_string(report.line) + ", column " + std::to_string(report.column);

    const pugi::xml_node response = tree.find_node(isResponseElement);
    isResponse = !response.empty();
    isWrapped = isResponse && response.parent() != tree;
    name = localName(response.name());
    attributes = attributesOf(response);
    fields = childrenOf(response);
}

std::optional<std::string> Answer::field(const std::string &fieldName) const
{
    return lastOf(fields, fieldName);
}

std::optional<std::string> Answer::attribute(const std::string &attributeName) const
{
    return lastOf(attributes, attributeName);
}

bool Answer::isSuccess() const
{
    return std::any_of(attributes.begin(), attributes.end(), [](const Field &attribute) {
        return cash::inLowerCase(localName(attribute.name.c_str())) == "resultcode" &&
               std::strtol(attribute.text.c_str(), nullptr, 10) == 1;
    });
}

long long Answer::amount(const std::string &fieldName) const
{
    const std::string text = field(fieldName).value_or("");
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char c) { return c == '-' || cash::isDigit(c); });
    return std::strtoll(digits.c_str(), nullptr, 10);
}

std::string Answer::summary() const
{
    if (!isResponse)
        return "no Response in the body";
    const std::optional<std::string> code = attribute("ResultCode");
    const std::string error = field("ErrorInfo").value_or("");
    return (code ? "ResultCode " + *code : "no ResultCode") + (error.empty() ? "" : ", \"" + error + "\"");
}
} // namespace conformance
