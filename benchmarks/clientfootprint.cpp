// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientfootprint.h"

#include "clientexchange.h"
#include "clientresponder.h"
#include "terminal.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QThread>

#include <cstdio>
#include <memory>
#include <vector>

#include <malloc.h>

namespace {
constexpr int CLIENTS = 1'000;
constexpr long MOST_HEAP_EACH = 4 * 1024;

struct Footprint
{
    int descriptors;
    int threads;
    long heap;
};

int entries(const char *folder)
{
    return QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// The last exchange's thread has ended when its client is done, but takes a moment to leave the process.
void waitForThreads(int most)
{
    const QDeadlineTimer limit(1'000);
    while (entries("/proc/self/task") > most && !limit.hasExpired())
        QThread::yieldCurrentThread();
}

Footprint footprint()
{
    return {entries("/proc/self/fd"), entries("/proc/self/task"), static_cast<long>(mallinfo2().uordblks)};
}

std::unique_ptr<ParkomatAccessManager> usedClient()
{
    auto client = std::make_unique<ParkomatAccessManager>();
    ClientExchange::run(*client, QStringLiteral("<Request/>"));
    return client;
}
} // namespace

int ClientFootprint::print()
{
    Terminal::reset();
    const ClientResponder responder;
    responder.configure();
    std::vector<std::unique_ptr<ParkomatAccessManager>> clients;
    clients.reserve(CLIENTS + 1);
    clients.push_back(usedClient());
    // Qt keeps two of its own for the whole process.
    waitForThreads(3);
    const Footprint first = footprint();
    for (int i = 0; i < CLIENTS; ++i)
        clients.push_back(usedClient());
    waitForThreads(first.threads);
    const Footprint last = footprint();
    const int descriptors = last.descriptors - first.descriptors;
    const int threads = last.threads - first.threads;
    const long heapEach = (last.heap - first.heap) / CLIENTS;
    std::printf("%d clients: %d more descriptors, %d more threads, %ld bytes of heap each (bound %ld)\n", CLIENTS,
                descriptors, threads, heapEach, MOST_HEAP_EACH);
    return descriptors > 0 || threads > 0 || heapEach > MOST_HEAP_EACH ? 1 : 0;
}
