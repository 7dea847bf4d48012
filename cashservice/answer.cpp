// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "answer.h"

#include "encodings.h"

#include <pugixml.hpp>

namespace cash {
namespace {
void appendEscaped(std::string &xml, std::string_view text)
{
    for (const char c : text) {
        if (c == '&')
            xml += "&amp;";
        else if (c == '<')
            xml += "&lt;";
        else if (c == '>')
            xml += "&gt;";
        else if (c == '"')
            xml += "&quot;";
        else if (c == '\r')
            xml += "&#13;"; // else a reader makes a line feed of it
        else
            xml += c;
    }
}

std::string encodingName(Encoding encoding)
{
    if (encoding == Encoding::Windows1251)
        return "windows-1251";
    return encoding == Encoding::Utf16 ? "UTF-16" : "UTF-8";
}

std::string encoded(const std::string &text, Encoding encoding)
{
    return encoding == Encoding::Windows1251 ? windows1251FromUtf8(text) : utf16FromUtf8(text);
}
} // namespace

std::string Answer::text(std::string_view name) const
{
    for (const Texts *texts : {&attributes, &fields}) {
        for (const auto &[key, value] : *texts) {
            if (key == name)
                return value;
        }
    }
    return std::string();
}

std::string toXml(const Answer &answer, Encoding encoding)
{
    constexpr std::size_t usual = 1'024;
    std::string xml;
    xml.reserve(usual);
    xml.append("<?xml version=\"1.0\" encoding=\"").append(encodingName(encoding)).append("\"?>\n<Response");
    for (const auto &[name, value] : answer.attributes) {
        xml.append(" ").append(name).append("=\"");
        appendEscaped(xml, value);
        xml.append("\"");
    }
    xml.append(">\n");
    for (const auto &[name, value] : answer.fields) {
        xml.append("    <").append(name).append(">");
        appendEscaped(xml, value);
        xml.append("</").append(name).append(">\n");
    }
    xml.append("</Response>\n");
    return encoding == Encoding::Utf8 ? xml : encoded(xml, encoding);
}

Answer answerFromXml(const std::string &xml)
{
    pugi::xml_document document;
    document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_ws_pcdata_single,
                         pugi::encoding_utf8);
    Answer answer;
    for (const pugi::xml_attribute &attribute : document.document_element().attributes())
        answer.attributes.emplace_back(attribute.name(), attribute.value());
    for (const pugi::xml_node &child : document.document_element().children())
        answer.fields.emplace_back(child.name(), child.child_value());
    return answer;
}
} // namespace cash
