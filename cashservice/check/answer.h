// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace conformance {
struct Field
{
    std::string name;
    std::string text;
    bool holdsElements = false;
};

/// What was read of an answer, forgivingly: a Response in a SOAP envelope or in lower case is one too, so that a check
/// about one rule does not fall with every other. What was forgiven stands beside it, for the checks that are about it.
class Answer
{
public:
    Answer() = default;
    explicit Answer(const std::string &body);

    std::string encodingComplaint; ///< empty if the bytes are in the encoding that the document declares
    std::string xmlComplaint;      ///< empty if the document is well-formed
    bool isResponse = false;
    bool isWrapped = false; ///< something is around the Response
    std::string name;       ///< the Response's local name as written
    std::vector<Field> attributes;
    std::vector<Field> fields;

    /// The text of the last one of that name, as the terminal takes it.
    [[nodiscard]] std::optional<std::string> field(const std::string &name) const;
    /// The attribute of exactly that name.
    [[nodiscard]] std::optional<std::string> attribute(const std::string &name) const;
    /// Whether the result code is 1, if need be of an attribute in lower case or with a prefix.
    [[nodiscard]] bool isSuccess() const;
    /// The digits of an amount, whatever is between them; 0 without any.
    [[nodiscard]] long long amount(const std::string &name) const;
    /// For people: the result code and the error text, or why there is none.
    [[nodiscard]] std::string summary() const;
};
} // namespace conformance
