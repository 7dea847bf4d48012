// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugininterface/ipaybyprovidersettingswidget.h"
#include "support/cashservice.h"
#include "support/handlerbench.h"
#include "support/livingobjects.h"
#include "support/stillclock.h"

#include <QApplication>
#include <QPluginLoader>

#include <cstdio>

namespace {
/// Longer than it takes to the details, shorter than any message stays.
constexpr int LATER_MS = 3'000;

/// A terminal that loads the plugin from its file, and knows it through its interface, the form and its slots' names.
class Terminal
{
public:
    Terminal() : m_loader(QStringLiteral(PLUGIN_FILE)) { HandlerBench::useService(m_service.port()); }
    ~Terminal() { Q_UNUSED(unload()) }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    [[nodiscard]] const CashService &service() const { return m_service; }
    [[nodiscard]] HandlerBench &bench() { return *m_bench; }

    /// A plugin object of its own for each customer.
    void nextCustomer()
    {
        lastCustomerGoes();
        m_root = m_loader.instance();
        m_bench = std::make_unique<HandlerBench>(m_root);
    }
    void lastCustomerGoes()
    {
        m_bench.reset();
        delete m_root;
    }
    /// Leaves the plugin object to Qt, which destroys it at the very end of the process.
    void forgetPlugin()
    {
        m_bench.reset();
        m_root.clear();
    }
    [[nodiscard]] bool unload()
    {
        lastCustomerGoes();
        return m_loader.unload();
    }
    /// Without Qt's hint to keep the library in memory, unload() takes it from there.
    void dropTheHint() { m_loader.setLoadHints({}); }
    /// Whether it is in this process's memory.
    [[nodiscard]] static bool isPluginInMemory()
    {
        QFile maps(QStringLiteral("/proc/self/maps"));
        return !maps.open(QIODevice::ReadOnly) || maps.readAll().contains(PLUGIN_FILE);
    }

    // How the customer's card gets to the plugin

    void readCard()
    {
        m_bench->startWithScreen();
        m_bench->readCard(HandlerBench::demoCard());
    }
    void leaveCard()
    {
        m_bench->session().setPluginsData({{QStringLiteral("18156"), HandlerBench::demoCard()}});
        m_bench->startWithScreen();
    }
    void typeCard()
    {
        m_bench->startWithScreen();
        QVERIFY(m_bench->press("ok"));
        QVERIFY(m_bench->type(QStringLiteral("0000123456")));
        QVERIFY(m_bench->type(QStringLiteral("12345678")));
    }

    /// From the card to the details.
    void waitForDetails()
    {
        WAIT_FOR(m_bench->parameter(QStringLiteral("SummToPay")).isEmpty(), false);
        QCOMPARE(m_bench->outcome(), QStringList());
        letPass(LATER_MS);
        QCOMPARE(m_bench->takeSignals().contains(QStringLiteral("needShowPayDetail")), true);
        m_bench->form()->showPayDetail();
    }

private:
    CashService m_service;
    QPluginLoader m_loader;
    QPointer<QObject> m_root;
    std::unique_ptr<HandlerBench> m_bench;
};

using Source = void (Terminal::*)();

/// Customers of each kind, and the service menu.
void live(Terminal &terminal)
{
    qint64 uin = 0;
    for (const Source source : {&Terminal::readCard, &Terminal::leaveCard, &Terminal::typeCard}) {
        terminal.nextCustomer();
        (terminal.*source)();
        terminal.waitForDetails();
        QVERIFY(terminal.bench().commitAnswered({HandlerBench::payment(++uin, 4'000)}));
    }
    // One whose payment is registered, but not answered in time, before what the card owed is paid.
    terminal.nextCustomer();
    terminal.readCard();
    terminal.waitForDetails();
    QVERIFY(terminal.service().setFault(QStringLiteral("ParkInfoPay:delay=60s")));
    {
        StillClock clock;
        const Meanwhile unanswered(
            {{[&] { return terminal.service().payments().size() == 4; }, [&] { clock.pass(60'000); }}});
        terminal.bench().commit({HandlerBench::payment(++uin, 3'000)});
        QVERIFY(unanswered.isDone());
    }
    // One who reads an error, asks for the way out, and leaves it at that.
    terminal.nextCustomer();
    terminal.readCard();
    WAIT_FOR(terminal.bench().buttons(), QStringLiteral("ok"));
    terminal.bench().permitCancel();
    QVERIFY(terminal.bench().plugin()->getSettingsWidget() != nullptr);
}

void liveWithThePlugin()
{
    Terminal terminal;
    live(terminal);
    QVERIFY(terminal.unload());
}

/// In a host that does not leave the library in memory.
void liveWithoutTheHint()
{
    Terminal terminal;
    terminal.dropTheHint();
    live(terminal);
    QVERIFY(Terminal::isPluginInMemory());
    QVERIFY(terminal.unload());
    QVERIFY(!Terminal::isPluginInMemory());
    QCoreApplication::processEvents();
}
} // namespace

Q_DECLARE_METATYPE(Source)

/// Payments with the plugin's shared library and the cash service's program, as in a terminal.
class PaymentsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void payment_card_isOnTheServicesRecord_data()
    {
        QTest::addColumn<Source>("source");
        QTest::newRow("from the card reader") << &Terminal::readCard;
        QTest::newRow("from the session") << &Terminal::leaveCard;
        QTest::newRow("by hand") << &Terminal::typeCard;
    }
    void payment_card_isOnTheServicesRecord()
    {
        QFETCH(Source, source);
        Terminal terminal;
        terminal.nextCustomer();
        (terminal.*source)();
        terminal.waitForDetails();
        QCOMPARE(terminal.bench().parameter(QStringLiteral("SummToPay")), QStringLiteral("150.00"));
        QCOMPARE(terminal.bench().parameter(QStringLiteral("card_num")), QStringLiteral("0000123456"));
        QVERIFY(terminal.bench().commitAnswered({HandlerBench::payment(4711, 15'000)}));
        const QJsonArray payments = terminal.service().payments();
        QCOMPARE(payments.size(), 1);
        QCOMPARE(payments[0][QStringLiteral("uin")].toInt(), 4711);
        QCOMPARE(payments[0][QStringLiteral("amount")].toInt(), 15'000);
        QCOMPARE(payments[0][QStringLiteral("type")].toString(), QStringLiteral("full"));
        QCOMPARE(payments[0][QStringLiteral("cardUid")].toString(), QStringLiteral("78563412"));
        QCOMPARE(terminal.service().owed(QStringLiteral("12345678")), 0);
        QCOMPARE(terminal.bench().outcome(), QStringList());
    }

    void cancelQuestion_bySlotName_asksAndCancels()
    {
        Terminal terminal;
        terminal.nextCustomer();
        terminal.readCard();
        terminal.waitForDetails();
        terminal.bench().permitCancel();
        QCOMPARE(terminal.bench().buttons(), QStringLiteral("yes no"));
        QVERIFY(terminal.bench().press("no"));
        QCOMPARE(terminal.bench().topView(), QLatin1String(PluginBaseFormViewer::PAY_DETAIL_VIEW));
        terminal.bench().permitCancel();
        QVERIFY(terminal.bench().press("yes"));
        QCOMPARE(terminal.bench().outcome(), QStringList{QStringLiteral("needCancel")});
        QCOMPARE(terminal.service().payments().size(), 0);
    }

    void life_ofThePlugin_leavesNoObjectBehind()
    {
        const LivingObjects objects;
        // What Qt makes once for the whole process is made by then.
        liveWithThePlugin();
        const QStringList before = objects.classes();
        liveWithThePlugin();
        QTRY_COMPARE_WITH_TIMEOUT(objects.classes(), before, 30'000);
        QCOMPARE(QApplication::allWidgets(), QWidgetList());
    }

    void library_takenFromMemory_leavesNothingThatPointsThere()
    {
        const auto child = ChildProcess::start("livesWithoutTheHint");
        QCOMPARE(ChildProcess::finish(*child), 0);
    }

    void process_endsWithThePlugin_endsWell()
    {
        const auto child = ChildProcess::start("endsWithThePlugin");
        QCOMPARE(ChildProcess::finish(*child), 0);
        QVERIFY(
            child->readAll().endsWith("default ParkomatPluginHandler plugin destructor\nparkomat NALOG_DESTRUCTOR\n"));
    }
};

/// In a process of its own: others may keep the library in memory.
TEST_CHILD(livesWithoutTheHint)
{
    // Another life after it, with the library at another place.
    for (int lives = 0; lives < 2 && !QTest::currentTestFailed(); ++lives)
        liveWithoutTheHint();
    return QTest::currentTestFailed() ? 1 : 0;
}

/// A host that keeps its plugin object for as long as it runs itself.
TEST_CHILD(endsWithThePlugin)
{
    Terminal terminal;
    terminal.nextCustomer();
    terminal.readCard();
    terminal.waitForDetails();
    const bool isPaid = terminal.bench().commitAnswered({HandlerBench::payment(4711, 15'000)});
    terminal.forgetPlugin();
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &text) {
        std::printf("%s %s\n", context.category, qPrintable(text));
        // The leak checker ends the process without that.
        std::fflush(stdout);
    });
    return isPaid ? 0 : 1;
}

WIDGET_TEST_MAIN(PaymentsTest)
#include "tst_payments.moc"
