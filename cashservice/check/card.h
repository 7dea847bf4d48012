// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace conformance {
struct Card
{
    std::string uid; ///< as requests carry it: eight hexadecimal digits in upper case
    std::string id;
};

/// @return nothing unless @a text is UID:ID.
[[nodiscard]] std::optional<Card> readCard(const std::string &text);
[[nodiscard]] std::string toString(const Card &card);
} // namespace conformance
