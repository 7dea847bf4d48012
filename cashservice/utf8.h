// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace cash {
/// Takes the first character off a text that is not empty.
/// @return its code; 0 and nothing taken where the text does not begin with a character in UTF-8.
[[nodiscard]] std::uint32_t takeCharacter(std::string_view &text);
/// How long a text of valid UTF-8 would be in UTF-16.
[[nodiscard]] std::size_t utf16Length(std::string_view text);
} // namespace cash
