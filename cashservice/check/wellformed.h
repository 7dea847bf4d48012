// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace pugi {
class xml_document;
}

namespace conformance {
/// Looks for what pugixml lets through and the terminal's parser does not.
/// @param text the document in UTF-8, @param tree what pugixml read of it.
/// @return what is wrong, empty if nothing is.
[[nodiscard]] std::string wellFormedComplaint(const std::string &text, const pugi::xml_document &tree);
} // namespace conformance
