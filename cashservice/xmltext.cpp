// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "xmltext.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace cash {
namespace {
constexpr std::uint32_t NO_CHARACTER = 0;

bool isXmlCharacter(std::uint32_t c)
{
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

bool areXmlCharacters(std::string_view text)
{
    while (!text.empty()) {
        if (!isXmlCharacter(takeCharacter(text)))
            return false;
    }
    return true;
}

/// @param digits what stands between "&#" and ";".
bool isCharacterReference(std::string_view digits)
{
    const std::uint32_t base = !digits.empty() && digits.front() == 'x' ? 16 : 10;
    if (base == 16)
        digits.remove_prefix(1);
    std::uint32_t value = 0;
    for (const char c : digits) {
        constexpr std::string_view hexadecimal = "0123456789abcdef0123456789ABCDEF";
        const std::size_t found = hexadecimal.find(c);
        if (found == std::string_view::npos || found % 16 >= base || value > 0x10FFFF)
            return false;
        value = value * base + static_cast<std::uint32_t>(found % 16);
    }
    return !digits.empty() && isXmlCharacter(value);
}

/// Only what XML defines itself: there is no document type that could define more.
bool areReferencesKnown(std::string_view text)
{
    constexpr std::array<std::string_view, 5> names = {"amp", "lt", "gt", "quot", "apos"};
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
        const std::size_t end = text.find(';', at);
        if (end == std::string_view::npos)
            return false;
        const std::string_view name = text.substr(at + 1, end - at - 1);
        const bool isNumber = !name.empty() && name.front() == '#';
        if (isNumber ? !isCharacterReference(name.substr(1))
                     : std::find(names.begin(), names.end(), name) == names.end())
            return false;
    }
    return true;
}

/// Where the tag at the beginning of @a text ends: ">" in a quoted value does not count.
std::size_t tagEnd(std::string_view text)
{
    char quote = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (quote != '\0')
            quote = text[i] == quote ? '\0' : quote;
        else if (text[i] == '"' || text[i] == '\'')
            quote = text[i];
        else if (text[i] == '>')
            return i + 1;
    }
    return text.size();
}

bool startsWith(std::string_view text, std::string_view with)
{
    return text.substr(0, with.size()) == with;
}

std::size_t endOf(std::string_view text, std::string_view mark, std::size_t from)
{
    const std::size_t found = text.find(mark, from);
    return found == std::string_view::npos ? text.size() : found + mark.size();
}

bool isNameCharacter(char c)
{
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return isLetter || (c >= '0' && c <= '9') || std::string_view("_:.-").find(c) != std::string_view::npos ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// pugixml takes any name. The declaration's is looked at by who knows where it may stand.
bool isInstructionNamed(std::string_view instruction)
{
    const std::string_view text = instruction.substr(2, instruction.rfind("?>") - 2);
    const std::string_view name = text.substr(0, text.find_first_of(" \t\r\n"));
    const bool beginsWell =
        !name.empty() && std::string_view("0123456789.-").find(name.front()) == std::string_view::npos;
    return beginsWell && std::all_of(name.begin(), name.end(), isNameCharacter);
}

/// Takes one piece of markup, or the text before the next, off @a text; what is wrong with it.
std::string takePiece(std::string_view &text)
{
    const bool isComment = startsWith(text, "<!--");
    const bool isData = startsWith(text, "<![CDATA[");
    const bool isInstruction = startsWith(text, "<?");
    std::size_t end = 0;
    if (isComment)
        end = endOf(text, "--", 4);
    else if (isData)
        end = endOf(text, "]]>", 0);
    else if (isInstruction)
        end = endOf(text, "?>", 0);
    else
        end = text.front() == '<' ? tagEnd(text) : std::min(text.find('<'), text.size());
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(end);
    if (isInstruction)
        return isInstructionNamed(piece) ? "" : "недопустимая инструкция";
    if (isData)
        return std::string();
    if (isComment) {
        const bool isClosed = !text.empty() && text.front() == '>';
        text.remove_prefix(isClosed ? 1 : 0);
        return isClosed ? "" : "недопустимый комментарий";
    }
    if (startsWith(piece, "<!"))
        return "DOCTYPE не допускается";
    if (piece.front() != '<' && piece.find("]]>") != std::string_view::npos)
        return "недопустимое ]]>";
    return areReferencesKnown(piece) ? "" : "неизвестная ссылка на символ или сущность";
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

std::string xmlTrouble(std::string_view document)
{
    if (!areXmlCharacters(document))
        return "ожидается UTF-8 без управляющих символов";
    std::string trouble;
    while (!document.empty() && trouble.empty())
        trouble = takePiece(document);
    return trouble;
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
