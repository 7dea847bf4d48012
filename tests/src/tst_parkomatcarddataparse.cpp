// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "examplecard.h"
#include "parkomatsettings.h"
#include "support/testcase.h"
#include "support/zone.h"

/// What becomes of a card reader's map.
class ParkomatCardDataParseTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void constructor_fromVariant_parsesItsMap()
    {
        const ParkomatCardData card{QVariant(ExampleCard::map(ExampleCard::PAYLOAD))};
        QVERIFY(!MessageLog::take().isEmpty());
        QVERIFY(card.isValid());
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        ExampleCard::verifyEmpty(ParkomatCardData(QVariant(QStringLiteral("no map"))));
        ExampleCard::verifyEmpty(ParkomatCardData{QVariant()});
        QVERIFY(!MessageLog::take().isEmpty());
    }

    void parseMap_examplePayload_isDecoded()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(ExampleCard::map(ExampleCard::PAYLOAD)));
        MessageLog::drop();
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        QCOMPARE(card.id(), QStringLiteral("000123456"));
        QCOMPARE(card.cardData(), ExampleCard::PAYLOAD.toLatin1());
        QCOMPARE(card.cardDt(), QDateTime(QDate(2019, 2, 2), QTime(11, 22, 31), Qt::LocalTime));
        QCOMPARE(card.cardDt().timeSpec(), Qt::LocalTime);
        QVERIFY(card.discount());
        QCOMPARE(ExampleCard::parkingLine(card), QStringLiteral("PARKING #1"));
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
        QTest::newRow("31 characters") << ExampleCard::PAYLOAD.left(31) << none << invalid << false;
        QTest::newRow("33 characters") << ExampleCard::PAYLOAD + QLatin1Char('0') << none << invalid << false;
        QTest::newRow("empty") << "" << none << invalid << false;
        QTest::newRow("32 characters, 31 without blanks")
            << ExampleCard::PAYLOAD.left(31) + QLatin1Char(' ') << none << invalid << false;
    }

    void parseMap_payload_isDecodedByPosition()
    {
        QFETCH(QString, pdata);
        QFETCH(QString, parking);
        QFETCH(QDateTime, activated);
        QFETCH(bool, discount);
        ParkomatCardData card;
        QVERIFY2(card.parseMap(ExampleCard::map(pdata)), "a payload is never a failure");
        MessageLog::drop();
        QCOMPARE(ExampleCard::parkingLine(card), parking);
        QCOMPARE(card.cardDt().isValid(), activated.isValid());
        QCOMPARE(card.cardDt(), activated);
        QCOMPARE(card.discount(), discount);
        QCOMPARE(card.cardData().size(), pdata.trimmed().size() == 32 ? 32 : 0);
    }

    void parseMap_blanksAroundPayload_doNotCount()
    {
        ParkomatCardData card;
        QVERIFY(
            card.parseMap(ExampleCard::map(QStringLiteral(" \t") + ExampleCard::PAYLOAD + QStringLiteral("\r\n "))));
        MessageLog::drop();
        QCOMPARE(card.cardData(), ExampleCard::PAYLOAD.toLatin1());
    }

    void parseMap_lettersBeyondLatin1_stay32Bytes()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(ExampleCard::map(QString(32, QChar(0x0416)))));
        MessageLog::drop();
        QCOMPARE(card.cardData().size(), 32);
        QCOMPARE(ExampleCard::parkingLine(card), QStringLiteral("PARKING #0"));
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
        ParkomatCardData card = ExampleCard::card();
        QVariantMap map = ExampleCard::map(ExampleCard::PAYLOAD);
        map.remove(missing);
        QVERIFY(!card.parseMap(map));
        QCOMPARE(MessageLog::take().size(), 1);
        ExampleCard::verifyEmpty(card);
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
        ParkomatCardData card = ExampleCard::card();
        QVariantMap map = ExampleCard::map(ExampleCard::PAYLOAD);
        map.insert(empty, QString());
        QVERIFY(!card.parseMap(map));
        MessageLog::drop();
        QVERIFY(!card.isValid());
        QCOMPARE(card.cardData(), ExampleCard::PAYLOAD.toLatin1());
        QVERIFY(card.cardDt().isValid());
    }

    void parseMap_payloadMissing_isStillValid()
    {
        ParkomatCardData card = ExampleCard::card();
        QVariantMap map = ExampleCard::map(QString());
        map.remove(QStringLiteral("pdata"));
        QVERIFY(card.parseMap(map));
        MessageLog::drop();
        QVERIFY(card.cardData().isNull());
        QVERIFY(card.cardDt().isNull());
        QVERIFY(!card.discount());
        QCOMPARE(ExampleCard::parkingLine(card), QStringLiteral("PARKING #-1"));
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
        QVariantMap map = ExampleCard::map(ExampleCard::PAYLOAD);
        map.insert(QStringLiteral("id"), value);
        ParkomatCardData card;
        QCOMPARE(card.parseMap(map), !uid.isEmpty());
        MessageLog::drop();
        QCOMPARE(card.uid(), uid);
        QCOMPARE(card.id(), QStringLiteral("000123456"));
        QCOMPARE(card.cardData(), ExampleCard::PAYLOAD.toLatin1());
    }

    void parseMap_timeLeftOutBySummerTime_isNoMoment()
    {
        const Zone zone("Europe/Berlin");
        ParkomatCardData card;
        QVERIFY(card.parseMap(ExampleCard::map(QStringLiteral("01003002073103190000000000000000"))));
        MessageLog::drop();
        QVERIFY(!card.cardDt().isValid());
        QCOMPARE(card.toStringList().value(6), QString());
    }

    void parseMap_parkingOfAnotherOperator_isAccepted()
    {
        ParkomatCardData card;
        QVERIFY(card.parseMap(ExampleCard::map(QStringLiteral("98312211020202190000000000000000"))));
        MessageLog::drop();
        QCOMPARE(ExampleCard::parkingLine(card), QStringLiteral("PARKING #98"));
    }

    void parseMap_log_saysWhatWasRead()
    {
        ParkomatSettings().setParkingId(QStringLiteral("12"));
        ParkomatCardData card;
        QVERIFY(card.parseMap(ExampleCard::map(ExampleCard::PAYLOAD)));
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
                 QStringLiteral("Card data: cardId: 000123456\nid: 305419896\npdata: ") + ExampleCard::PAYLOAD);
        QCOMPARE(lines.at(1).text, QStringLiteral("Card payload: %1 length: 32").arg(ExampleCard::PAYLOAD));
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
};

TEST_MAIN(ParkomatCardDataParseTest)
#include "tst_parkomatcarddataparse.moc"
