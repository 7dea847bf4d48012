// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace cash {
/// Cyrillic by its code, ASCII as it is, everything else as a character reference.
[[nodiscard]] std::string windows1251FromUtf8(std::string_view text);
/// Little endian, with a byte order mark.
[[nodiscard]] std::string utf16FromUtf8(std::string_view text);
} // namespace cash
