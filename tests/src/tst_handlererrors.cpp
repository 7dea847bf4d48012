// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagewidgetcontroller.h"
#include "scriptedpayment.h"
#include "support/cashservice.h"

#include <QApplication>
#include <QTcpSocket>

namespace {
const QStringList CANCELLED = {QStringLiteral("needCancel")};
const QStringList DETAILS = {QStringLiteral("needShowPayDetail")};
} // namespace

/// What the customer is told when the cash service cannot, or will not, say what is owed.
class HandlerErrorsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void refusal_seededCard_isShownAndCancels_data()
    {
        QTest::addColumn<QString>("uid");
        QTest::addColumn<QString>("text");
        QTest::newRow("unknown") << QStringLiteral("268435458") << QStringLiteral("Карта не найдена");
        QTest::newRow("paid") << QStringLiteral("268435459") << QStringLiteral("Парковка уже оплачена");
        QTest::newRow("blocked") << QStringLiteral("268435460") << QStringLiteral("Карта заблокирована");
        QTest::newRow("maintenance") << QStringLiteral("268435461") << QStringLiteral("Сервис временно недоступен");
        // Deliberately: a UID this small goes out empty.
        QTest::newRow("UID below 10000000 hexadecimal") << QStringLiteral("10") << QStringLiteral("Карта не найдена");
    }

    void refusal_seededCard_isShownAndCancels()
    {
        QFETCH(QString, uid);
        QFETCH(QString, text);
        const CashService service;
        HandlerBench::useService(service.port());
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        bench.readCard(HandlerBench::card(uid, QStringLiteral("0000123456")));
        WAIT_FOR(bench.messageText(), text);
        QCOMPARE(bench.buttons(), QStringLiteral("ok"));
        QCOMPARE(bench.outcome(), QStringList());
        QVERIFY(bench.press("ok"));
        QCOMPARE(bench.outcome(), CANCELLED);
        WAIT_FOR(bench.messageText(), QString());
        QCOMPARE(bench.parameter(QStringLiteral("SummToPay")), QString());
        QVERIFY(!bench.session().pluginsData().contains(QStringLiteral("parcomatData")));
        QCOMPARE(service.requests(QStringLiteral("ParkingCheck")).size(), 1);
    }

    void exchange_fails_isShownAndCancelsByItself_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("text");
        QTest::newRow("status") << QStringLiteral("ParkingCheck:status=503") << QString();
        QTest::newRow("empty") << QStringLiteral("ParkingCheck:empty") << QStringLiteral("Unknown response");
        QTest::newRow("a result code") << QStringLiteral("ParkingCheck:result=7,Почему") << QStringLiteral("Почему");
        QTest::newRow("a result code without a text") << QStringLiteral("ParkingCheck:result=7") << QStringLiteral("");
    }

    void exchange_fails_isShownAndCancelsByItself()
    {
        QFETCH(QString, fault);
        QFETCH(QString, text);
        TerminalAppSettings().setAutoCloseMessagesAfter(40);
        const CashService service({QStringLiteral("--fault"), fault});
        HandlerBench::useService(service.port());
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.buttons(), QStringLiteral("ok"));
        if (text.isNull())
            QVERIFY(!bench.messageText().isEmpty());
        else
            QCOMPARE(bench.messageText(), text);
        letPass(41'000);
        QCOMPARE(bench.outcome(), CANCELLED);
        QCOMPARE(bench.messageText(), QString());
    }

    void exchange_nobodyListens_isShownAndCancels()
    {
        // Bound, but nobody listens.
        QTcpSocket holder;
        QVERIFY(holder.bind(QHostAddress(QHostAddress::LocalHost)));
        HandlerBench::useService(holder.localPort());
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.messageText(), QStringLiteral("Connection refused"));
        QVERIFY(bench.press("ok"));
        QCOMPARE(bench.outcome(), CANCELLED);
    }

    void errorMap_text_isShownWithoutAPrefix_data()
    {
        QTest::addColumn<QVariantMap>("map");
        QTest::addColumn<QString>("text");
        const QString key = QStringLiteral("errorMessage");
        QTest::newRow("text") << QVariantMap({{QStringLiteral("error"), 4}, {key, QStringLiteral("Почему")}})
                              << QStringLiteral("Почему");
        QTest::newRow("number") << QVariantMap({{key, 17}}) << QStringLiteral("17");
        QTest::newRow("without a text") << QVariantMap({{QStringLiteral("error"), 4}}) << QString();
        QTest::newRow("empty text") << QVariantMap({{key, QString()}}) << QString();
        QTest::newRow("nothing") << QVariantMap() << QString();
        QTest::newRow("another case") << QVariantMap({{QStringLiteral("ErrorMessage"), QStringLiteral("x")}})
                                      << QString();
    }

    void errorMap_text_isShownWithoutAPrefix()
    {
        QFETCH(QVariantMap, map);
        QFETCH(QString, text);
        TerminalAppSettings().setAutoCloseMessagesAfter(77);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.parkomatAccessManagerErrorHandler(map);
        QCOMPARE(bench.topView(), QStringLiteral("messagesView"));
        QCOMPARE(bench.messageText(), text);
        QCOMPARE(bench.buttons(), QStringLiteral("ok"));
        QVERIFY(bench.countdown().contains(QStringLiteral("77")));
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void error_behindTheAnswer_isShownAndCancels()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        service.plan(ScriptedService::check());
        service.hold();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
        letPass(2'200);
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(service.requests(), 2);
        service.release(1, ScriptedService::refusal("Почему"));
        WAIT_FOR(bench.messageText(), QStringLiteral("Почему"));
        QVERIFY(bench.press("ok"));
        QCOMPARE(bench.outcome(), DETAILS + CANCELLED);
    }

    void error_earlierPayments_isShownInTheNext()
    {
        NextPayment next;
        next.service.release(0, ScriptedService::refusal("Почему"));
        WAIT_FOR(next.bench.messageText(), QStringLiteral("Почему"));
    }

    void error_stopped_isTakenInSilence()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.stop();
        deleteReleased();
        handler.parkomatAccessManagerErrorHandler({});
        Q_EMIT handler.findChild<MessageWidgetController *>()->finish(0);
        QCOMPARE(bench.takeSignals(), QStringList());
    }
};

WIDGET_TEST_MAIN(HandlerErrorsTest)
#include "tst_handlererrors.moc"
