// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "decoding.h"

#include <cerrno>
#include <iconv.h>
#include <regex>

namespace conformance {
namespace {
struct Mark
{
    std::string bytes;
    const char *encoding;
    bool isPartOfText;
};

// The last two are documents that begin with "<" and have no mark.
const Mark MARKS[] = {{"\xEF\xBB\xBF", "UTF-8", false},
                      {"\xFF\xFE", "UTF-16LE", false},
                      {"\xFE\xFF", "UTF-16BE", false},
                      {std::string("<\0", 2), "UTF-16LE", true},
                      {std::string("\0<", 2), "UTF-16BE", true}};

std::string declaredEncoding(const std::string &document)
{
    static const std::regex DECLARATION(
        R"(^<\?xml\s+version\s*=\s*["'][^"']*["']\s+encoding\s*=\s*["']([A-Za-z0-9._-]+)["'])");
    constexpr std::size_t LONGEST_DECLARATION = 200;
    const std::string start = document.substr(0, LONGEST_DECLARATION);
    std::smatch parts;
    return std::regex_search(start, parts, DECLARATION) ? parts[1].str() : "UTF-8";
}

Decoded converted(iconv_t converter, std::string bytes, const std::string &encoding)
{
    Decoded result;
    char *in = bytes.data();
    std::size_t inLeft = bytes.size();
    while (inLeft > 0) {
        char buffer[4096];
        char *out = buffer;
        std::size_t outLeft = sizeof(buffer);
        const bool stopped = iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1);
        const bool isBadByte = stopped && errno != E2BIG;
        result.text.append(buffer, sizeof(buffer) - outLeft);
        if (!isBadByte)
            continue;
        if (result.complaint.empty())
            result.complaint = "byte " + std::to_string(bytes.size() - inLeft) + " is not " + encoding;
        result.text += '?';
        ++in;
        --inLeft;
    }
    return result;
}
} // namespace

Decoded decoded(const std::string &document)
{
    std::string encoding;
    std::string bytes = document;
    for (const Mark &mark : MARKS) {
        if (encoding.empty() && document.compare(0, mark.bytes.size(), mark.bytes) == 0) {
            encoding = mark.encoding;
            bytes.erase(0, mark.isPartOfText ? 0 : mark.bytes.size());
        }
    }
    if (encoding.empty())
        encoding = declaredEncoding(document);

    iconv_t converter = iconv_open("UTF-8", encoding.c_str());
    // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how iconv says it
    if (converter == reinterpret_cast<iconv_t>(-1))
        return {document, "it declares \"" + encoding + "\", which is no encoding"};
    Decoded result = converted(converter, std::move(bytes), encoding);
    iconv_close(converter);
    return result;
}
} // namespace conformance
