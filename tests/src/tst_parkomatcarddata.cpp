// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatcarddata.h"
#include "parkomatsettings.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QTranslator>

#include <utility>

namespace {
const QString EXAMPLE_PAYLOAD = QStringLiteral("01312211020202190000000100000000");

QVariantMap cardMap(const QString &pdata)
{
    return {{QStringLiteral("id"), QStringLiteral("305419896")},
            {QStringLiteral("cardId"), QStringLiteral("000123456")},
            {QStringLiteral("pdata"), pdata}};
}

/// The parking number has no getter of its own: it is the third labelled line.
QString parkingLine(const ParkomatCardData &card)
{
    return card.toStringList().value(4);
}

QString nuls(int count)
{
    return QString(count, QChar(QChar::Null));
}

/// Translates the texts of one context, visibly.
class MarkingTranslator : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *text, const char *, int) const override
    {
        return qstrcmp(context, "QObject") == 0 ? QStringLiteral("<%1>").arg(QLatin1String(text)) : QString();
    }
};
} // namespace

/// The record of one parking card.
class ParkomatCardDataTest : public TestCase
{
    Q_OBJECT

private:
    static void verifyEmpty(const ParkomatCardData &card)
    {
        QVERIFY(!card.isValid());
        QVERIFY(card.uid().isNull());
        QVERIFY(card.id().isNull());
        QVERIFY(card.cardData().isNull());
        QVERIFY(card.cardDt().isNull());
        QVERIFY(!card.discount());
        QVERIFY(card == ParkomatCardData());
    }

    static ParkomatCardData exampleCard()
    {
        ParkomatCardData card(cardMap(EXAMPLE_PAYLOAD));
        MessageLog::drop();
        return card;
    }

private Q_SLOTS:
    void constructor_default_isEmpty() { verifyEmpty(ParkomatCardData()); }

    void constructor_fromVariant_parsesItsMap()
    {
        const ParkomatCardData card{QVariant(cardMap(EXAMPLE_PAYLOAD))};
        QVERIFY(!MessageLog::take().isEmpty());
        QVERIFY(card.isValid());
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        verifyEmpty(ParkomatCardData(QVariant(QStringLiteral("no map"))));
        verifyEmpty(ParkomatCardData{QVariant()});
        QVERIFY(!MessageLog::take().isEmpty());
    }

    void parseMap_examplePayload_isDecoded()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(cardMap(EXAMPLE_PAYLOAD)));
        MessageLog::drop();
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        QCOMPARE(card.id(), QStringLiteral("000123456"));
        QCOMPARE(card.cardData(), EXAMPLE_PAYLOAD.toLatin1());
        QCOMPARE(card.cardDt(), QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31), Qt::LocalTime));
        QCOMPARE(card.cardDt().timeSpec(), Qt::LocalTime);
        QVERIFY(card.discount());
        QCOMPARE(parkingLine(card), QStringLiteral("PARKING #1"));
    }

    void parseMap_payload_isDecodedByPosition_data()
    {
        QTest::addColumn<QString>("pdata");
        QTest::addColumn<QString>("parking");
        QTest::addColumn<QDateTime>("activated");
        QTest::addColumn<bool>("discount");
        const QString none = QStringLiteral("PARKING #-1");
        const QDateTime invalid;

        QTest::newRow("every field its own") << "42010203070405060000000000000000"
                                             << "PARKING #42" << QDateTime(QDate(2006, 5, 4), QTime(3, 2, 1)) << false;
        QTest::newRow("last second of a leap day")
            << "00595923042902240000000000000000"
            << "PARKING #0" << QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59)) << false;
        QTest::newRow("all zeros") << QString(32, QLatin1Char('0')) << "PARKING #0" << invalid << false;
        QTest::newRow("all nines") << QString(32, QLatin1Char('9')) << "PARKING #99" << invalid << false;
        QTest::newRow("month 13") << "01312211020213190000000000000000"
                                  << "PARKING #1" << invalid << false;
        QTest::newRow("hour 25") << "01312225020202190000000000000000"
                                 << "PARKING #1" << invalid << false;
        QTest::newRow("29 February of a common year") << "01312211022902190000000000000000"
                                                      << "PARKING #1" << invalid << false;
        QTest::newRow("weekday of another day")
            << "01312211990202190000000000000000"
            << "PARKING #1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << false;
        QTest::newRow("letters for the parking number")
            << "AB312211020202190000000000000000"
            << "PARKING #0" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << false;
        QTest::newRow("letters for the seconds")
            << "01ZZ2211020202190000000000000000"
            << "PARKING #1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 0)) << false;
        const QDateTime fives(QDate(2005, 5, 5), QTime(5, 5, 5));
        QTest::newRow("plus signs") << "+5+5+5+5+5+5+5+50000000000000000"
                                    << "PARKING #5" << fives << false;
        QTest::newRow("blanks before the digits") << "05 5 5 5 5 5 5 50000000000000000"
                                                  << "PARKING #5" << fives << false;
        QTest::newRow("blanks behind the digits") << "5 5 5 5 5 5 5 5 0000000000000000"
                                                  << "PARKING #5" << fives << false;
        QTest::newRow("minus sign in the parking number")
            << "-1312211020202190000000000000000"
            << "PARKING #-1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << false;
        QTest::newRow("minus sign in the seconds") << "01-12211020202190000000000000000"
                                                   << "PARKING #1" << invalid << false;
        QTest::newRow("minus sign in the year")
            << "01312211020202-10000000000000000"
            << "PARKING #1" << QDateTime(QDate(1999, 2, 2), QTime(11, 22, 31)) << false;
        QTest::newRow("two blanks inside, 32 characters with both")
            << "0131221102020219  00000000000000"
            << "PARKING #1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << false;
        QTest::newRow("two blanks inside, 33 characters with both")
            << "0131221102020219  000000000000000" << none << invalid << false;
        QTest::newRow("not packed decimal")
            << "19312211021010190000000000000000"
            << "PARKING #19" << QDateTime(QDate(2019, 10, 10), QTime(11, 22, 31)) << false;
        QTest::newRow("flag at the first position")
            << "01312211020202191000000000000000"
            << "PARKING #1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << true;
        QTest::newRow("flag at the last position")
            << "01312211020202190000000000000001"
            << "PARKING #1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << true;
        QTest::newRow("a 2 is no flag") << "01312211020202192222222222222222"
                                        << "PARKING #1" << QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31)) << false;
        QTest::newRow("a 1 before the flags is no flag")
            << "11111111111111110000000000000000"
            << "PARKING #11" << QDateTime(QDate(2011, 11, 11), QTime(11, 11, 11)) << false;
        QTest::newRow("31 characters") << EXAMPLE_PAYLOAD.left(31) << none << invalid << false;
        QTest::newRow("33 characters") << EXAMPLE_PAYLOAD + QLatin1Char('0') << none << invalid << false;
        QTest::newRow("empty") << "" << none << invalid << false;
        QTest::newRow("32 characters, 31 without blanks")
            << EXAMPLE_PAYLOAD.left(31) + QLatin1Char(' ') << none << invalid << false;
    }

    void parseMap_payload_isDecodedByPosition()
    {
        QFETCH(QString, pdata);
        QFETCH(QString, parking);
        QFETCH(QDateTime, activated);
        QFETCH(bool, discount);
        ParkomatCardData card;
        QVERIFY2(card.parseMap(cardMap(pdata)), "a payload is never a failure");
        MessageLog::drop();
        QCOMPARE(parkingLine(card), parking);
        QCOMPARE(card.cardDt().isValid(), activated.isValid());
        QCOMPARE(card.cardDt(), activated);
        QCOMPARE(card.discount(), discount);
        QCOMPARE(card.cardData().size(), pdata.trimmed().size() == 32 ? 32 : 0);
    }

    void parseMap_blanksAroundPayload_doNotCount()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(cardMap(QStringLiteral(" \t") + EXAMPLE_PAYLOAD + QStringLiteral("\r\n "))));
        MessageLog::drop();
        QCOMPARE(card.cardData(), EXAMPLE_PAYLOAD.toLatin1());
    }

    void parseMap_lettersBeyondLatin1_stay32Bytes()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(cardMap(QString(32, QChar(0x0416)))));
        MessageLog::drop();
        QCOMPARE(card.cardData().size(), 32);
        QCOMPARE(parkingLine(card), QStringLiteral("PARKING #0"));
    }

    void parseMap_keyMissing_leavesNothingOfAnEarlierCard_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::newRow("UID") << "id";
        QTest::newRow("card number") << "cardId";
    }

    void parseMap_keyMissing_leavesNothingOfAnEarlierCard()
    {
        QFETCH(QString, missing);
        ParkomatCardData card = exampleCard();
        QVariantMap map = cardMap(EXAMPLE_PAYLOAD);
        map.remove(missing);
        QVERIFY(!card.parseMap(map));
        QCOMPARE(MessageLog::take().size(), 1);
        verifyEmpty(card);
    }

    void parseMap_emptyValue_isFalseButDecoded_data()
    {
        QTest::addColumn<QString>("empty");
        QTest::newRow("UID") << "id";
        QTest::newRow("card number") << "cardId";
    }

    void parseMap_emptyValue_isFalseButDecoded()
    {
        QFETCH(QString, empty);
        ParkomatCardData card = exampleCard();
        QVariantMap map = cardMap(EXAMPLE_PAYLOAD);
        map.insert(empty, QString());
        QVERIFY(!card.parseMap(map));
        MessageLog::drop();
        QVERIFY(!card.isValid());
        QCOMPARE(card.cardData(), EXAMPLE_PAYLOAD.toLatin1());
        QVERIFY(card.cardDt().isValid());
    }

    void parseMap_payloadMissing_isStillValid()
    {
        ParkomatCardData card = exampleCard();
        QVariantMap map = cardMap(QString());
        map.remove(QStringLiteral("pdata"));
        QVERIFY(card.parseMap(map));
        MessageLog::drop();
        QVERIFY(card.cardData().isNull());
        QVERIFY(card.cardDt().isNull());
        QVERIFY(!card.discount());
        QCOMPARE(parkingLine(card), QStringLiteral("PARKING #-1"));
    }

    void parseMap_values_areTakenAsText()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap({{QStringLiteral("id"), 305419896u},
                               {QStringLiteral("cardId"), QStringLiteral(" 12 ")},
                               {QStringLiteral("cdt"), 1}}));
        MessageLog::drop();
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        QCOMPARE(card.id(), QStringLiteral(" 12 "));
    }

    void parseMap_valueOfAnotherType_isTakenAsItsText_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("uid");
        QTest::newRow("double") << QVariant(305419896.0) << "305419896";
        QTest::newRow("fraction") << QVariant(0.5) << "0.5";
        QTest::newRow("large double") << QVariant(1e20) << "1e+20";
        QTest::newRow("bool") << QVariant(true) << "true";
        QTest::newRow("character") << QVariant(QChar(0x0416)) << "Ж";
        QTest::newRow("list of one text") << QVariant(QStringList(QStringLiteral("7"))) << "7";
        QTest::newRow("list of two texts") << QVariant(QStringList({QStringLiteral("7"), QStringLiteral("8")})) << "";
        QTest::newRow("list of one value") << QVariant(QVariantList({7})) << "";
        QTest::newRow("map") << QVariant(QVariantMap{{QStringLiteral("id"), 7}}) << "";
        QTest::newRow("bytes") << QVariant(QByteArray("\xd0\x96")) << "Ж";
        QTest::newRow("bytes with a zero byte") << QVariant(QByteArray("12\00034", 5)) << "12";
        QTest::newRow("invalid") << QVariant() << "";
    }

    void parseMap_valueOfAnotherType_isTakenAsItsText()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, uid);
        QVariantMap map = cardMap(EXAMPLE_PAYLOAD);
        map.insert(QStringLiteral("id"), value);
        ParkomatCardData card;
        QCOMPARE(card.parseMap(map), !uid.isEmpty());
        MessageLog::drop();
        QCOMPARE(card.uid(), uid);
        QCOMPARE(card.id(), QStringLiteral("000123456"));
        QCOMPARE(card.cardData(), EXAMPLE_PAYLOAD.toLatin1());
    }

    void parseMap_timeLeftOutBySummerTime_isNoMoment()
    {
        const Zone zone("Europe/Berlin");
        ParkomatCardData card;
        QVERIFY(card.parseMap(cardMap(QStringLiteral("01003002073103190000000000000000"))));
        MessageLog::drop();
        QVERIFY(!card.cardDt().isValid());
        QCOMPARE(card.toStringList().value(6), QString());
    }

    void parseMap_parkingOfAnotherOperator_isAccepted()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(cardMap(QStringLiteral("98312211020202190000000000000000"))));
        MessageLog::drop();
        QCOMPARE(parkingLine(card), QStringLiteral("PARKING #98"));
    }

    void parseMap_log_saysWhatWasRead()
    {
        ParkomatSettings().setParkingId(QStringLiteral("12"));
        ParkomatCardData card;
        QVERIFY(card.parseMap(cardMap(EXAMPLE_PAYLOAD)));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 5);
        int lineBefore = 0;
        for (const LogLine &line : lines) {
            QCOMPARE(line.level, QtWarningMsg);
            QCOMPARE(line.category, QStringLiteral("default"));
            QCOMPARE(line.file, QStringLiteral("src/parkomatcarddata.cpp"));
            QVERIFY(line.line > lineBefore);
            lineBefore = line.line;
            QCOMPARE(line.function, QStringLiteral("bool ParkomatCardData::parseMap(const QVariantMap&)"));
        }
        QCOMPARE(lines.at(0).text,
                 QStringLiteral("Card data: cardId: 000123456\nid: 305419896\npdata: ") + EXAMPLE_PAYLOAD);
        QCOMPARE(lines.at(1).text, QStringLiteral("Card payload: %1 length: 32").arg(EXAMPLE_PAYLOAD));
        QCOMPARE(lines.at(2).text, QStringLiteral("Card parking number: 1 configured: 12"));
        QCOMPARE(lines.at(3).text, QStringLiteral("Card activated: Sat Feb 2 2019 11:22:31 weekday: 6 on the card: 2"));
        QCOMPARE(lines.at(4).text, QStringLiteral("Card: 2019-02-02T11:22:31 discount: true uid: 305419896 "
                                                  "id: 000123456 valid: true"));
    }

    void parseMap_logOfUnusablePayload_saysSo()
    {
        ParkomatCardData card;
        QVERIFY(!card.parseMap({{QStringLiteral("id"), QString()}, {QStringLiteral("cardId"), QStringLiteral("1")}}));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines.at(1).text, QStringLiteral("Card payload:  length: 0"));
        QCOMPARE(lines.at(2).text, QStringLiteral("Card:  discount: false uid:  id: 1 valid: false"));
    }

    void uidHex_uid_isReversedHexadecimal_data()
    {
        QTest::addColumn<QString>("uid");
        QTest::addColumn<QString>("hex");
        QTest::newRow("every byte its own") << "305419896"
                                            << "78563412";
        QTest::newRow("largest") << "4294967295"
                                 << "FFFFFFFF";
        QTest::newRow("letters") << "2882400001"
                                 << "01EFCDAB";
        QTest::newRow("smallest of eight digits") << "268435456"
                                                  << "00000010";
        QTest::newRow("one below eight digits") << "268435455" << nuls(1);
        QTest::newRow("seven digits") << "16777216" << nuls(1);
        QTest::newRow("two digits") << "255" << nuls(6);
        QTest::newRow("one") << "1" << nuls(7);
        QTest::newRow("zero") << "0" << nuls(7);
        QTest::newRow("empty") << "" << nuls(7);
        QTest::newRow("no number") << "card" << nuls(7);
        QTest::newRow("hexadecimal text") << "12AB" << nuls(7);
        QTest::newRow("hexadecimal text with a prefix") << "0x12345678" << nuls(7);
        QTest::newRow("leading zero") << "02215053170"
                                      << "72070784";
        QTest::newRow("above 32 bits") << "4294967296" << nuls(7);
        QTest::newRow("negative") << "-1" << nuls(7);
    }

    void uidHex_uid_isReversedHexadecimal()
    {
        QFETCH(QString, uid);
        QFETCH(QString, hex);
        ParkomatCardData card;
        card.setUid(uid);
        QCOMPARE(card.uidHex(), hex);
    }

    void setters_anyValue_areReadBack()
    {
        ParkomatCardData card;
        card.setUid(QStringLiteral("1"));
        QVERIFY(!card.isValid());
        card.setId(QStringLiteral("2"));
        QVERIFY(card.isValid());
        card.setCardData("abc");
        const QDateTime moment(QDate(2024, 3, 7), QTime(1, 2, 3), Qt::UTC);
        card.setCardDt(moment);
        card.setDiscount(true);
        QCOMPARE(card.uid(), QStringLiteral("1"));
        QCOMPARE(card.id(), QStringLiteral("2"));
        QCOMPARE(card.cardData(), QByteArray("abc"));
        QCOMPARE(card.cardDt(), moment);
        QVERIFY(card.discount());
    }

    void isValid_idAlone_isFalse()
    {
        ParkomatCardData card;
        card.setId(QStringLiteral("2"));
        QVERIFY(!card.isValid());
    }

    void clean_filled_isEmpty()
    {
        ParkomatCardData card = exampleCard();
        card.clean();
        verifyEmpty(card);
        card.setUid(QStringLiteral("1"));
        card.setId(QStringLiteral("2"));
        QCOMPARE(parkingLine(card), QStringLiteral("PARKING #-1"));
    }

    void toMap_decoded_bringsTheSameRecord()
    {
        const ParkomatCardData card = exampleCard();
        const QVariantMap map = card.toMap();
        QCOMPARE(map, cardMap(EXAMPLE_PAYLOAD));
        ParkomatCardData again;
        QVERIFY(again.parseMap(map));
        MessageLog::drop();
        QVERIFY(again == card);
    }

    void toMap_empty_hasThreeNullTexts()
    {
        const QVariantMap map = ParkomatCardData().toMap();
        QCOMPARE(map.keys(), QStringList({QStringLiteral("cardId"), QStringLiteral("id"), QStringLiteral("pdata")}));
        for (const QVariant &value : map) {
            QCOMPARE(value.type(), QVariant::String);
            QVERIFY(value.toString().isNull());
        }
    }

    void toMap_zeroByteInPayload_endsTheText()
    {
        ParkomatCardData card;
        card.setCardData(QByteArray("ab\0cd\xe9", 6));
        QCOMPARE(card.toMap().value(QStringLiteral("pdata")).toString(), QStringLiteral("ab"));
        card.setCardData("\xe9");
        QCOMPARE(card.toMap().value(QStringLiteral("pdata")).toString(), QString(QChar(0xe9)));
    }

    void toStringList_discount_isEightLines()
    {
        QCOMPARE(
            exampleCard().toStringList(),
            QStringList({QStringLiteral("CARD UID "), QStringLiteral("305419896"), QStringLiteral("CARD ID"),
                         QStringLiteral("000123456"), QStringLiteral("PARKING #1"), QStringLiteral("CARD ACTIVATED "),
                         QStringLiteral("11.02.02 11:22:31"), QStringLiteral("DISCOUNT")}));
    }

    void toStringList_translator_translatesEveryLabel()
    {
        MarkingTranslator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        const QStringList lines = exampleCard().toStringList();
        QVERIFY(QCoreApplication::removeTranslator(&translator));
        QCOMPARE(lines, QStringList({QStringLiteral("<CARD UID >"), QStringLiteral("305419896"),
                                     QStringLiteral("<CARD ID>"), QStringLiteral("000123456"),
                                     QStringLiteral("<PARKING #1>"), QStringLiteral("<CARD ACTIVATED >"),
                                     QStringLiteral("11.02.02 11:22:31"), QStringLiteral("<DISCOUNT>")}));
    }

    void toStringList_noPayload_hasNoDate()
    {
        ParkomatCardData card;
        card.setUid(QStringLiteral("1"));
        card.setId(QStringLiteral("2"));
        QCOMPARE(card.toStringList(),
                 QStringList({QStringLiteral("CARD UID "), QStringLiteral("1"), QStringLiteral("CARD ID"),
                              QStringLiteral("2"), QStringLiteral("PARKING #-1"), QStringLiteral("CARD ACTIVATED "),
                              QString()}));
    }

    void toStringList_notValid_isEmpty()
    {
        ParkomatCardData card = exampleCard();
        card.setId(QString());
        QCOMPARE(card.toStringList(), QStringList());
    }

    void equality_oneFieldDifferent_isUnequal()
    {
        const ParkomatCardData card = exampleCard();
        QVERIFY(card == exampleCard());
        QVERIFY(!(card != exampleCard()));

        ParkomatCardData other = exampleCard();
        other.setUid(QStringLiteral("1"));
        QVERIFY(card != other);
        other = exampleCard();
        other.setId(QStringLiteral("1"));
        QVERIFY(card != other);
        other = exampleCard();
        other.setCardData(card.cardData() + '0');
        QVERIFY(card != other);
        other = exampleCard();
        other.setCardDt(card.cardDt().addSecs(1));
        QVERIFY(card != other);
        other = exampleCard();
        other.setDiscount(false);
        QVERIFY(card != other);
    }

    void equality_onlyParkingNumberDifferent_isUnequal()
    {
        ParkomatCardData one;
        ParkomatCardData two;
        one.parseMap(cardMap(QStringLiteral("01") + EXAMPLE_PAYLOAD.mid(2)));
        two.parseMap(cardMap(QStringLiteral("02") + EXAMPLE_PAYLOAD.mid(2)));
        MessageLog::drop();
        two.setCardData(one.cardData());
        QVERIFY(one != two);
    }

    void copy_original_isUntouched()
    {
        const ParkomatCardData card = exampleCard();
        ParkomatCardData copy(card);
        QVERIFY(copy == card);
        copy.setUid(QStringLiteral("1"));
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        copy = card;
        QVERIFY(copy == card);
    }

    void moveConstruction_source_getsTheDefaults()
    {
        ParkomatCardData source = exampleCard();
        const ParkomatCardData target(std::move(source));
        QVERIFY(target == exampleCard());
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from record holds is part of its contract.
        QVERIFY(source.uid().isNull());
        QVERIFY(source.id().isNull());
        QVERIFY(source.cardData().isNull());
        QVERIFY(!source.cardDt().isValid());
        QVERIFY(source.discount());
        source.setUid(QStringLiteral("1"));
        source.setId(QStringLiteral("2"));
        QCOMPARE(parkingLine(source), QStringLiteral("PARKING #1"));
        // NOLINTEND(bugprone-use-after-move)
    }

    void moveAssignment_source_getsTheTargetsTexts()
    {
        ParkomatCardData source = exampleCard();
        ParkomatCardData target;
        target.setUid(QStringLiteral("1"));
        target.setId(QStringLiteral("2"));
        target.setCardData("abc");
        const QDateTime moment(QDate(2024, 3, 7), QTime(1, 2, 3), Qt::UTC);
        target.setCardDt(moment);
        target = std::move(source);
        QVERIFY(target == exampleCard());
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from record holds is part of its contract.
        QCOMPARE(source.uid(), QStringLiteral("1"));
        QCOMPARE(source.id(), QStringLiteral("2"));
        QCOMPARE(source.cardData(), QByteArray("abc"));
        QCOMPARE(source.cardDt(), moment);
        QVERIFY(source.discount());
        QCOMPARE(parkingLine(source), QStringLiteral("PARKING #1"));
        // NOLINTEND(bugprone-use-after-move)
    }

    void assignment_toItself_changesNothing()
    {
        ParkomatCardData card = exampleCard();
        ParkomatCardData &same = card;
        card = same;
        QVERIFY(card == exampleCard());
        card = std::move(same);
        QVERIFY(card == exampleCard());
    }
};

TEST_MAIN(ParkomatCardDataTest)
#include "tst_parkomatcarddata.moc"
