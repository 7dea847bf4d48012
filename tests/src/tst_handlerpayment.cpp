// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatpluginhandler.h"
#include "parkomatsettings.h"
#include "scriptedservice.h"
#include "support/cashservice.h"
#include "support/stillclock.h"

#include <QApplication>

namespace {
const QString CHECK = QStringLiteral("ParkingCheck");
const QString PAY = QStringLiteral("ParkInfoPay");
const QString DEMO_UID = QStringLiteral("12345678");
const QString DEMO_NUMBER = QStringLiteral("0000123456");

/// How the customer's card gets to the plugin.
enum class Source
{
    Reader,
    Session,
    Hand
};

/// One customer after another at a terminal, whose handler is new for each, with the cash service's program.
class Terminal
{
public:
    explicit Terminal(const QStringList &faults = {}) : m_service(withFaults(faults))
    {
        HandlerBench::useService(m_service.port());
        TerminalAppSettings().setAutoCloseMessagesAfter(600);
        ParkomatSettings settings;
        settings.setTermId(QStringLiteral("4224"));
        settings.setParkingId(QStringLiteral("12"));
        nextCustomer();
    }

    void nextCustomer()
    {
        m_bench.reset();
        m_handler = std::make_unique<ParkomatPluginHandler>();
        m_bench = std::make_unique<HandlerBench>(m_handler.get());
    }

    /// @return whether the customer had the screens to give the card.
    [[nodiscard]] bool giveCard(Source source)
    {
        if (source == Source::Session)
            m_bench->session().setPluginsData({{QStringLiteral("18156"), HandlerBench::demoCard()}});
        m_bench->startWithScreen();
        if (source == Source::Reader)
            m_bench->readCard(HandlerBench::demoCard());
        return source != Source::Hand ||
               (m_bench->press("ok") && m_bench->type(DEMO_NUMBER) && m_bench->type(DEMO_UID));
    }

    /// "uin amount type cardUid" for each payment that the service has on record.
    [[nodiscard]] QStringList recorded() const
    {
        QStringList all;
        const QJsonArray payments = m_service.payments();
        for (const QJsonValue &payment : payments)
            all.append(
                QStringLiteral("%1 %2 %3 %4")
                    .arg(payment[QStringLiteral("uin")].toInt())
                    .arg(payment[QStringLiteral("amount")].toInt())
                    .arg(payment[QStringLiteral("type")].toString(), payment[QStringLiteral("cardUid")].toString()));
        return all;
    }

    [[nodiscard]] const CashService &service() const { return m_service; }
    [[nodiscard]] HandlerBench &bench() const { return *m_bench; }
    [[nodiscard]] QString due() const { return m_bench->parameter(QStringLiteral("SummToPay")); }

private:
    static QStringList withFaults(const QStringList &faults)
    {
        QStringList arguments;
        for (const QString &fault : faults)
            arguments << QStringLiteral("--fault") << fault;
        return arguments;
    }

    CashService m_service;
    std::unique_ptr<ParkomatPluginHandler> m_handler;
    std::unique_ptr<HandlerBench> m_bench;
};
} // namespace

Q_DECLARE_METATYPE(Source)

/// Whole payments with the cash service's program, which tells itself what it saw and what it has on record.
class HandlerPaymentTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void payment_cardSource_isCheckedAndRegistered_data()
    {
        QTest::addColumn<Source>("source");
        QTest::newRow("reader") << Source::Reader;
        QTest::newRow("session") << Source::Session;
        QTest::newRow("hand") << Source::Hand;
    }

    void payment_cardSource_isCheckedAndRegistered()
    {
        QFETCH(Source, source);
        Terminal terminal;
        HandlerBench &bench = terminal.bench();
        const CashService &service = terminal.service();
        QVERIFY(terminal.giveCard(source));
        WAIT_FOR(terminal.due(), QStringLiteral("150.00"));
        letPass(2'200);
        QCOMPARE(bench.outcome(), QStringList(QStringLiteral("needShowPayDetail")));
        const QStringList checks = service.requests(CHECK);
        QCOMPARE(checks.size(), 1);
        const QString entered = service.entered(DEMO_UID);
        QCOMPARE(bench.parameters(),
                 QStringList({QStringLiteral("card_num=") + DEMO_NUMBER, QStringLiteral("SummToPay=150.00"),
                              QStringLiteral("TermNo=4224"), QStringLiteral("ParkNumber=12"),
                              QStringLiteral("StartDate=") + entered.section(QLatin1Char('T'), 0, 0),
                              QStringLiteral("StartTime=") + entered.section(QLatin1Char('T'), 1),
                              QStringLiteral("UIN=") + elementText(checks.constFirst(), QStringLiteral("SessionId"))}));

        const StillClock clock;
        bench.commit({HandlerBench::payment(70'001, 15'000)});
        QVERIFY(!clock.wasHelped());
        QCOMPARE(terminal.recorded(), QStringList(QStringLiteral("70001 15000 full 78563412")));
        QCOMPARE(service.owed(DEMO_UID), 0);
        QCOMPARE(service.requests(CHECK).size(), 1);
        QCOMPARE(service.requests(PAY).size(), 1);
        QCOMPARE(bench.messageText(), QString());
        QCOMPARE(bench.outcome(), QStringList(QStringLiteral("needShowPayDetail")));
        bench.plugin()->stop();
        deleteReleased();
        QVERIFY(!bench.hasForm());
    }

    void payment_twoOfOnePack_areRegisteredAsOne()
    {
        Terminal terminal;
        QVERIFY(terminal.giveCard(Source::Reader));
        WAIT_FOR(terminal.due(), QStringLiteral("150.00"));
        QVERIFY(terminal.bench().commitAnswered(
            {HandlerBench::payment(70'001, 10'000, 100), HandlerBench::payment(70'002, 5'000, 50)}));
        QCOMPARE(terminal.recorded(), QStringList(QStringLiteral("70001 15150 full 78563412")));
        QCOMPARE(terminal.service().requests(PAY).size(), 1);
    }

    void payment_inPart_leavesTheRestToTheNextCustomer()
    {
        Terminal terminal;
        QVERIFY(terminal.giveCard(Source::Reader));
        WAIT_FOR(terminal.due(), QStringLiteral("150.00"));
        QVERIFY(terminal.bench().commitAnswered({HandlerBench::payment(70'001, 4'000)}));
        QCOMPARE(terminal.service().owed(DEMO_UID), 11'000);

        terminal.nextCustomer();
        QVERIFY(terminal.giveCard(Source::Hand));
        WAIT_FOR(terminal.due(), QStringLiteral("110.00"));
        QVERIFY(terminal.bench().commitAnswered({HandlerBench::payment(70'002, 11'000)}));
        QCOMPARE(terminal.recorded(), QStringList({QStringLiteral("70001 4000 partial 78563412"),
                                                   QStringLiteral("70002 11000 full 78563412")}));

        terminal.nextCustomer();
        QVERIFY(terminal.giveCard(Source::Session));
        WAIT_FOR(terminal.bench().messageText(), QStringLiteral("Парковка уже оплачена"));
    }

    void payment_emptyPack_isRefusedByTheService()
    {
        Terminal terminal;
        QVERIFY(terminal.giveCard(Source::Reader));
        WAIT_FOR(terminal.due(), QStringLiteral("150.00"));
        TerminalAppSettings().setOnlineCheckTimeout(0);
        terminal.bench().commit({});
        WAIT_FOR(terminal.bench().buttons(), QStringLiteral("ok"));
        const QString shown = terminal.bench().messageText();
        QVERIFY2(shown.startsWith(QStringLiteral("Неверный запрос: DateTime")), qPrintable(shown));
        QCOMPARE(terminal.recorded(), QStringList());
    }

    // The plugin cannot tell the host: it holds the call for the whole limit, and only the service knows.
    void payment_confirmationFails_isHeldForTheWholeLimit_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isRecorded");
        QTest::newRow("status, not recorded") << QStringLiteral("ParkInfoPay@before:status=503") << QString() << false;
        QTest::newRow("status, recorded") << QStringLiteral("ParkInfoPay:status=503") << QString() << true;
        QTest::newRow("empty answer") << QStringLiteral("ParkInfoPay:empty") << QStringLiteral("Unknown response")
                                      << true;
        QTest::newRow("refusal") << QStringLiteral("ParkInfoPay@before:result=6,Другая сумма")
                                 << QStringLiteral("Другая сумма") << false;
    }

    void payment_confirmationFails_isHeldForTheWholeLimit()
    {
        QFETCH(QString, fault);
        QFETCH(QString, text);
        QFETCH(bool, isRecorded);
        Terminal terminal({fault});
        HandlerBench &bench = terminal.bench();
        QVERIFY(terminal.giveCard(Source::Reader));
        WAIT_FOR(terminal.due(), QStringLiteral("150.00"));
        letPass(2'200);
        StillClock clock;
        QString shown;
        const Meanwhile meanwhile({{[&] { return bench.buttons() == QStringLiteral("ok"); },
                                    [&] {
                                        shown = bench.messageText();
                                        clock.pass(59'999);
                                        letPass(2'500);
                                    }},
                                   {[&] { return bench.press("ok"); }, [&] { clock.pass(1); }}});
        bench.commit({HandlerBench::payment(70'001, 15'000)});
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        QVERIFY(text.isNull() ? !shown.isEmpty() : shown == text);
        QCOMPARE(bench.outcome(), QStringList({QStringLiteral("needShowPayDetail"), QStringLiteral("needCancel")}));
        QCOMPARE(terminal.recorded().size(), isRecorded ? 1 : 0);
        QCOMPARE(terminal.service().owed(DEMO_UID), isRecorded ? 0 : 15'000);
    }

    void payment_answerTooLate_isOnRecordAllTheSame()
    {
        Terminal terminal({QStringLiteral("ParkInfoPay:delay=60s")});
        QVERIFY(terminal.giveCard(Source::Reader));
        WAIT_FOR(terminal.due(), QStringLiteral("150.00"));
        StillClock clock;
        const Meanwhile meanwhile({{[&] { return terminal.recorded().size() == 1; }, [&] { clock.pass(60'000); }}});
        terminal.bench().commit({HandlerBench::payment(70'001, 15'000)});
        QVERIFY(meanwhile.isDone());
        QVERIFY(!clock.wasHelped());
        QCOMPARE(terminal.bench().messageText(), QStringLiteral("Выполняется подтверждение операции..."));
        QCOMPARE(terminal.service().owed(DEMO_UID), 0);
    }
};

WIDGET_TEST_MAIN(HandlerPaymentTest)
#include "tst_handlerpayment.moc"
