// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "card.h"

#include "rules.h"

namespace conformance {
std::optional<Card> readCard(const std::string &text)
{
    constexpr std::size_t UID_SIZE = 8;
    if (text.size() < UID_SIZE + 2 || text[UID_SIZE] != ':')
        return {};
    Card card = {text.substr(0, UID_SIZE), text.substr(UID_SIZE + 1)};
    if (!cash::rules::isCardUid(card.uid))
        return {};
    return card;
}

std::string toString(const Card &card)
{
    return card.uid + ":" + card.id;
}
} // namespace conformance
