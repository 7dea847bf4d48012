// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "handlerchildren.h"
#include "parkomatsettings.h"
#include "scriptedservice.h"
#include "support/cashservice.h"

#include <QApplication>

namespace {
const QString WAIT = QStringLiteral("Проверка информации, подождите...");
const QStringList CANCELLED = {QStringLiteral("needCancel")};
const QStringList DETAILS = {QStringLiteral("needShowPayDetail")};
const QString PARCOMAT_DATA = QStringLiteral("parcomatData");
} // namespace

/// What the customer sees while the cash service is asked, and what its answer leaves with the host.
class HandlerCheckTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void wait_untilTheAnswer_isShownAndFeedsTheTicks()
    {
        TerminalAppSettings().setOnlineCheckTimeout(77);
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        service.hold();
        bench.readCard(HandlerBench::demoCard());
        QCOMPARE(bench.messageText(), WAIT);
        QCOMPARE(bench.buttons(), QString());
        QVERIFY(bench.countdown().contains(QStringLiteral("77")));
        Q_EMIT controllers(handler).constFirst()->tick();
        QCOMPARE(bench.takeSignals(), QStringList(QStringLiteral("needTick")));
        letPass(1'100);
        QVERIFY(bench.ticks() > 0);
        WAIT_FOR(service.requests(), 1);
        service.release(0, ScriptedService::check());
        WAIT_FOR(bench.messageText(), QString());
        QVERIFY(controllers(handler).isEmpty());
        letPass(2'200);
        QCOMPARE(bench.outcome(), DETAILS);
    }

    void wait_timeLimit_cancels()
    {
        TerminalAppSettings().setOnlineCheckTimeout(20);
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        service.hold();
        const Arrival cancelled(bench.form(), &PluginBaseFormViewer::needCancel);
        bench.readCard(HandlerBench::demoCard());
        letPass(21'000);
        QVERIFY2(cancelled.ms() >= 19'000, qPrintable(QString::number(cancelled.ms())));
        QCOMPARE(bench.outcome(), CANCELLED);
        QCOMPARE(bench.messageText(), QString());
        QVERIFY(controllers(handler).isEmpty());
        // An answer that comes all the same is taken.
        WAIT_FOR(service.requests(), 1);
        service.release(0, ScriptedService::check());
        WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
        letPass(2'200);
        QCOMPARE(bench.outcome(), CANCELLED + DETAILS);
    }

    void details_behindTheAnswer_comeTwoSecondsLater()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        const Arrival details(bench.form(), &PluginBaseFormViewer::needShowPayDetail);
        handler.parkingCheckResponseHandler(ParkingCheckResponse());
        // Qt's timers may be off by a twentieth.
        letPass(2'200);
        QVERIFY2(details.ms() >= 1'900, qPrintable(QString::number(details.ms())));
        QCOMPARE(bench.outcome(), DETAILS);
    }

    void details_formStoppedMeanwhile_neverCome()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.parkingCheckResponseHandler(ParkingCheckResponse());
        handler.stop();
        bench.newPayment();
        bench.start();
        letPass(3'000);
        QCOMPARE(bench.outcome(), QStringList());
    }

    void answer_stopped_changesNothingButTheData()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.stop();
        handler.parkingCheckResponseHandler(
            ParkingCheckResponse(1, {{QStringLiteral("TotalCharge"), QStringLiteral("15000")}}));
        QCOMPARE(bench.parameter(QStringLiteral("SummToPay")), QStringLiteral("150.00"));
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void parameters_answer_fillsThoseThatItKnows_data()
    {
        QTest::addColumn<QList<QByteArray>>("names");
        QTest::addColumn<QStringList>("filled");
        const QStringList all = {QStringLiteral("card_num=0000123456"),
                                 QStringLiteral("SummToPay=150.00"),
                                 QStringLiteral("TermNo=4224"),
                                 QStringLiteral("ParkNumber=12"),
                                 QStringLiteral("StartDate=2020-03-04"),
                                 QStringLiteral("StartTime=08:05:09"),
                                 QStringLiteral("UIN=uin-1")};
        QTest::newRow("all") << QList<QByteArray>{"card_num",  "SummToPay", "TermNo", "ParkNumber",
                                                  "StartDate", "StartTime", "UIN"}
                             << all;
        QTest::newRow("another order") << QList<QByteArray>{"UIN", "card_num"} << QStringList({all[6], all[0]});
        QTest::newRow("without UIN") << QList<QByteArray>{"card_num",   "SummToPay", "TermNo",
                                                          "ParkNumber", "StartDate", "StartTime"}
                                     << QStringList(all.mid(0, 6));
        QTest::newRow("others among them") << QList<QByteArray>{"phone", "SummToPay", ""}
                                           << QStringList({QStringLiteral("phone="), all[1], QStringLiteral("=")});
        QTest::newRow("another case") << QList<QByteArray>{"uin", "summtopay", "SummToPay ", "CARD_NUM"}
                                      << QStringList({QStringLiteral("uin="), QStringLiteral("summtopay="),
                                                      QStringLiteral("SummToPay ="), QStringLiteral("CARD_NUM=")});
        QTest::newRow("doubled") << QList<QByteArray>{"UIN", "UIN"} << QStringList({all[6], all[6]});
        QTest::newRow("none") << QList<QByteArray>() << QStringList();
    }

    void parameters_answer_fillsThoseThatItKnows()
    {
        QFETCH(QList<QByteArray>, names);
        QFETCH(QStringList, filled);
        ParkomatSettings settings;
        settings.setTermId(QStringLiteral("4224"));
        settings.setParkingId(QStringLiteral("12"));
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.provider().setParameters(HandlerBench::parametersNamed(names));
        bench.startWithScreen();
        service.plan(ScriptedService::check(15'000, "<StartTime>2020-03-04T08:05:09</StartTime>"));
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.session().pluginsData().contains(PARCOMAT_DATA), true);
        QCOMPARE(bench.parameters(), filled);
        // Nothing but the value is touched.
        for (const ProviderParameter &parameter : bench.provider().parameters())
            QCOMPARE(parameter.label(), QStringLiteral("Поле ") + parameter.name());
    }

    void parameters_otherValuesAndDefaults_areReplaced()
    {
        TerminalAppSettings().setTrelmId(987);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        QList<ProviderParameter> parameters = bench.provider().parameters();
        for (ProviderParameter &parameter : parameters)
            parameter.setValue(QStringLiteral("before"));
        bench.provider().setParameters(parameters);
        bench.start();
        handler.parkingCheckResponseHandler(ParkingCheckResponse(1, {}));
        QCOMPARE(bench.parameters(),
                 QStringList({QStringLiteral("card_num="), QStringLiteral("SummToPay=0.00"),
                              QStringLiteral("TermNo=987"), QStringLiteral("ParkNumber="), QStringLiteral("StartDate="),
                              QStringLiteral("StartTime="), QStringLiteral("UIN=")}));
    }

    void amount_answer_isTheSameTextInBothPlaces_data()
    {
        QTest::addColumn<QString>("charge");
        QTest::addColumn<QString>("text");
        QTest::newRow("hundreds") << QStringLiteral("15000") << QStringLiteral("150.00");
        QTest::newRow("thousands") << QStringLiteral("123456789") << QStringLiteral("1234567.89");
        QTest::newRow("small") << QStringLiteral("5") << QStringLiteral("0.05");
        QTest::newRow("nothing") << QStringLiteral("0") << QStringLiteral("0.00");
        QTest::newRow("negative") << QStringLiteral("-150") << QStringLiteral("-1.50");
        QTest::newRow("malformed") << QStringLiteral("150.00") << QStringLiteral("0.00");
    }

    void amount_answer_isTheSameTextInBothPlaces()
    {
        QFETCH(QString, charge);
        QFETCH(QString, text);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.parkingCheckResponseHandler(ParkingCheckResponse(1, {{QStringLiteral("TotalCharge"), charge}}));
        QCOMPARE(bench.parameter(QStringLiteral("SummToPay")), text);
        const QVariantMap left = bench.session().pluginsData().value(PARCOMAT_DATA).toMap();
        QCOMPARE(left.value(QStringLiteral("totalCharge")), QVariant(text));
    }

    void start_answersTime_isSplitIntoDateAndTime_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("time");
        QTest::newRow("local") << QStringLiteral("2020-03-04T08:05:09") << QStringLiteral("2020-03-04")
                               << QStringLiteral("08:05:09");
        QTest::newRow("with an offset") << QStringLiteral("2020-03-04T23:59:59+05:00") << QStringLiteral("2020-03-04")
                                        << QStringLiteral("23:59:59");
        QTest::newRow("fractions") << QStringLiteral("2020-03-04T08:05:09.999") << QStringLiteral("2020-03-04")
                                   << QStringLiteral("08:05:09");
        QTest::newRow("malformed") << QStringLiteral("04.03.2020 08:05") << QString() << QString();
    }

    void start_answersTime_isSplitIntoDateAndTime()
    {
        QFETCH(QString, start);
        QFETCH(QString, date);
        QFETCH(QString, time);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.parkingCheckResponseHandler(ParkingCheckResponse(1, {{QStringLiteral("StartTime"), start}}));
        QCOMPARE(bench.parameter(QStringLiteral("StartDate")), date);
        QCOMPARE(bench.parameter(QStringLiteral("StartTime")), time);
    }

    void sessionData_answer_replacesThePluginsOwnEntry()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.session().setPluginsData(
            {{PARCOMAT_DATA, QVariantMap({{QStringLiteral("earlier"), 1}})}, {QStringLiteral("another plugin's"), 1}});
        bench.start();
        service.plan(ScriptedService::check());
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
        const QVariantMap card = {{QStringLiteral("id"), QStringLiteral("305419896")},
                                  {QStringLiteral("cardId"), QStringLiteral("0000123456")},
                                  {QStringLiteral("pdata"), HandlerBench::payload()}};
        QCOMPARE(bench.session().pluginsData(),
                 QVariantMap({{PARCOMAT_DATA, QVariantMap({{QStringLiteral("cardData"), card},
                                                           {QStringLiteral("totalCharge"), QStringLiteral("150.00")}})},
                              {QStringLiteral("another plugin's"), 1}}));
    }

    // Which answers get here, the client decides.
    void answer_negative_isTakenLikeAnyOther()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.parkingCheckResponseHandler(
            ParkingCheckResponse(4, {{QStringLiteral("TotalCharge"), QStringLiteral("100")}}));
        QCOMPARE(bench.parameter(QStringLiteral("SummToPay")), QStringLiteral("1.00"));
        letPass(2'200);
        QCOMPARE(bench.outcome(), DETAILS);
    }

    void answer_hostObjectsGone_isDoneWithout()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        bench.newPayment();
        handler.parkingCheckResponseHandler(ParkingCheckResponse(1, {}));
        letPass(2'200);
        QCOMPARE(bench.outcome(), DETAILS);
        QCOMPARE(bench.session().pluginsData(), QVariantMap());
    }

    void answers_twoRequests_givesDetailsTwice()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        service.plan(ScriptedService::check());
        service.plan(ScriptedService::check());
        bench.readCard(HandlerBench::demoCard());
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.outcome(), DETAILS + DETAILS);
        QCOMPARE(service.complaint(), QString());
    }
};

WIDGET_TEST_MAIN(HandlerCheckTest)
#include "tst_handlercheck.moc"
