// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "tariff.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace cash {
/// How the service treats a card.
enum class CardState
{
    Parked,      ///< owes what the tariff says
    Paid,        ///< owes nothing, however long it stays: code 3
    Blocked,     ///< code 4
    Maintenance, ///< code 5
    Unknown,     ///< code 2, as a card that is not listed
    Malformed,   ///< code 0, as if the request broke the protocol
    Conflict,    ///< owes as any; each registration is answered with code 6
};

struct Card
{
    std::uint32_t uid = 0;
    CardState state = CardState::Parked;
    Moment entered = 0;
    /// What was paid before the service was started.
    Hundredths paid = 0;
    /// How long the card's answers take.
    std::chrono::milliseconds answerAfter{0};
    /// For people: what the card is there for.
    std::string note;

    /// Names this stay of the card in answers and in the ledger.
    [[nodiscard]] std::string stayId() const;
};

struct CarPark
{
    std::string parkingId;
    Tariff tariff;
    std::map<std::uint32_t, Card> cards;

    /// The card, or null when there is none or it is to be treated so.
    [[nodiscard]] const Card *find(std::string_view wireUid) const;
};

[[nodiscard]] bool operator==(const Card &a, const Card &b);
[[nodiscard]] bool operator==(const CarPark &a, const CarPark &b);

/// The car park of a service started without a file: a card for each result code, so that a newcomer's terminal gets
/// a sensible answer at once.
[[nodiscard]] CarPark seededCarPark(Moment launch);

/// "12345678": eight hexadecimal digits, the highest first, as people write it.
[[nodiscard]] std::string uidText(std::uint32_t uid);
[[nodiscard]] std::optional<std::uint32_t> uidFromText(std::string_view text);
/// On the wire the lowest byte comes first: the UID 12345678 is "78563412" there.
[[nodiscard]] std::string wireUid(std::uint32_t uid);
[[nodiscard]] std::optional<std::uint32_t> uidFromWire(std::string_view text);

/// The word for a state in the parking file and in /admin.
[[nodiscard]] std::string stateName(CardState state);
[[nodiscard]] std::optional<CardState> stateFromName(std::string_view name);
[[nodiscard]] std::string stateNames();
} // namespace cash
