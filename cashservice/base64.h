// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace cash {
/// RFC 4648, section 4, with padding.
[[nodiscard]] std::string base64(std::string_view bytes);
} // namespace cash
