// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "request.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace conformance {
namespace {
std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string rendered(const Node &node, const std::string &attributes, const std::string &indent)
{
    const std::string start = indent + "<" + node.name + attributes + ">";
    const std::string end = "</" + node.name + ">\n";
    if (node.children.empty())
        return start + escaped(node.text) + end;
    std::string content = "\n";
    for (const Node &child : node.children)
        content += rendered(child, {}, indent + "    ");
    return start + content + indent + end;
}

using Place = std::pair<std::vector<Node> *, std::vector<Node>::iterator>;

Place search(std::vector<Node> &nodes, const std::string &name)
{
    for (auto it = nodes.begin(); it != nodes.end(); ++it) {
        if (it->name == name)
            return {&nodes, it};
        const Place below = search(it->children, name);
        if (below.first != nullptr)
            return below;
    }
    return {nullptr, {}};
}

Place found(std::vector<Node> &nodes, const std::string &name)
{
    const Place place = search(nodes, name);
    if (place.first == nullptr)
        throw std::logic_error("a request without " + name);
    return place;
}
} // namespace

std::string Request::xml() const
{
    std::string attributeText;
    for (const Node &attribute : attributes)
        attributeText += " " + attribute.name + "=\"" + escaped(attribute.text) + "\"";
    return "<?xml version=\"1.0\"?>\n" + rendered(root, attributeText, {});
}

Request with(Request request, const std::string &element, const std::string &text)
{
    found(request.root.children, element).second->text = text;
    return request;
}

Request without(Request request, const std::string &element)
{
    const Place place = found(request.root.children, element);
    place.first->erase(place.second);
    return request;
}

Request withTwice(Request request, const std::string &element)
{
    const Place place = found(request.root.children, element);
    const Node copy = *place.second;
    place.first->insert(place.second, copy);
    return request;
}

Request withLater(Request request, const std::string &element)
{
    const Place place = found(request.root.children, element);
    if (std::next(place.second) == place.first->end())
        throw std::logic_error(element + " is the last one");
    std::iter_swap(place.second, std::next(place.second));
    return request;
}

Request withAttribute(Request request, const std::string &attribute, const std::string &text)
{
    found(request.attributes, attribute).second->text = text;
    return request;
}

Request withoutAttribute(Request request, const std::string &attribute)
{
    request.attributes.erase(found(request.attributes, attribute).second);
    return request;
}
} // namespace conformance
