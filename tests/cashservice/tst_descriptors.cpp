// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "requests.h"
#include "runningservice.h"
#include "serviceprocess.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <memory>
#include <vector>

namespace {
QByteArray pay(int port)
{
    return resultCode(HttpClient::parkInfoPay(port, Requests::parkInfoPay()).body);
}

/// Serves connections to their ends, so that none of it happens for the first time any more: sanitizers look up classes
/// then, for which they open descriptors. A connection that needs no further thread has got that of one that has ended.
void warmUp(const ServiceProcess &service)
{
    for (int threads = 0; threads != service.threads();) {
        threads = service.threads();
        QCOMPARE(pay(service.port()), QByteArray("1"));
    }
    WAIT_FOR(service.connections(), 0);
}
} // namespace

/// The program when its descriptors run out.
class DescriptorsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void descriptors_thatRunOut_costNewConnectionsAlone()
    {
        ServiceProcess service;
        warmUp(service);
        QVERIFY(service.allowDescriptors(3));
        const QByteArray request = HttpClient::request("POST", "/api/ParkInfoPay", Requests::parkInfoPay());
        std::vector<std::unique_ptr<HttpClient>> clients;
        for (int i = 0; i < 3; ++i) {
            clients.push_back(std::make_unique<HttpClient>(service.port()));
            clients.back()->send(request);
            QCOMPARE(resultCode(clients.back()->read().body), QByteArray("1"));
        }
        for (int i = 0; i < 3; ++i) {
            HttpClient late(service.port());
            QCOMPARE(late.read().status, 503);
            clients.front()->send(request);
            QCOMPARE(resultCode(clients.front()->read().body), QByteArray("1"));
        }
        clients.clear();
        constexpr int limit = 30'000;
        bool isServed = false; // QTRY_VERIFY asks again after it has got its answer
        QTRY_VERIFY_WITH_TIMEOUT(isServed = isServed || pay(service.port()) == "1", limit);
        // What happens at the end happens for the first time, too.
        QVERIFY(service.allowAllDescriptors());
        QCOMPARE(service.endBy(SIGTERM), 0);
        QCOMPARE(service.errors(), QByteArray("cash-service: no descriptor is left for another connection; it was "
                                              "refused, and so will be others, without a word here\n"));
    }
};

TEST_MAIN(DescriptorsTest)
#include "tst_descriptors.moc"
