// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginproviderparameterinputcontroller.h"
#include "handlerchildren.h"
#include "scriptedservice.h"

#include <QApplication>

namespace {
const QStringList CANCELLED = {QStringLiteral("needCancel")};
const QString SESSION_CARD = QStringLiteral("18156");
const QString MANUAL_PDATA = QStringLiteral("01312211020202190000000100000000");

/// Answers that come for a card, so that the plugin leaves it in the session's data.
QVariantMap cardLeftInSession(const HandlerBench &bench)
{
    return bench.session()
        .pluginsData()
        .value(QStringLiteral("parcomatData"))
        .toMap()
        .value(QStringLiteral("cardData"))
        .toMap();
}

int inputControllers(const ParkomatPluginHandler &handler)
{
    return handler.findChildren<PluginProviderParameterInputController *>().size();
}

/// What the keys on the screen type.
QString keyboard(const HandlerBench &bench)
{
    QString characters;
    const auto keys = bench.form()->findChildren<QAbstractButton *>(QStringLiteral("key"));
    for (const QAbstractButton *key : keys) {
        if (key->isVisible())
            characters += key->text();
    }
    return characters;
}

/// What is typed can be read, on a screen of the viewer's usual name without a hint.
void verifyPlainInput(const HandlerBench &bench)
{
    QCOMPARE(bench.topView(), QStringLiteral("inputView"));
    QCOMPARE(bench.part<QLineEdit>("inputLine")->echoMode(), QLineEdit::Normal);
    QVERIFY(bench.part<QLabel>("inputHint") == nullptr);
}

/// Whether a visible label of the view on top says so.
bool isShown(const HandlerBench &bench, const QString &text)
{
    QWidget *const view = bench.form()->getUi(bench.topView());
    const auto labels = view != nullptr ? view->findChildren<QLabel *>() : QList<QLabel *>();
    for (const QLabel *label : labels) {
        if (label->isVisible() && label->text() == text)
            return true;
    }
    return false;
}
} // namespace

/// How the plugin comes by the customer's card: reader, session, hand.
class HandlerCardTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initScreen_noCard_asksForIt()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        const QVariantMap data = {{QStringLiteral("another plugin's"), 1}};
        bench.session().setPluginsData(data);
        bench.startWithScreen();
        QCOMPARE(bench.messageText(), QStringLiteral("Приложите парковочную карту"));
        QCOMPARE(bench.buttons(), QStringLiteral("ok cancel"));
        QCOMPARE(bench.caption("ok"), QStringLiteral("Ввести\nвручную"));
        QVERIFY(bench.countdown().contains(QStringLiteral("30")));
        QCOMPARE(bench.session().pluginsData(), data);
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void initScreen_closed_cancelsUnlessByItsButton_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("signalled");
        QTest::addColumn<QString>("view");
        QTest::newRow("time-out") << 0 << CANCELLED << QString();
        QTest::newRow("yes") << 1 << CANCELLED << QString();
        QTest::newRow("cancel") << 2 << CANCELLED << QString();
        QTest::newRow("by hand") << 3 << QStringList() << QStringLiteral("inputView");
        QTest::newRow("unknown") << 110 << CANCELLED << QString();
    }

    void initScreen_closed_cancelsUnlessByItsButton()
    {
        QFETCH(int, code);
        QFETCH(QStringList, signalled);
        QFETCH(QString, view);
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        Q_EMIT controllers(handler).constFirst()->finish(code);
        QCOMPARE(bench.takeSignals(), signalled);
        QVERIFY(controllers(handler).isEmpty());
        QCOMPARE(bench.topView(), view);
    }

    void initScreen_buttons_areTheCustomers()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        QVERIFY(bench.press("cancel"));
        QCOMPARE(bench.takeSignals(), CANCELLED);
        handler.showInitScreen();
        QVERIFY(bench.press("ok"));
        QCOMPARE(bench.takeSignals(), QStringList());
        QVERIFY(isShown(bench, QStringLiteral("Введите номер карты")));
    }

    void initScreen_halfAMinute_cancelsByItself()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        const Arrival cancelled(bench.form(), &PluginBaseFormViewer::needCancel);
        letPass(31'000);
        QVERIFY2(cancelled.ms() >= 29'000, qPrintable(QString::number(cancelled.ms())));
        QCOMPARE(bench.outcome(), CANCELLED);
        QCOMPARE(bench.messageText(), QString());
    }

    void sessionCard_present_goesToTheCheckAndIsGone()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.session().setPluginsData(
            {{SESSION_CARD, HandlerBench::demoCard()}, {QStringLiteral("another plugin's"), 1}});
        service.plan(ScriptedService::check());
        bench.startWithScreen();
        QCOMPARE(bench.messageText(), QStringLiteral("Проверка информации, подождите..."));
        QCOMPARE(bench.session().pluginsData(), QVariantMap({{QStringLiteral("another plugin's"), 1}}));
        WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
        QCOMPARE(service.operations(), QStringList(QStringLiteral("ParkingCheck")));
        QCOMPARE(service.sent(0, QStringLiteral("CardUid")), QStringLiteral("78563412"));
        QCOMPARE(service.sent(0, QStringLiteral("CardId")), QStringLiteral("0000123456"));
        QCOMPARE(bench.session().pluginsData().keys(),
                 QStringList({QStringLiteral("another plugin's"), QStringLiteral("parcomatData")}));
    }

    void sessionCard_noCardAtAll_isCheckedAllTheSame_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("empty map") << QVariant(QVariantMap());
        QTest::newRow("text") << QVariant(QStringLiteral("305419896"));
        QTest::newRow("invalid") << QVariant();
        QTest::newRow("no number") << QVariant(QVariantMap({{QStringLiteral("id"), QStringLiteral("305419896")}}));
    }

    void sessionCard_noCardAtAll_isCheckedAllTheSame()
    {
        QFETCH(QVariant, value);
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.session().setPluginsData({{SESSION_CARD, value}});
        service.hold();
        bench.startWithScreen();
        WAIT_FOR(service.requests(), 1);
        QCOMPARE(service.sent(0, QStringLiteral("CardUid")), QStringLiteral(""));
        QCOMPARE(service.sent(0, QStringLiteral("CardId")), QStringLiteral(""));
        QCOMPARE(bench.session().pluginsData(), QVariantMap());
    }

    void command_anyName_isACard_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("the reader's") << QStringLiteral("newParcomatCardData");
        QTest::newRow("another") << QStringLiteral("shutdown");
        QTest::newRow("empty") << QString();
    }

    void command_anyName_isACard()
    {
        QFETCH(QString, command);
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        service.hold();
        Q_EMIT bench.session().newParcomatCardDataCommand(command, HandlerBench::demoCard());
        QCOMPARE(bench.messageText(), QStringLiteral("Проверка информации, подождите..."));
        WAIT_FOR(service.requests(), 1);
        QCOMPARE(service.sent(0, QStringLiteral("CardUid")), QStringLiteral("78563412"));
        QCOMPARE(bench.takeSignals().filter(CANCELLED.constFirst()), QStringList());
    }

    void command_secondCard_leavesTheFirst()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        const QVariantMap cards[] = {QVariantMap(), HandlerBench::card(QStringLiteral("305419896"), QString()),
                                     HandlerBench::demoCard(),
                                     HandlerBench::card(QStringLiteral("4294967295"), QStringLiteral("2"))};
        QStringList uids;
        QStringList numbers;
        for (const QVariantMap &card : cards) {
            service.hold();
            bench.readCard(card);
            WAIT_FOR(service.requests(), uids.size() + 1);
            uids.append(service.sent(uids.size(), QStringLiteral("CardUid")));
            numbers.append(service.sent(numbers.size(), QStringLiteral("CardId")));
        }
        // Only a record with UID and number stays.
        const QString uid = QStringLiteral("78563412");
        const QString number = QStringLiteral("0000123456");
        QCOMPARE(uids, QStringList({QString(), uid, uid, uid}));
        QCOMPARE(numbers, QStringList({QString(), QString(), number, number}));
    }

    void hand_screens_askForNumberAndUid()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        QVERIFY(bench.press("ok"));
        QCOMPARE(bench.topView(), QStringLiteral("inputView"));
        QVERIFY(isShown(bench, QStringLiteral("Введите номер карты")));
        QVERIFY(isShown(bench, QStringLiteral("Парковка")));
        QCOMPARE(bench.buttons(), QStringLiteral("next back"));
        QCOMPARE(keyboard(bench), QStringLiteral("1234567890"));
        QCOMPARE(bench.text<QLineEdit>("inputLine"), QString());
        verifyPlainInput(bench);
        QVERIFY(controllers(handler).isEmpty());
        QVERIFY(bench.type(QStringLiteral("0000123456")));
        QVERIFY(isShown(bench, QStringLiteral("Введите UID карты")));
        verifyPlainInput(bench);
        QVERIFY2(keyboard(bench).contains(QStringLiteral("ABCDEF")), qPrintable(keyboard(bench)));
        QCOMPARE(bench.text<QLineEdit>("inputLine"), QString());
        QCOMPARE(inputControllers(handler), 1);
        QCOMPARE(bench.takeSignals(), QStringList());
    }

    void hand_back_goesOneScreenBackAndThenCancels()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.showCardNumberInputScreen();
        QVERIFY(bench.type(QStringLiteral("0000123456")));
        QVERIFY(bench.press("back"));
        QVERIFY(isShown(bench, QStringLiteral("Введите номер карты")));
        QCOMPARE(inputControllers(handler), 1);
        QCOMPARE(bench.takeSignals(), QStringList());
        QVERIFY(bench.press("back"));
        QCOMPARE(bench.takeSignals(), CANCELLED);
        // What was typed stays.
        service.hold();
        handler.cardUidInputHandler(QStringLiteral("12345678"));
        WAIT_FOR(service.requests(), 1);
        QCOMPARE(service.sent(0, QStringLiteral("CardId")), QStringLiteral("0000123456"));
    }

    void hand_number_isTakenAsItIs_data()
    {
        QTest::addColumn<QString>("number");
        QTest::newRow("digits") << QStringLiteral("0000123456");
        QTest::newRow("blanks") << QStringLiteral(" 1 ");
        QTest::newRow("letters") << QStringLiteral("АБВ<&>");
    }

    void hand_number_isTakenAsItIs()
    {
        QFETCH(QString, number);
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        service.plan(ScriptedService::check());
        handler.cardNumberInputHandler(number);
        QVERIFY(isShown(bench, QStringLiteral("Введите UID карты")));
        QVERIFY(bench.type(QStringLiteral("12345678")));
        QCOMPARE(bench.messageText(), QStringLiteral("Проверка информации, подождите..."));
        WAIT_FOR(bench.parameter(QStringLiteral("card_num")), number);
        QCOMPARE(service.sent(0, QStringLiteral("CardId")), number);
        QCOMPARE(cardLeftInSession(bench), QVariantMap({{QStringLiteral("id"), QStringLiteral("305419896")},
                                                        {QStringLiteral("cardId"), number},
                                                        {QStringLiteral("pdata"), MANUAL_PDATA}}));
    }

    void hand_uid_isReadHighestByteFirst_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("uid");
        QTest::newRow("example") << QStringLiteral("0A0B0C0D") << QStringLiteral("168496141");
        QTest::newRow("highest") << QStringLiteral("FFFFFFFF") << QStringLiteral("4294967295");
        QTest::newRow("sign bit") << QStringLiteral("80000000") << QStringLiteral("2147483648");
        QTest::newRow("lower case") << QStringLiteral("deadbeef") << QStringLiteral("3735928559");
        QTest::newRow("zero") << QStringLiteral("00000000") << QStringLiteral("0");
        QTest::newRow("one byte") << QStringLiteral("12") << QStringLiteral("0");
        QTest::newRow("three bytes") << QStringLiteral("0A0B0C") << QStringLiteral("0");
        QTest::newRow("seven digits") << QStringLiteral("A0B0C0D") << QStringLiteral("168496141");
        QTest::newRow("five bytes") << QStringLiteral("0A0B0C0DFF") << QStringLiteral("168496141");
        QTest::newRow("separators") << QStringLiteral(" 0A:0B-0C 0D") << QStringLiteral("168496141");
        QTest::newRow("no digits") << QStringLiteral("xyz") << QStringLiteral("0");
        QTest::newRow("another alphabet") << QStringLiteral("0A0B0C0Dж") << QStringLiteral("168496141");
        QTest::newRow("empty") << QString() << QStringLiteral("0");
    }

    void hand_uid_isReadHighestByteFirst()
    {
        QFETCH(QString, typed);
        QFETCH(QString, uid);
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        handler.cardNumberInputHandler(QStringLiteral("1"));
        service.plan(ScriptedService::check());
        handler.cardUidInputHandler(typed);
        WAIT_FOR(bench.parameter(QStringLiteral("card_num")), QStringLiteral("1"));
        QCOMPARE(cardLeftInSession(bench).value(QStringLiteral("id")).toString(), uid);
        QCOMPARE(service.requests(), 1);
    }

    void hand_afterACard_checksThatCardUnderTheTypedNumber()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        service.hold();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(service.requests(), 1);
        service.hold();
        handler.cardNumberInputHandler(QStringLiteral("99"));
        handler.cardUidInputHandler(QStringLiteral("FFFFFFFF"));
        WAIT_FOR(service.requests(), 2);
        QCOMPARE(service.sent(1, QStringLiteral("CardUid")), QStringLiteral("78563412"));
        QCOMPARE(service.sent(1, QStringLiteral("CardId")), QStringLiteral("99"));
    }

    void carNumber_screen_namesTheCardAndLeadsNowhere()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.startWithScreen();
        handler.cardNumberInputHandler(QStringLiteral("0000123456"));
        handler.showCarNumberInputScreen();
        QCOMPARE(inputControllers(handler), 1);
        const QString label = QStringLiteral("Номер карты: 0000123456. Введите номер автомобиля.");
        QVERIFY(isShown(bench, label));
        QCOMPARE(keyboard(bench), QStringLiteral("1234567890"));
        QVERIFY(bench.type(QStringLiteral("777")));
        QVERIFY(isShown(bench, label));
        QCOMPARE(bench.takeSignals(), QStringList());
        QVERIFY(bench.press("back"));
        QCOMPARE(bench.takeSignals(), CANCELLED);
    }
};

WIDGET_TEST_MAIN(HandlerCardTest)
#include "tst_handlercard.moc"
