// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace conformance {
struct Decoded
{
    std::string text;      ///< UTF-8; a question mark for each byte that could not be read
    std::string complaint; ///< what is wrong with the encoding; empty if nothing is
};

/// Reads a document in the encoding that its byte order mark or its XML declaration names, UTF-8 without either. What
/// an HTTP header says about it does not count: the terminal never looks there.
[[nodiscard]] Decoded decoded(const std::string &document);
} // namespace conformance
