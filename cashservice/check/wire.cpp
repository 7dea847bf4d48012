// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "wire.h"

#include <httplib.h>
#include <pugixml.hpp>

#include <cstdio>
#include <utility>

namespace conformance {
namespace {
const char *const CONTENT_TYPE = "application/soap+xml";

/// For printf's %b between single quotes: every shell's printf knows it, and the line stays a line.
std::string quoted(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        if (c == '\n')
            result += "\\n";
        else if (c == '\\')
            result += "\\\\";
        else if (c == '\'' || static_cast<unsigned char>(c) < ' ' || static_cast<unsigned char>(c) >= 0x7F) {
            char octal[8];
            std::snprintf(octal, sizeof(octal), "\\0%03o", static_cast<unsigned>(static_cast<unsigned char>(c)));
            result += octal;
        } else {
            result += c;
        }
    }
    return "'" + result + "'";
}
std::string reason(httplib::Error error)
{
    switch (error) {
    case httplib::Error::Connection:
        return "no connection";
    case httplib::Error::Write:
        return "closed before the request was sent";
    case httplib::Error::Read:
        return "closed or silent before the answer was whole";
    default:
        return httplib::to_string(error);
    }
}
} // namespace

std::string Exchange::sentText(const std::string &element) const
{
    pugi::xml_document document;
    document.load_buffer(sent.data(), sent.size());
    return document.document_element().child_value(element.c_str());
}

std::string Exchange::summary() const
{
    if (!failure.empty())
        return "no answer: " + failure;
    return "HTTP " + std::to_string(status) + ", " + answer.summary();
}

Wire::Wire(ServiceUrl url, int timeoutSeconds) : m_url(std::move(url)), m_timeoutSeconds(timeoutSeconds) {}

Exchange Wire::post(const std::string &operation, const std::string &document) const
{
    httplib::Client client(m_url.origin);
    client.set_connection_timeout(m_timeoutSeconds);
    client.set_read_timeout(m_timeoutSeconds);
    client.set_write_timeout(m_timeoutSeconds);
    client.set_tcp_nodelay(true);
    Exchange exchange;
    exchange.operation = operation;
    exchange.sent = document;
    const httplib::Result result = client.Post(m_url.path + "/" + operation, document, CONTENT_TYPE);
    if (!result) {
        exchange.failure = reason(result.error());
        return exchange;
    }
    exchange.status = result->status;
    exchange.contentType = result->get_header_value("Content-Type");
    exchange.answer = Answer(result->body);
    return exchange;
}

std::string Wire::urlOf(const std::string &operation) const
{
    return m_url.origin + m_url.path + "/" + operation;
}

std::string Wire::curlLine(const Exchange &exchange) const
{
    return "printf %b " + quoted(exchange.sent) + " | curl -sS -H 'Content-Type: " + CONTENT_TYPE +
           "' --data-binary @- '" + urlOf(exchange.operation) + "'";
}
} // namespace conformance
