// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/cashservice.h"
#include "support/handlerbench.h"
#include "support/livingobjects.h"
#include "support/openresources.h"

#include <QApplication>
#include <QPluginLoader>
#include <QSet>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <vector>

#include <malloc.h>

namespace {
constexpr int PAYMENTS = 1'000;
/// By then everything is made that is made once.
constexpr int WARM_UP = 100;
/// Longer than it takes to the details, shorter than any message stays.
constexpr int LATER_MS = 3'000;
/// What a customer pays, so that the card owes something to the end.
constexpr qint64 HUNDREDTHS_EACH = 10;
constexpr long MOST_HEAP_EACH = 6 * 1024;
// Under instruments and on a busy machine; else it is ten seconds.
constexpr int LIMIT_MS = 240'000;

/// Where the plugin's lines came from since the last payment began, in the order of the file: what it did, and how
/// often.
std::vector<int> trace;

void keepTrace(QtMsgType /*type*/, const QMessageLogContext &context, const QString & /*text*/)
{
    if (context.file != nullptr && qstrncmp(context.file, "src/", 4) == 0)
        trace.push_back(context.line);
}

/// A host that never lets go of the plugin, with a session and a provider for each payment.
class KeptPlugin
{
public:
    KeptPlugin() : m_loader(QStringLiteral(PLUGIN_FILE)), m_root(m_loader.instance()), m_bench(m_root.get()) {}

    /// @return whether the payment came to its end.
    [[nodiscard]] bool pay(int uin)
    {
        m_bench.newPayment();
        m_bench.startWithScreen();
        m_bench.readCard(HandlerBench::demoCard());
        waitUntil([this] { return !m_bench.parameter(QStringLiteral("SummToPay")).isEmpty(); });
        leap(LATER_MS);
        m_bench.form()->showPayDetail();
        const bool isAnswered = m_bench.commitAnswered({HandlerBench::payment(uin, HUNDREDTHS_EACH)});
        m_bench.plugin()->stop();
        leap(LATER_MS);
        return isAnswered && m_bench.takeSignals().contains(QStringLiteral("needShowPayDetail"));
    }

    /// The cash service's clients: the one of each payment lives on.
    [[nodiscard]] int clients() const
    {
        const QObjectList &children = m_root->children();
        return static_cast<int>(std::count_if(children.cbegin(), children.cend(), [](const QObject *child) {
            return qstrcmp(child->metaObject()->className(), "ParkomatAccessManager") == 0;
        }));
    }

private:
    QPluginLoader m_loader;
    std::unique_ptr<QObject> m_root;
    HandlerBench m_bench;
};

/// The classes of the objects that are no client's, nor part of one: one name for each object.
QStringList otherObjects(const LivingObjects &objects)
{
    static const QSet<QString> clients = {
        QStringLiteral("ParkomatAccessManager"), QStringLiteral("QNetworkAccessManager"),
        // Parts of Qt's manager, but not its children.
        QStringLiteral("QNetworkAccessCache"), QStringLiteral("QNetworkConfigurationManager")};
    QStringList others;
    for (const QString &name : objects.classes()) {
        if (!clients.contains(name))
            others.append(name);
    }
    return others;
}

/// Bytes in use.
long heap()
{
    malloc_trim(0);
    const struct mallinfo2 info = mallinfo2();
    return static_cast<long>(info.uordblks + info.hblkhd);
}

void print(const char *name, long value)
{
    std::printf("%s %ld\n", name, value);
    std::fflush(stdout);
}
} // namespace

/// A thousand payments in one process, by a host that keeps its plugin.
class ThousandPaymentsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_measured = measuredBy("takesPayments");
        m_recorded = m_service.payments().size();
        m_exchanges = m_service.exchanges();
        m_counted = measuredBy("countsObjects");
    }

    void payments_all_areOnTheServicesRecord()
    {
        QCOMPARE(m_measured.value("failed", -1), 0);
        QCOMPARE(m_recorded, PAYMENTS);
        // A check and a registration each, at the end as at the beginning.
        QCOMPARE(m_exchanges, 2 * PAYMENTS);
    }

    void threadsAndDescriptors_atTheEnd_areThoseOfTheBeginning() { QCOMPARE(m_measured.value("left", -1), 0); }

    void work_ofTheLastPayment_isThatOfAnEarlyOne()
    {
        QVERIFY(m_measured.value("lines") > 0);
        QCOMPARE(m_measured.value("same lines"), 1);
    }

    void clients_liveOn_oneForEachPayment() { QCOMPARE(m_measured.value("clients"), PAYMENTS); }

    void objects_thatAreNoClients_areThoseOfTheBeginning()
    {
        QCOMPARE(m_counted.value("failed", -1), 0);
        QVERIFY(m_counted.value("objects") > 0);
        QCOMPARE(m_counted.value("same objects"), 1);
    }

#ifdef IS_HEAP_MEASURABLE
    void heap_ofAPayment_isBounded()
    {
        const long each = m_measured.value("heap each", LONG_MAX);
        QVERIFY2(each <= MOST_HEAP_EACH, qPrintable(QStringLiteral("%1 bytes").arg(each)));
    }
#endif

private:
    /// "NAME NUMBER" on each line of what a child process says.
    [[nodiscard]] QMap<QByteArray, long> measuredBy(const char *name) const
    {
        const auto child = ChildProcess::start(name, {QString::number(m_service.port())});
        child->waitForFinished(LIMIT_MS);
        QMap<QByteArray, long> measured;
        const QList<QByteArray> lines = child->readAllStandardOutput().split('\n');
        for (const QByteArray &line : lines) {
            const int blank = line.lastIndexOf(' ');
            measured.insert(line.left(blank), line.mid(blank + 1).toLong());
        }
        return measured;
    }

    CashService m_service;
    QMap<QByteArray, long> m_measured;
    QMap<QByteArray, long> m_counted;
    int m_recorded = 0;
    int m_exchanges = 0;
};

namespace {
/// Takes payments, looks at the process after some of them, and again at the end.
class Measurement
{
public:
    explicit Measurement(const QStringList &arguments)
    {
        HandlerBench::useService(arguments.value(0).toUShort());
        trace.reserve(1'000);
        qInstallMessageHandler(keepTrace);
        m_plugin = std::make_unique<KeptPlugin>();
    }

    void pay(int times)
    {
        for (int i = 0; i < times; ++i) {
            trace.clear();
            m_failed += m_plugin->pay(++m_uin) ? 0 : 1;
        }
    }
    [[nodiscard]] const KeptPlugin &plugin() const { return *m_plugin; }
    [[nodiscard]] int failed() const { return m_failed; }

private:
    std::unique_ptr<KeptPlugin> m_plugin;
    int m_uin = 0;
    int m_failed = 0;
};
} // namespace

/// Alone in its process, so that nothing but the payments is measured.
TEST_CHILD(takesPayments)
{
    Measurement measurement(arguments);
    measurement.pay(WARM_UP);
    const std::vector<int> traceBefore = trace;
    const OpenResources resources;
    const long heapBefore = heap();
    measurement.pay(PAYMENTS - WARM_UP);
    print("heap each", (heap() - heapBefore) / (PAYMENTS - WARM_UP));
    print("failed", measurement.failed());
    print("clients", measurement.plugin().clients());
    print("lines", static_cast<long>(traceBefore.size()));
    print("same lines", trace == traceBefore ? 1 : 0);
    print("left", resources.left().size());
    return 0;
}

/// In a process of its own: the account of the objects is kept on the heap, too.
TEST_CHILD(countsObjects)
{
    const LivingObjects objects;
    Measurement measurement(arguments);
    measurement.pay(WARM_UP);
    const QStringList before = otherObjects(objects);
    measurement.pay(WARM_UP);
    const QStringList after = otherObjects(objects);
    print("failed", measurement.failed());
    print("objects", before.size());
    print("same objects", after == before ? 1 : 0);
    return 0;
}

WIDGET_TEST_MAIN(ThousandPaymentsTest)
#include "tst_thousandpayments.moc"
