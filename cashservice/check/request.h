// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace conformance {
/// An element with a text, or with children.
struct Node
{
    std::string name;
    std::string text;
    std::vector<Node> children;
};

/// A request in parts, so that each can be made wrong by itself.
struct Request
{
    std::string operation; ///< the last word of the path that it is posted to
    std::vector<Node> attributes;
    Node root;

    /// The document as a terminal writes it: UTF-8, no encoding declared, an element a line.
    [[nodiscard]] std::string xml() const;
};

// Each gives the request with one change. A name that the request has not is a mistake of the caller
// (std::logic_error).
[[nodiscard]] Request with(Request request, const std::string &element, const std::string &text);
[[nodiscard]] Request without(Request request, const std::string &element);
[[nodiscard]] Request withTwice(Request request, const std::string &element);
[[nodiscard]] Request withLater(Request request, const std::string &element);
[[nodiscard]] Request withAttribute(Request request, const std::string &attribute, const std::string &text);
[[nodiscard]] Request withoutAttribute(Request request, const std::string &attribute);
} // namespace conformance
