// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scriptedpayment.h"

#include <QApplication>

Q_DECLARE_METATYPE(Payment)

namespace {
const QString PARCOMAT_DATA = QStringLiteral("parcomatData");

/// Of what the plugin logged, the lines that tell of one more payment in a pack.
QStringList mergeLines()
{
    QStringList found;
    const QList<LogLine> lines = MessageLog::take();
    for (const LogLine &line : lines) {
        if (line.level == QtWarningMsg && line.category == QLatin1String("default") &&
            line.text.startsWith(QStringLiteral("SOME PAYS FOR PROVIDER: ")))
            found.append(line.text);
    }
    return found;
}

/// With a service that confirms one registration.
struct ConfirmedPayment : PaidPayment
{
    ConfirmedPayment() { service.plan(ScriptedService::pay()); }

    [[nodiscard]] QString sent(const char *element) const { return service.sent(0, QLatin1String(element)); }
};
} // namespace

/// What is registered with the cash service, of which payments and for which card.
class HandlerRegistrationTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pack_payments_becomeOneRegistration_data()
    {
        QTest::addColumn<QList<Payment>>("payments");
        QTest::addColumn<QString>("uin");
        QTest::addColumn<QString>("amount");
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("mergeLines");
        const Payment full = HandlerBench::payment(70'001, 15'000);
        const Payment first = HandlerBench::payment(70'002, 10'000, 100);
        const Payment second = HandlerBench::payment(70'003, 5'000, 50);
        const Payment third = HandlerBench::payment(70'004, 1, 2);
        const Payment others = HandlerBench::payment(70'005, 99'900, 99, 18'157);
        const QString fullType = QStringLiteral("full");
        const QString partial = QStringLiteral("partial");
        const auto row = [](const char *name, const QList<Payment> &payments, const char *uin, const char *amount,
                            const QString &type, int lines) {
            QTest::newRow(name) << payments << QString::fromLatin1(uin) << QString::fromLatin1(amount) << type << lines;
        };
        row("one", {full}, "70001", "15000", fullType, 0);
        row("one that is too little", {first}, "70002", "10100", partial, 0);
        row("two", {first, second}, "70002", "15150", fullType, 1);
        row("two, the other way round", {second, first}, "70003", "15150", fullType, 1);
        row("three", {first, second, third}, "70002", "15153", fullType, 2);
        row("others' around and between", {others, first, others, second, others}, "70002", "15150", fullType, 1);
        row("one and others'", {others, full}, "70001", "15000", fullType, 0);
        row("the same twice", {full, full}, "70001", "30000", fullType, 1);
        row("others' alone", {others}, "0", "0", partial, 0);
        row("none", {}, "0", "0", partial, 0);
    }

    void pack_payments_becomeOneRegistration()
    {
        QFETCH(QList<Payment>, payments);
        QFETCH(QString, uin);
        QFETCH(QString, amount);
        QFETCH(QString, type);
        QFETCH(int, mergeLines);
        const ConfirmedPayment paid;
        QVERIFY(paid.bench.commitAnswered(payments));
        const QStringList lines = ::mergeLines();
        QCOMPARE(lines.size(), mergeLines);
        for (const QString &line : lines)
            QCOMPARE(line, QStringLiteral("SOME PAYS FOR PROVIDER: Парковка"));
        QCOMPARE(paid.service.operations(), QStringList(QStringLiteral("ParkInfoPay")));
        QCOMPARE(paid.sent("Uin"), uin);
        QCOMPARE(paid.sent("Amount"), amount);
        QCOMPARE(paid.sent("Type"), type);
        QCOMPARE(paid.sent("CardUid"), QStringLiteral("78563412"));
        QCOMPARE(paid.service.complaint(), QString());
    }

    void pack_merged_hasTheFirstPaymentsTime()
    {
        const ConfirmedPayment paid;
        Payment later(70'002, QDateTime(QDate(2024, 3, 8), QTime(1, 2, 3)), HandlerBench::PROVIDER_ID);
        later.setSumm(FixNumber(100, qint64(100)));
        QVERIFY(paid.bench.commitAnswered({HandlerBench::payment(70'001, 15'000), later}));
        QVERIFY2(paid.sent("DateTime").startsWith(QStringLiteral("2024-03-07T14:05:09")),
                 qPrintable(paid.sent("DateTime")));
    }

    void pack_missing_isAnEmptyOne()
    {
        ConfirmedPayment paid;
        paid.handler.doPaymentPredProcessing(&paid.bench.session(), nullptr);
        QCOMPARE(paid.sent("Uin"), QStringLiteral("0"));
        QCOMPARE(paid.sent("Amount"), QStringLiteral("0"));
    }

    void pack_ofAnotherProvider_countsByTheOneOfTheStart()
    {
        ConfirmedPayment paid;
        Provider other(18'157, QStringLiteral("Другой"));
        paid.handler.start(&other, Currency(), &paid.bench.session());
        QVERIFY(paid.bench.commitAnswered(
            {HandlerBench::payment(70'001, 15'000), HandlerBench::payment(70'005, 4'000, 0, 18'157)}));
        QCOMPARE(paid.sent("Uin"), QStringLiteral("70005"));
        QCOMPARE(paid.sent("Amount"), QStringLiteral("4000"));
    }

    void session_argument_isNotLookedAt_data()
    {
        QTest::addColumn<bool>("isGiven");
        QTest::newRow("another one") << true;
        QTest::newRow("none") << false;
    }

    void session_argument_isNotLookedAt()
    {
        QFETCH(bool, isGiven);
        ConfirmedPayment paid;
        SessionManager other;
        other.setPluginsData(
            {{PARCOMAT_DATA, QVariantMap({{QStringLiteral("cardData"),
                                           HandlerBench::card(QStringLiteral("4294967295"), QStringLiteral("2"))},
                                          {QStringLiteral("totalCharge"), QStringLiteral("999.00")}})}});
        PayPack pack;
        pack.addPayment(HandlerBench::payment(70'001, 15'000));
        paid.handler.doPaymentPredProcessing(isGiven ? &other : nullptr, &pack);
        QCOMPARE(paid.sent("CardUid"), QStringLiteral("78563412"));
        QCOMPARE(paid.sent("Type"), QStringLiteral("full"));
    }

    // Unlike a card that is read, of which the first stays.
    void card_leftInSession_replacesTheOneThatWasRead()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        handler.start(&bench.provider(), Currency(), &bench.session());
        service.plan(ScriptedService::check());
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(bench.parameter(QStringLiteral("UIN")), QStringLiteral("uin-1"));
        bench.session().setPluginsData(
            {{PARCOMAT_DATA, QVariantMap({{QStringLiteral("cardData"),
                                           HandlerBench::card(QStringLiteral("4294967295"), QStringLiteral("2"))}})}});
        service.plan(ScriptedService::pay());
        bench.commit({HandlerBench::payment(70'001, 15'000)});
        QCOMPARE(service.sent(0, QStringLiteral("CardUid")), QStringLiteral("78563412"));
        QCOMPARE(service.sent(1, QStringLiteral("CardUid")), QStringLiteral("FFFFFFFF"));
        QCOMPARE(service.sent(1, QStringLiteral("CardId")), QStringLiteral("2"));
        QCOMPARE(service.complaint(), QString());
    }

    void check_leftNothing_isRegisteredWithoutACardInFull_data()
    {
        QTest::addColumn<QVariantMap>("left");
        QTest::addColumn<QString>("type");
        QTest::newRow("empty") << QVariantMap() << QStringLiteral("full");
        QTest::newRow("amount alone") << QVariantMap({{QStringLiteral("totalCharge"), QStringLiteral("150.01")}})
                                      << QStringLiteral("partial");
        QTest::newRow("malformed amount")
            << QVariantMap({{QStringLiteral("totalCharge"), QStringLiteral("viel")}}) << QStringLiteral("full");
        QTest::newRow("card without a number")
            << QVariantMap({{QStringLiteral("cardData"), QVariantMap({{QStringLiteral("id"), 1}})}})
            << QStringLiteral("full");
    }

    void check_leftNothing_isRegisteredWithoutACardInFull()
    {
        QFETCH(QVariantMap, left);
        QFETCH(QString, type);
        const ConfirmedPayment paid;
        paid.leaveCheck(left);
        QVERIFY(paid.bench.commitAnswered({HandlerBench::payment(70'001, 15'000)}));
        QCOMPARE(paid.sent("CardUid"), QStringLiteral(""));
        QCOMPARE(paid.sent("CardId"), QStringLiteral(""));
        QCOMPARE(paid.sent("Amount"), QStringLiteral("15000"));
        QCOMPARE(paid.sent("Type"), type);
    }

    void session_gone_isAsOneWithoutACheck()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        auto session = std::make_unique<SessionManager>();
        session->setPluginsData(
            {{PARCOMAT_DATA, QVariantMap({{QStringLiteral("cardData"), HandlerBench::demoCard()}})}});
        handler.start(&bench.provider(), Currency(), session.get());
        session.reset();
        service.plan(ScriptedService::pay());
        QVERIFY(bench.commitAnswered({HandlerBench::payment(70'001, 15'000)}));
        QCOMPARE(service.sent(0, QStringLiteral("CardUid")), QStringLiteral(""));
        QCOMPARE(service.complaint(), QString());
    }

    void commit_repeated_registersEachTime()
    {
        ConfirmedPayment paid;
        paid.service.plan(ScriptedService::pay());
        QVERIFY(paid.bench.commitAnswered({HandlerBench::payment(70'001, 4'000)}));
        QVERIFY(paid.bench.commitAnswered({HandlerBench::payment(70'002, 11'000)}));
        QCOMPARE(paid.service.requests(), 2);
        QCOMPARE(paid.service.sent(1, QStringLiteral("Uin")), QStringLiteral("70002"));
        // What the check left stays as it is.
        QCOMPARE(paid.service.sent(1, QStringLiteral("Type")), QStringLiteral("partial"));
    }
};

WIDGET_TEST_MAIN(HandlerRegistrationTest)
#include "tst_handlerregistration.moc"
