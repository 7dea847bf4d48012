// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientprobe.h"
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

struct Footprint
{
    int descriptors;
    int threads;
    size_t heap;
};

int entries(const char *folder)
{
    return QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

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

Footprint footprint()
{
    waitUntil([] { return !isExchangeThreadRunning(); });
    return {entries("/proc/self/fd"), entries("/proc/self/task"), mallinfo2().uordblks};
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
        waitUntil([&child] { return child->state() == QProcess::NotRunning; });
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
    const Footprint first = footprint();
    for (int i = 0; i < CLIENTS; ++i)
        clients.push_back(usedClient());
    const Footprint last = footprint();
    if (std::find(clients.cbegin(), clients.cend(), nullptr) != clients.cend())
        std::puts("an exchange failed");
    if (last.descriptors != first.descriptors)
        std::printf("%d descriptors instead of %d\n", last.descriptors, first.descriptors);
    if (last.threads != first.threads)
        std::printf("%d threads instead of %d\n", last.threads, first.threads);
    const size_t heapEach = (last.heap - first.heap) / CLIENTS;
    if (last.heap > first.heap && heapEach > MOST_HEAP_EACH)
        std::printf("%zu bytes of heap each\n", heapEach);
    return 0;
}

TEST_MAIN(ParkomatAccessManagerFootprintTest)
#include "tst_parkomataccessmanagerfootprint.moc"
