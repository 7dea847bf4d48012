// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "requestsituations.h"
#include "secondparser.h"
#include "support/golden.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/zone.h"

#include <limits>

using namespace RequestSituations;

namespace {
const QString PARKING_CHECK_SCHEMA = QStringLiteral("request-parkingcheck.xsd");
const QString PARK_INFO_PAY_SCHEMA = QStringLiteral("request-parkinfopay.xsd");

SecondParser::Values expectedHeader(const Situation &situation, const QString &operation)
{
    SecondParser::Values values = {{QStringLiteral("Request@RecordVersion"), QStringLiteral("2")},
                                   {QStringLiteral("Request@NumRequest"), QStringLiteral("1")},
                                   {QStringLiteral("Request@Operation"), operation}};
    if (operation == QLatin1String("ParkingCheck"))
        values.append({QStringLiteral("Request@ResultCode"), QStringLiteral("0")});
    const Configuration settings = situation.expectedSettings();
    return values + SecondParser::Values{{QStringLiteral("Request/PartnerId"), settings.partnerId},
                                         {QStringLiteral("Request/ParkingId"), settings.parkingId},
                                         {QStringLiteral("Request/TermId"), settings.termId},
                                         {QStringLiteral("Request/SessionId"), situation.sessionId},
                                         {QStringLiteral("Request/CardUid"), situation.cardUid},
                                         {QStringLiteral("Request/CardId"), situation.cardId},
                                         {QStringLiteral("Request/RequestTime"), situation.requestTime}};
}

SecondParser::Values expectedPayment(const Purchase &purchase)
{
    return {{QStringLiteral("Request/Payments/Payment/Uin"), purchase.uin},
            {QStringLiteral("Request/Payments/Payment/DateTime"), purchase.dateTime},
            {QStringLiteral("Request/Payments/Payment/Amount"), purchase.amount},
            {QStringLiteral("Request/Payments/Payment/Type"), purchase.type}};
}

/// The elements that keep a document of this situation from holding against its schema: the two that are known, and
/// only where they must.
QStringList knownBreaches(const Situation &situation, const QDateTime &created = PAID_AT)
{
    QStringList elements;
    if (situation.cardUid.isEmpty())
        elements.append(QStringLiteral("CardUid"));
    if (!created.isValid())
        elements.append(QStringLiteral("DateTime"));
    return elements;
}

/// The elements that libxml2 complains of, each once.
QStringList elementsOf(const QStringList &breaches)
{
    QStringList elements;
    for (const QString &breach : breaches)
        elements.append(breach.section(QLatin1Char('\''), 1, 1));
    elements.removeDuplicates();
    return elements;
}
} // namespace

/// Both requests byte for byte, as another parser reads them, and against the protocol's schemas.
class RequestGoldenTest : public TestCase
{
    Q_OBJECT

private:
    static void row(const char *name, const Situation &situation, const Purchase &purchase = anyPurchase())
    {
        QTest::newRow(name) << situation << purchase;
    }

    /// Of a purchase made at the moment of the request.
    static void rowNow(const char *name, const Situation &situation)
    {
        row(name, situation, purchaseAt(situation.now, situation.requestTime));
    }

    static void addSituations()
    {
        QTest::addColumn<Situation>("situation");
        QTest::addColumn<Purchase>("purchase");
        addZones();
        addSettings();
        addTermIds();
        addCards();
        row("journal-holds-41", withJournal(41, QStringLiteral("004224140509067042")));
        row("journal-holds-65535", withJournal(65535, QStringLiteral("00422414050906765536")));
    }

    static void addZones()
    {
        row("moscow", Situation());
        rowNow("berlin-winter", berlinInWinter());
        rowNow("berlin-summer-shows-standard-offset", berlinInSummer());
        rowNow("london-winter-no-offset", londonInWinter());
        rowNow("london-summer-no-offset", at("Europe/London", IN_SUMMER, QStringLiteral("2024-07-14T12:05:09"),
                                             QStringLiteral("004224120509196001")));
        rowNow("kolkata-half-an-hour", at("Asia/Kolkata", NOW, QStringLiteral("2024-03-07T16:35:09+05:30"),
                                          QStringLiteral("004224163509067001")));
        rowNow("kathmandu-three-quarters", at("Asia/Kathmandu", NOW, QStringLiteral("2024-03-07T16:50:09+05:45"),
                                              QStringLiteral("004224165009067001")));
        rowNow("st-johns-behind-utc", at("America/St_Johns", NOW, QStringLiteral("2024-03-07T07:35:09-03:30"),
                                         QStringLiteral("004224073509067001")));
        rowNow("kiritimati-already-tomorrow", at("Pacific/Kiritimati", NOW, QStringLiteral("2024-03-08T01:05:09+14:00"),
                                                 QStringLiteral("004224010509068001")));
        rowNow("last-second-of-a-leap-year",
               at("Europe/Moscow", utc(2024, 12, 31, 20, 59, 59), QStringLiteral("2024-12-31T23:59:59+03:00"),
                  QStringLiteral("004224235959366001")));
        rowNow("first-second-of-a-year",
               at("Europe/Moscow", utc(2025, 12, 31, 21, 0, 0), QStringLiteral("2026-01-01T00:00:00+03:00"),
                  QStringLiteral("004226000000001001")));
    }

    static void addSettings()
    {
        Situation defaults;
        defaults.settings = std::nullopt;
        defaults.sessionId = QStringLiteral("00024140509067001");
        row("settings-at-their-defaults", defaults);
        row("settings-empty", with({QString(), QString(), QString()}, QStringLiteral("0000")));
        row("settings-with-xml-characters", with({QStringLiteral("A&B <north> \"q\" 'a' ]]> &amp;"),
                                                  QStringLiteral("<ParkingId/>&#49;"), QStringLiteral("<!--&-->]]>")},
                                                 QStringLiteral("<!--&-->]]>")));
        row("settings-in-cyrillic", with({QStringLiteral("Северный паркинг"), QStringLiteral("Этаж №2"), //
                                          QStringLiteral("Шлюз-1")},
                                         QStringLiteral("Шлюз-1")));
        row("settings-beyond-the-basic-plane",
            with({QStringLiteral("\U0001D11E"), QStringLiteral("e\u0301"), QStringLiteral("\U0001F17F\U0001F17F")},
                 QStringLiteral("\U0001F17F\U0001F17F")));
        row("settings-with-tabs-and-line-breaks",
            with({QStringLiteral("a\tb"), QStringLiteral("a\nb"), QStringLiteral(" 0\n42 ")}, QStringLiteral("0\n42")));
        Situation control = withTermId(QStringLiteral("0042\x02"), QStringLiteral("0042"));
        control.settings->partnerId = QStringLiteral("a\x01z");
        control.writtenSettings = Configuration{QStringLiteral("az"), QStringLiteral("12"), QStringLiteral("0042")};
        row("settings-with-control-characters-lose-them", control);
        const QString longText = QStringLiteral("0123456789abcdef").repeated(256);
        row("settings-of-4096-characters", with({longText, longText, longText}, longText));
    }

    static void addTermIds()
    {
        row("term-id-of-1-character", withTermId(QStringLiteral("7"), QStringLiteral("000")));
        row("term-id-of-2-characters", withTermId(QStringLiteral("12"), QStringLiteral("00")));
        row("term-id-of-3-characters", withTermId(QStringLiteral("123"), QStringLiteral("0")));
        row("term-id-of-5-characters", withTermId(QStringLiteral("12345"), QStringLiteral("12345")));
        row("term-id-with-blanks-around", withTermId(QStringLiteral("  0042 "), QStringLiteral("0042")));
    }

    static void addCards()
    {
        row("uid-lowest-of-eight-digits", withCard(QStringLiteral("268435456"), QStringLiteral("00000010")));
        row("uid-highest", withCard(QStringLiteral("4294967295"), QStringLiteral("FFFFFFFF")));
        row("uid-with-letters", withCard(QStringLiteral("2882400001"), QStringLiteral("01EFCDAB")));
        row("uid-below-10000000-hex-goes-out-empty", withCard(QStringLiteral("268435455"), QString()));
        row("uid-1-goes-out-empty", withCard(QStringLiteral("1"), QString()));
        row("uid-beyond-32-bits-goes-out-empty", withCard(QStringLiteral("4294967296"), QString()));
        row("uid-no-number-goes-out-empty", withCard(QStringLiteral("12x"), QString()));
        row("card-empty", withCard(QString(), QString(), QString()));
        row("card-id-empty", withCardId(QString()));
        row("card-id-with-xml-characters", withCardId(QStringLiteral("<№ 7 & \"8\">")));
        row("card-id-of-4096-characters", withCardId(QStringLiteral("9").repeated(4096)));
    }

    static void rowPaid(const char *name, const Payment &payment, const FixNumber &totalCharge, const char *uin,
                        const char *amount, const char *type)
    {
        row(name, Situation(),
            {payment, totalCharge, QLatin1String(uin), QStringLiteral("2024-03-07T14:06:41+03:00"),
             QLatin1String(amount), QLatin1String(type)});
    }

    static void addTotals()
    {
        const auto total = [](const char *name, qint64 hundredths, const FixNumber &charge, const char *amount,
                              const char *type) {
            rowPaid(name, paid(1187, PAID_AT, hundredths), charge, "1187", amount, type);
        };
        constexpr qint64 highest = std::numeric_limits<qint64>::max();
        constexpr qint64 lowest = std::numeric_limits<qint64>::min();
        total("total-equal-to-the-charge", 15000, FixNumber(100, 15000), "15000", "full");
        total("total-one-below-the-charge", 14999, FixNumber(100, 15000), "14999", "partial");
        total("total-one-above-the-charge", 15001, FixNumber(100, 15000), "15001", "full");
        total("charge-in-thousandths-just-above", 15000, FixNumber(1000, 150001), "15000", "partial");
        total("charge-in-whole-units", 15000, FixNumber(1, 150), "15000", "full");
        total("nothing-paid-of-nothing", 0, FixNumber(), "0", "full");
        total("total-negative", -5, FixNumber(), "-5", "partial");
        total("charge-negative", 0, FixNumber(100, -1), "0", "full");
        total("total-highest", highest, FixNumber(100, highest), "9223372036854775807", "full");
        total("total-lowest", lowest, FixNumber(100, highest), "-9223372036854775808", "partial");
        rowPaid("total-with-comission", paidWithComission(14000, 1000), FixNumber(100, 15000), "1187", "15000", "full");
    }

    static void addUins()
    {
        const auto uin = [](const char *name, qint64 uid, const char *text) {
            rowPaid(name, paid(uid, PAID_AT, 1), FixNumber(100, 1), text, "1", "full");
        };
        uin("uin-highest", std::numeric_limits<qint64>::max(), "9223372036854775807");
        uin("uin-lowest", std::numeric_limits<qint64>::min(), "-9223372036854775808");
        uin("uin-negative", -1187, "-1187");
        uin("uin-0", 0, "0");
    }

    static void addMoments()
    {
        row("created-in-summer-sent-in-winter", berlinInWinter(),
            purchaseAt(IN_SUMMER.addYears(-1), QStringLiteral("2023-07-14T13:05:09+01:00")));
        row("created-in-winter-sent-in-summer", berlinInSummer(),
            purchaseAt(NOW, QStringLiteral("2024-03-07T12:05:09+01:00")));
        row("created-in-another-offset", Situation(),
            purchaseAt(NOW.toOffsetFromUtc(-7 * 3600), QStringLiteral("2024-03-07T14:05:09+03:00")));
        row("created-with-milliseconds", Situation(),
            purchaseAt(NOW.addMSecs(999), QStringLiteral("2024-03-07T14:05:09+03:00")));
        row("created-never-offset-alone", Situation(), purchaseAt(QDateTime(), QStringLiteral("+03:00")));
        row("created-never-without-offset", londonInWinter(), purchaseAt(QDateTime(), QString()));
        row("payment-empty", Situation(),
            {Payment(), FixNumber(), QStringLiteral("0"), QStringLiteral("+03:00"), QStringLiteral("0"),
             QStringLiteral("full")});
        row("payment-and-card-empty", withCard(QString(), QString(), QString()),
            {Payment(), FixNumber(), QStringLiteral("0"), QStringLiteral("+03:00"), QStringLiteral("0"),
             QStringLiteral("full")});
    }

    /// Two files without a record are two lines; nothing else is worth one.
    static void checkLog(const Situation &situation)
    {
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), situation.journal ? 0 : 2);
        for (const LogLine &line : lines)
            QVERIFY2(line.level == QtCriticalMsg && line.file == QLatin1String("src/parkomatdatastorage.cpp"),
                     qPrintable(toString(line)));
    }

    static void checkReadBack(const QString &xml, const SecondParser::Values &expected)
    {
        const SecondParser::Document document(xml.toUtf8());
        QVERIFY(document.isWellFormed());
        QCOMPARE(document.values(), expected);
    }

    static void checkSchema(const QString &xml, const QString &schemaName, const QStringList &breaches)
    {
        const SecondParser::Schema schema(schemaName);
        QVERIFY(schema.isLoaded());
        const QStringList found = schema.breaches(SecondParser::Document(xml.toUtf8()));
        QVERIFY2(elementsOf(found) == breaches, qPrintable(found.join(QLatin1Char('\n'))));
    }

private Q_SLOTS:
    void parkingCheck_inEachSituation_isTheGoldenDocument_data() { addSituations(); }

    void parkingCheck_inEachSituation_isTheGoldenDocument()
    {
        QFETCH(const Situation, situation);
        const Zone zone(situation.zone);
        TestClock::freeze(situation.now);
        configure(situation);
        const QString xml = ParkingCheckRequest(cardOf(situation)).toXml();
        checkLog(situation);
        checkReadBack(xml, expectedHeader(situation, QStringLiteral("ParkingCheck")));
        checkSchema(xml, PARKING_CHECK_SCHEMA, knownBreaches(situation));
        COMPARE_GOLDEN(xml.toUtf8(), QStringLiteral("requests/parkingcheck-%1.xml").arg(QTest::currentDataTag()));
    }

    void parkInfoPay_inEachSituation_isTheGoldenDocument_data()
    {
        addSituations();
        addTotals();
        addUins();
        addMoments();
    }

    void parkInfoPay_inEachSituation_isTheGoldenDocument()
    {
        QFETCH(const Situation, situation);
        QFETCH(const Purchase, purchase);
        const Zone zone(situation.zone);
        TestClock::freeze(situation.now);
        configure(situation);
        const QString xml = ParkInfoPayRequest(cardOf(situation), purchase.payment, purchase.totalCharge).toXml();
        checkLog(situation);
        checkReadBack(xml, expectedHeader(situation, QStringLiteral("ParkInfoPay")) + expectedPayment(purchase));
        checkSchema(xml, PARK_INFO_PAY_SCHEMA, knownBreaches(situation, purchase.payment.created()));
        COMPARE_GOLDEN(xml.toUtf8(), QStringLiteral("requests/parkinfopay-%1.xml").arg(QTest::currentDataTag()));
    }

    void total_beyond64Bits_isSentAsTheHighest()
    {
        const Payment payment = paidWithComission(std::numeric_limits<qint64>::max(), 1);
        const QString xml = ParkInfoPayRequest(ParkomatCardData(), payment, FixNumber()).toXml();
        QVERIFY(xml.contains(QStringLiteral("<Amount>9223372036854775807</Amount>")));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.extension"));
    }

    void rendering_aSecondLater_hasAnotherTimeAndSessionId()
    {
        ignoreLog();
        const Zone zone("Europe/Moscow");
        const ParkingCheckRequest request(cardOf(Situation()));
        TestClock::freeze(NOW);
        const SecondParser::Values first = SecondParser::Document(request.toXml().toUtf8()).values();
        TestClock::freeze(NOW.addSecs(1));
        const SecondParser::Values second = SecondParser::Document(request.toXml().toUtf8()).values();
        QCOMPARE(first.size(), second.size());
        QStringList changed;
        for (int i = 0; i < first.size(); ++i) {
            if (first.at(i) != second.at(i))
                changed.append(first.at(i).first);
        }
        QCOMPARE(changed, QStringList({QStringLiteral("Request/SessionId"), QStringLiteral("Request/RequestTime")}));
    }
};

TEST_MAIN(RequestGoldenTest)
#include "tst_requestgolden.moc"
