// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "wellformed.h"

#include <pugixml.hpp>

#include <algorithm>
#include <regex>
#include <set>

namespace conformance {
namespace {
/// The text without comments, CDATA sections and processing instructions: an ampersand means nothing in them.
std::string markupAndText(const std::string &text)
{
    static const struct
    {
        std::string opening;
        std::string closing;
    } SECTIONS[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const auto *const section = std::find_if(std::begin(SECTIONS), std::end(SECTIONS), [&](const auto &candidate) {
            return text.compare(at, candidate.opening.size(), candidate.opening) == 0;
        });
        if (section == std::end(SECTIONS)) {
            result += text[at++];
            continue;
        }
        const std::size_t end = text.find(section->closing, at + section->opening.size());
        at = end == std::string::npos ? text.size() : end + section->closing.size();
    }
    return result;
}

bool hasBareAmpersand(const std::string &text)
{
    static const std::regex BARE("&(?!(amp|lt|gt|quot|apos|#[0-9]+|#x[0-9A-Fa-f]+);)");
    return std::regex_search(text, BARE);
}

bool hasControlCharacter(const std::string &text)
{
    return std::any_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r';
    });
}

bool hasAttributeTwice(const pugi::xml_node &node)
{
    std::set<std::string> names;
    for (const pugi::xml_attribute &attribute : node.attributes()) {
        if (!names.insert(attribute.name()).second)
            return true;
    }
    return std::any_of(node.begin(), node.end(), hasAttributeTwice);
}

bool hasOneRoot(const pugi::xml_document &tree)
{
    return std::count_if(tree.begin(), tree.end(),
                         [](const pugi::xml_node &node) { return node.type() == pugi::node_element; }) == 1;
}
} // namespace

std::string wellFormedComplaint(const std::string &text, const pugi::xml_document &tree)
{
    if (!hasOneRoot(tree))
        return "not exactly one root element";
    if (hasBareAmpersand(markupAndText(text)))
        return "an ampersand that begins no entity";
    if (hasControlCharacter(text))
        return "a control character";
    if (hasAttributeTwice(tree))
        return "an element with one attribute twice";
    return {};
}
} // namespace conformance
