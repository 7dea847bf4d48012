// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "carpark.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace cash {
namespace {
constexpr std::array<std::pair<CardState, std::string_view>, 7> STATES = {{
    {CardState::Parked, "parked"},
    {CardState::Paid, "paid"},
    {CardState::Blocked, "blocked"},
    {CardState::Maintenance, "maintenance"},
    {CardState::Unknown, "unknown"},
    {CardState::Malformed, "malformed"},
    {CardState::Conflict, "conflict"},
}};

constexpr unsigned int UID_DIGITS = 8;

std::uint32_t withBytesReversed(std::uint32_t value)
{
    return __builtin_bswap32(value);
}
} // namespace

std::string Card::stayId() const
{
    std::string text = uidText(uid) + "-" + localText(entered);
    text.erase(std::remove(text.begin(), text.end(), ':'), text.end());
    return text;
}

bool operator==(const Card &a, const Card &b)
{
    return std::tie(a.uid, a.state, a.entered, a.paid, a.answerAfter, a.note) ==
           std::tie(b.uid, b.state, b.entered, b.paid, b.answerAfter, b.note);
}

bool operator==(const CarPark &a, const CarPark &b)
{
    return std::tie(a.parkingId, a.tariff, a.cards) == std::tie(b.parkingId, b.tariff, b.cards);
}

const Card *CarPark::find(std::string_view wireUid) const
{
    const std::optional<std::uint32_t> uid = uidFromWire(wireUid);
    const auto card = uid ? cards.find(*uid) : cards.end();
    return card == cards.end() || card->second.state == CardState::Unknown ? nullptr : &card->second;
}

std::string uidText(std::uint32_t uid)
{
    std::string text;
    for (unsigned int bits = 4 * UID_DIGITS; bits > 0; bits -= 4)
        text += "0123456789ABCDEF"[uid >> (bits - 4) & 0xFU];
    return text;
}

std::optional<std::uint32_t> uidFromText(std::string_view text)
{
    const auto isHex = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
    };
    if (text.size() != UID_DIGITS || !std::all_of(text.begin(), text.end(), isHex))
        return std::nullopt;
    return static_cast<std::uint32_t>(std::stoul(std::string(text), nullptr, 16));
}

std::string wireUid(std::uint32_t uid)
{
    return uidText(withBytesReversed(uid));
}

std::optional<std::uint32_t> uidFromWire(std::string_view text)
{
    const std::optional<std::uint32_t> reversed = uidFromText(text);
    return reversed ? std::optional(withBytesReversed(*reversed)) : std::nullopt;
}

std::string stateName(CardState state)
{
    const auto *const found =
        std::find_if(STATES.begin(), STATES.end(), [state](const auto &entry) { return entry.first == state; });
    return std::string(found->second);
}

std::optional<CardState> stateFromName(std::string_view name)
{
    const auto *const found =
        std::find_if(STATES.begin(), STATES.end(), [name](const auto &entry) { return entry.second == name; });
    return found == STATES.end() ? std::nullopt : std::optional(found->first);
}

std::string stateNames()
{
    std::string names;
    for (const auto &[state, name] : STATES)
        names += (names.empty() ? "" : ", ") + std::string(name);
    return names;
}

CarPark seededCarPark(Moment launch)
{
    constexpr Moment stay = 2 * HOUR + 30 * MINUTE;
    constexpr std::chrono::milliseconds slow{5'000};
    const Moment entered = launch - stay;
    const std::array<Card, 10> cards = {{
        {0x10000000, CardState::Malformed, entered, 0, {}, "answers code 0: the request is malformed"},
        {0x10000002, CardState::Unknown, entered, 0, {}, "answers code 2: there is no such card"},
        {0x10000003, CardState::Paid, entered, 0, {}, "answers code 3: nothing is owed"},
        {0x10000004, CardState::Blocked, entered, 0, {}, "answers code 4: the card is blocked"},
        {0x10000005, CardState::Maintenance, entered, 0, {}, "answers code 5: maintenance"},
        {0x10000006, CardState::Conflict, entered, 0, {}, "owes 150.00; answers each payment with code 6"},
        {0x10000007, CardState::Parked, entered, 5000, {}, "has paid 50.00 and owes 100.00"},
        {0x10000008, CardState::Parked, entered, 0, slow, "owes 150.00 and takes 5 s to answer"},
        {0x10000009, CardState::Parked, entered - 27 * HOUR, 0, {}, "has stayed more than a day and owes 800.00"},
        {0x12345678, CardState::Parked, entered, 0, {}, "the demo's card: owes 150.00"},
    }};
    CarPark park;
    park.parkingId = "12";
    park.tariff = {5000, 15 * MINUTE, 50000};
    for (const Card &card : cards)
        park.cards.emplace(card.uid, card);
    return park;
}
} // namespace cash
