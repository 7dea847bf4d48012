// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace conformance {
/// Where a cash service is: plain HTTP, as terminals reach it.
struct ServiceUrl
{
    std::string origin; ///< http://HOST:PORT
    std::string path;   ///< what stands before "/ParkingCheck": empty, or with a slash in front and none at the end
};

/// @return nothing unless @a text is http://HOST[:PORT][/PATH].
[[nodiscard]] std::optional<ServiceUrl> readServiceUrl(const std::string &text);
} // namespace conformance
