// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cash {
enum class Encoding
{
    Utf8,
    Windows1251,
    Utf16
};

/// An answer before it is written down: faults change it here.
struct Answer
{
    using Texts = std::vector<std::pair<std::string, std::string>>;

    /// Of the root element: Operation and ResultCode.
    Texts attributes;
    /// The children, in the order in which they are written.
    Texts fields;

    [[nodiscard]] std::string text(std::string_view name) const;
};

/// The document in UTF-8, or with an XML declaration that names the other encoding. Characters that windows-1251 does
/// not have become references.
[[nodiscard]] std::string toXml(const Answer &answer, Encoding encoding = Encoding::Utf8);
/// Takes apart what toXml() made in UTF-8.
[[nodiscard]] Answer answerFromXml(const std::string &xml);
} // namespace cash
