// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cash {
/// What is wrong with a document that pugixml would take nevertheless: no UTF-8, characters and references that XML
/// does not have, a document type declaration, comments and character data with what they must not hold.
/// @return what is wrong, in Russian, for the text of an answer; empty when nothing is.
[[nodiscard]] std::string xmlTrouble(std::string_view document);

/// Takes the first character off a text that is not empty.
/// @return its code; 0 and nothing taken where the text does not begin with a character in UTF-8.
[[nodiscard]] std::uint32_t takeCharacter(std::string_view &text);
/// How long a text of valid UTF-8 would be in UTF-16.
[[nodiscard]] std::size_t utf16Length(std::string_view text);
} // namespace cash
