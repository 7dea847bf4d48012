// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "encodings.h"

#include "utf8.h"

#include <cstdint>

namespace cash {
namespace {
void appendWindows1251(std::string &result, std::uint32_t c)
{
    constexpr std::uint32_t firstLetter = 0x0410;
    constexpr std::uint32_t lastLetter = 0x044F;
    if (c < 0x80)
        result += static_cast<char>(c);
    else if (c >= firstLetter && c <= lastLetter)
        result += static_cast<char>(0xC0 + (c - firstLetter));
    else if (c == 0x0401)
        result += '\xA8';
    else if (c == 0x0451)
        result += '\xB8';
    else
        result += "&#" + std::to_string(c) + ';';
}

void appendUnit(std::string &result, std::uint32_t unit)
{
    result += static_cast<char>(unit & 0xFFU);
    result += static_cast<char>(unit >> 8U);
}

void appendUtf16(std::string &result, std::uint32_t c)
{
    constexpr std::uint32_t firstPlane = 0x10000;
    if (c < firstPlane) {
        appendUnit(result, c);
        return;
    }
    appendUnit(result, 0xD800U + ((c - firstPlane) >> 10U));
    appendUnit(result, 0xDC00U + ((c - firstPlane) & 0x3FFU));
}
/// What is no UTF-8 becomes a question mark, byte by byte.
std::uint32_t characterOrMark(std::string_view &text)
{
    const std::size_t before = text.size();
    const std::uint32_t character = takeCharacter(text);
    if (text.size() != before)
        return character;
    text.remove_prefix(1);
    return '?';
}
} // namespace

std::string windows1251FromUtf8(std::string_view text)
{
    std::string result;
    while (!text.empty())
        appendWindows1251(result, characterOrMark(text));
    return result;
}

std::string utf16FromUtf8(std::string_view text)
{
    std::string result = "\xFF\xFE";
    while (!text.empty())
        appendUtf16(result, characterOrMark(text));
    return result;
}
} // namespace cash
