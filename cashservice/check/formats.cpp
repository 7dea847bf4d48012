// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "formats.h"

#include "moment.h"
#include "rules.h"
#include "text.h"

#include <cstdint>
#include <regex>

namespace conformance {
namespace {
/// No text of any of the forms is longer; a regular expression would fill the stack with one that is.
bool isShort(const std::string &text)
{
    constexpr std::size_t LONGEST = 64;
    return text.size() <= LONGEST;
}
} // namespace

bool isWholeNumber(const std::string &text)
{
    return cash::rules::isWholeNumber(text);
}

bool isFlag(const std::string &text)
{
    return cash::numberFromText<std::int32_t>(text).has_value();
}

bool isResultCode(const std::string &text)
{
    return isWholeNumber(text) && isFlag(text);
}

bool isTimeStamp(const std::string &text)
{
    static const std::regex REST("(\\.[0-9]+)?(Z|[+-](0[0-9]|1[0-3]):[0-5][0-9]|[+-]14:00)?");
    return isShort(text) && cash::beginsWithDateTime(text) &&
           std::regex_match(text.substr(cash::DATE_TIME_LENGTH), REST);
}
} // namespace conformance
