// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/testcase.h"
#include "wireexchange.h"

#include <algorithm>

/// The client and answers of a size that nobody expects.
class ParkomatAccessManagerLargeTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void answer_of64MiB_isReadWhole_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("seen");
        for (const WireExchange::Kind &kind : WireExchange::KINDS)
            QTest::newRow(kind.name) << kind.body << kind.seen;
    }

    void answer_of64MiB_isReadWhole()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, seen);
        ignoreLog();
        constexpr int size = 64 * 1024 * 1024;
        // Ahead of what is read: who stops before the end sees less.
        body.insert(body.indexOf('>', body.indexOf("<Response")) + 1, QByteArray(size - body.size(), ' '));
        QCOMPARE(body.size(), size);
        FreshJournal::make();
        RawServer server;
        server.plan({RawAnswer::http("200 OK", body)});
        useService(server.port());
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.postData(QStringLiteral("X"), DOCUMENT);
        // A minute is little for a machine that has other things to do as well.
        constexpr int limitMs = 240'000;
        waitUntil([&probe] { return !probe.seen().isEmpty(); }, limitMs);
        QCOMPARE(probe.seen(), QStringList(seen));
        verifyJournal(seen);
        int largest = 0;
        const QList<LogLine> lines = MessageLog::take();
        for (const LogLine &line : lines)
            largest = std::max(largest, line.text.size());
        QCOMPARE(largest, size);
    }
};

TEST_MAIN(ParkomatAccessManagerLargeTest)
#include "tst_parkomataccessmanagerlarge.moc"
