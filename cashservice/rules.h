// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/// What the texts of a request's fields must look like: the simple types of docs/schema/common.xsd, written by hand.
/// Texts are in UTF-8.
namespace cash::rules {
[[nodiscard]] bool isAnything(std::string_view text);
/// The terminal's number (four characters or more, or one to four zeros), yy, hhmmss, day of the year, three to five
/// digits of the operation's number. That the number begins with zeros or ends in 001 is all right; it is not compared
/// with TermId, since a terminal's settings may change or lose characters between the two.
[[nodiscard]] bool isSessionId(std::string_view text);
/// Eight upper-case hexadecimal digits; also nothing, which is answered as an unknown card, not as a breach.
[[nodiscard]] bool isCardUid(std::string_view text);
/// Local date and time to the second, then the offset of the zone, or none where the zone has none. The offset is not
/// compared with anything: in summer it is the one of winter.
[[nodiscard]] bool isTimeStamp(std::string_view text);
/// 64 bits in decimal: no plus sign, no leading zeros, not minus zero.
[[nodiscard]] bool isWholeNumber(std::string_view text);
[[nodiscard]] bool isPaymentType(std::string_view text);

/// A text without the blanks around it: numbers and time stamps may have them.
[[nodiscard]] std::string_view withoutBlanksAround(std::string_view text);
} // namespace cash::rules
