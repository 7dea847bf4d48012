// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "utf8.h"

#include <array>

namespace cash {
namespace {
constexpr std::uint32_t NO_CHARACTER = 0;

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}
} // namespace

std::uint32_t takeCharacter(std::string_view &text)
{
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length == 0 || lead > 0xF4 || text.size() < length)
        return NO_CHARACTER;
    std::uint32_t character = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i]))
            return NO_CHARACTER;
        character = (character << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    if (character < smallest.at(length))
        return NO_CHARACTER;
    text.remove_prefix(length);
    return character;
}

std::size_t utf16Length(std::string_view text)
{
    std::size_t length = 0;
    for (const char c : text) {
        const bool isOfTwoUnits = static_cast<unsigned char>(c) >= 0xF0;
        if (!isContinuation(c))
            length += isOfTwoUnits ? 2U : 1U;
    }
    return length;
}
} // namespace cash
