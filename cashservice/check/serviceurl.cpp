// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "serviceurl.h"

#include "text.h"

#include <regex>

namespace conformance {
namespace {
bool isPort(const std::string &digits)
{
    constexpr int LAST_PORT = 65535;
    const int port = cash::numberFromText<int>(digits).value_or(0);
    return port >= 1 && port <= LAST_PORT;
}
} // namespace

std::optional<ServiceUrl> readServiceUrl(const std::string &text)
{
    static const std::regex FORM(
        R"((http://(?:[A-Za-z0-9._-]+|\[[0-9A-Fa-f:.]+\]))(?::([0-9]{1,5}))?(/[^\s?#'"\\]*)?)");
    std::smatch parts;
    if (!std::regex_match(text, parts, FORM) || (parts[2].matched && !isPort(parts[2])))
        return {};
    ServiceUrl url = {parts[1].str() + ":" + (parts[2].matched ? parts[2].str() : "80"), parts[3].str()};
    if (!url.path.empty() && url.path.back() == '/')
        url.path.pop_back();
    return url;
}
} // namespace conformance
