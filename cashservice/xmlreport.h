// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cash {
/// What expat says of a document. It knows all the rules of XML; pugixml, which documents are read with, takes more.
struct XmlReport
{
    /// What is wrong, in English; empty: the document is well-formed.
    std::string error;
    /// Where, counted from 1.
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    /// As its XML declaration says; empty where that says nothing.
    std::string version;
    std::string encoding;
    bool hasDocumentType = false;
};

/// @param document in UTF-8, whatever encoding it declares; it may have a byte order mark.
[[nodiscard]] XmlReport examineXml(std::string_view document);
} // namespace cash
