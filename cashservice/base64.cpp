// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "base64.h"

#include <cstdint>

namespace cash {
std::string base64(std::string_view bytes)
{
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::string_view group = bytes.substr(i, 3);
        std::uint32_t bits = 0;
        for (std::size_t j = 0; j < 3; ++j)
            bits = (bits << 8U) | (j < group.size() ? static_cast<unsigned char>(group[j]) : 0U);
        for (std::size_t j = 0; j < 4; ++j)
            text += j <= group.size() ? alphabet[(bits >> (18U - 6U * j)) & 0x3FU] : '=';
    }
    return text;
}
} // namespace cash
