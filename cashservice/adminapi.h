// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "journal.h"
#include "service.h"

#include <httplib.h>

#include <string>
#include <string_view>

namespace cash {
/// /admin/…: what the service has seen, holds and does wrong on purpose, in JSON, for clients on the same machine.
///
///     GET /admin                 what there is
///     GET, DELETE /admin/requests
///     GET /admin/sessions, /admin/payments, /admin/conflicts
///     GET, POST, DELETE /admin/faults; DELETE /admin/faults/ID
class AdminApi
{
public:
    AdminApi(Service &service, Journal &journal) : m_service(service), m_journal(journal) {}

    [[nodiscard]] static bool isPath(std::string_view path);
    /// Whether an address, as text, is this machine's own.
    [[nodiscard]] static bool isLoopback(std::string_view address);
    /// Whether a Host header names this machine as itself: a web page of any other name, which leads here, must not be
    /// served by this machine's browser.
    [[nodiscard]] static bool isOwnName(std::string_view host);

    void answer(const httplib::Request &request, httplib::Response &response);

private:
    void answerOneOfThisMachine(const httplib::Request &request, httplib::Response &response);
    void answerFaults(const httplib::Request &request, httplib::Response &response);
    void addFault(const std::string &body, httplib::Response &response);

    Service &m_service;
    Journal &m_journal;
};
} // namespace cash
