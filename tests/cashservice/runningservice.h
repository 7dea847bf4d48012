// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "httpclient.h"
#include "requests.h"
#include "server.h"
#include "support/workdirectory.h"

#include <QByteArray>
#include <QTest>

/// The moment at which the services of tests stand still: 2024-03-07T14:05:09 in Moscow.
constexpr cash::Moment NOW = 1'709'809'509;

/// A service in this process, on a free port, with the seeded car park and a clock that stands still.
class RunningService
{
public:
    explicit RunningService(const cash::Limits &limits = {}, const std::string &database = ":memory:")
        : m_ledger(database), m_service(cash::seededCarPark(NOW), m_ledger, [this] { return m_now.load(); }),
          m_server(m_service, "/api", limits)
    {
        m_server.start("127.0.0.1", 0);
    }

    [[nodiscard]] int port() const { return m_server.port(); }
    [[nodiscard]] cash::Ledger &ledger() { return m_ledger; }
    void setNow(cash::Moment now) { m_now = now; }
    void setFault(const std::string &rule) { m_service.faults().add(cash::faultFromRule(rule)); }
    /// How often the first fault has struck.
    [[nodiscard]] std::uint64_t struck() const { return m_service.faults().entries().front().struck; }
    void stop() { m_server.stop(); }

private:
    std::atomic<cash::Moment> m_now = NOW;
    cash::Ledger m_ledger;
    mutable cash::Service m_service;
    cash::Server m_server;
};

/// What stands in an element of an answer.
inline QByteArray elementText(const QByteArray &xml, const QByteArray &name)
{
    const int begin = xml.indexOf('<' + name + '>') + name.size() + 2;
    const int end = xml.indexOf("</" + name + '>');
    return end < begin ? QByteArray() : xml.mid(begin, end - begin);
}

inline QByteArray resultCode(const QByteArray &xml)
{
    const QByteArray mark = "ResultCode=\"";
    const int begin = xml.indexOf(mark);
    return begin < 0 ? QByteArray()
                     : xml.mid(begin + mark.size(), xml.indexOf('"', begin + mark.size()) - begin - mark.size());
}

inline void verifyStillServes(const RunningService &service)
{
    QCOMPARE(resultCode(HttpClient::parkingCheck(service.port(), Requests::parkingCheck()).body), QByteArray("1"));
}
