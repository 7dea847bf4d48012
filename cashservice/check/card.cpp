// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "card.h"

#include <algorithm>

namespace conformance {
std::optional<Card> readCard(const std::string &text)
{
    constexpr std::size_t UID_SIZE = 8;
    if (text.size() < UID_SIZE + 2 || text[UID_SIZE] != ':')
        return {};
    Card card = {text.substr(0, UID_SIZE), text.substr(UID_SIZE + 1)};
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); };
    if (!std::all_of(card.uid.begin(), card.uid.end(), isDigit))
        return {};
    return card;
}

std::string toString(const Card &card)
{
    return card.uid + ":" + card.id;
}
} // namespace conformance
