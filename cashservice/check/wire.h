// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "answer.h"
#include "serviceurl.h"

#include <string>

namespace conformance {
struct Exchange
{
    std::string operation; ///< the last word of the path
    std::string sent;
    std::string failure; ///< why no HTTP answer came; empty if one did
    int status = 0;
    std::string contentType;
    Answer answer;

    /// The text of an element of the request.
    [[nodiscard]] std::string sentText(const std::string &element) const;
    /// For people.
    [[nodiscard]] std::string summary() const;
};

/// Posts documents to a cash service as the terminal does: a connection for each, no redirect followed. May be used by
/// several threads at once.
class Wire
{
public:
    Wire(ServiceUrl url, int timeoutSeconds);

    [[nodiscard]] Exchange post(const std::string &operation, const std::string &document) const;
    [[nodiscard]] std::string urlOf(const std::string &operation) const;
    /// A line for a shell that posts the same document again.
    [[nodiscard]] std::string curlLine(const Exchange &exchange) const;

private:
    ServiceUrl m_url;
    int m_timeoutSeconds;
};
} // namespace conformance
