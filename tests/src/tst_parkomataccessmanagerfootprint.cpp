// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientprobe.h"
#include "support/openresources.h"
#include "support/rawserver.h"
#include "support/testcase.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include <malloc.h>

namespace {
constexpr int CLIENTS = 1'000;
constexpr size_t MOST_HEAP_EACH = 4 * 1024;

/// The thread in which Qt works on exchanges; its others serve the whole process.
bool isExchangeThreadRunning()
{
    const QString tasks = QStringLiteral("/proc/self/task");
    const QStringList ids = QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return std::any_of(ids.cbegin(), ids.cend(), [&tasks](const QString &id) {
        QFile name(tasks + QLatin1Char('/') + id + QStringLiteral("/comm"));
        return name.open(QIODevice::ReadOnly) && name.readAll().contains("QNetworkAccess");
    });
}

/// @return in bytes.
size_t heapInUse()
{
    waitUntil([] { return !isExchangeThreadRunning(); });
    return mallinfo2().uordblks;
}

/// A client that has had one exchange. @return null when it did not end well.
std::unique_ptr<ParkomatAccessManager> usedClient()
{
    auto client = std::make_unique<ParkomatAccessManager>();
    bool isDone = false;
    bool wasThreadSeen = false;
    QObject context;
    QObject::connect(client.get(), &ParkomatAccessManager::parkingCheckResponse, &context, [&] {
        isDone = true;
        wasThreadSeen = isExchangeThreadRunning();
    });
    client->postData(QStringLiteral("ParkingCheck"), QStringLiteral("<Request/>"));
    waitUntil([&isDone] { return isDone; });
    return isDone && wasThreadSeen ? std::move(client) : nullptr;
}
} // namespace

/// What clients that are done leave in the process: they live as long as the handler, one for each payment.
class ParkomatAccessManagerFootprintTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void thousandClients_keptAlive_costHeapOnly()
    {
        RawServer server;
        server.planForAll({RawAnswer::http("200 OK", Answers::CHECK)});
        useService(server.port());
        const auto child = ChildProcess::start("keepsClients");
        // A thousand exchanges, on a machine that has other things to do as well.
        constexpr int limitMs = 240'000;
        waitUntil([&child] { return child->state() == QProcess::NotRunning; }, limitMs);
        const QByteArray said = child->readAll();
        QCOMPARE(said.constData(), "");
        QCOMPARE(child->exitStatus(), QProcess::NormalExit);
        QCOMPARE(child->exitCode(), 0);
        QCOMPARE(server.requests().size(), CLIENTS + 1);
        QCOMPARE(server.complaint(), QString());
    }
};

/// Alone in its process, so that nothing but the clients is counted. Says what does not hold.
TEST_CHILD(keepsClients)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    std::vector<std::unique_ptr<ParkomatAccessManager>> clients;
    clients.reserve(CLIENTS + 1);
    clients.push_back(usedClient());
    const size_t firstHeap = heapInUse();
    const OpenResources first;
    for (int i = 0; i < CLIENTS; ++i)
        clients.push_back(usedClient());
    const QStringList left = first.left();
    const size_t lastHeap = heapInUse();
    if (std::find(clients.cbegin(), clients.cend(), nullptr) != clients.cend())
        std::puts("an exchange failed");
    for (const QString &what : left)
        std::printf("left behind: %s\n", qPrintable(what));
    if (lastHeap > firstHeap && (lastHeap - firstHeap) / CLIENTS > MOST_HEAP_EACH)
        std::printf("%zu bytes of heap each\n", (lastHeap - firstHeap) / CLIENTS);
    return 0;
}

TEST_MAIN(ParkomatAccessManagerFootprintTest)
#include "tst_parkomataccessmanagerfootprint.moc"
