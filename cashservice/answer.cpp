// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "answer.h"

#include "encodings.h"

#include <pugixml.hpp>

namespace cash {
namespace {
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else if (c == '\r')
            result += "&#13;"; // else a reader makes a line feed of it
        else
            result += c;
    }
    return result;
}

std::string encodingName(Encoding encoding)
{
    if (encoding == Encoding::Windows1251)
        return "windows-1251";
    return encoding == Encoding::Utf16 ? "UTF-16" : "UTF-8";
}

std::string encoded(const std::string &text, Encoding encoding)
{
    if (encoding == Encoding::Windows1251)
        return windows1251FromUtf8(text);
    return encoding == Encoding::Utf16 ? utf16FromUtf8(text) : text;
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
    std::string xml = "<?xml version=\"1.0\" encoding=\"" + encodingName(encoding) + "\"?>\n<Response";
    for (const auto &[name, value] : answer.attributes)
        xml += ' ' + name + "=\"" + escaped(value) + '"';
    xml += ">\n";
    for (const auto &[name, value] : answer.fields)
        xml += "    <" + name + '>' + escaped(value) + "</" + name + ">\n";
    return encoded(xml + "</Response>\n", encoding);
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
