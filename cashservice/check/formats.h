// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// The forms that the protocol's schemas give to the texts of an answer.
namespace conformance {
/// A 64-bit integer in decimal: no plus sign, no leading zeros, no point.
[[nodiscard]] bool isWholeNumber(const std::string &text);
/// A 32-bit integer in decimal.
[[nodiscard]] bool isFlag(const std::string &text);
/// 1 and the like: a 32-bit whole number.
[[nodiscard]] bool isResultCode(const std::string &text);
/// yyyy-MM-ddTHH:mm:ss of a day that there is, with a fraction, "Z" or an offset if wanted.
[[nodiscard]] bool isTimeStamp(const std::string &text);
} // namespace conformance
