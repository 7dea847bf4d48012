// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "examplecard.h"
#include "support/testcase.h"

#include <QTranslator>

#include <utility>

namespace {
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

/// The record of one parking card, once it is filled.
class ParkomatCardDataTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void constructor_default_isEmpty() { ExampleCard::verifyEmpty(ParkomatCardData()); }

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
        ParkomatCardData card = ExampleCard::card();
        card.clean();
        ExampleCard::verifyEmpty(card);
        card.setUid(QStringLiteral("1"));
        card.setId(QStringLiteral("2"));
        QCOMPARE(ExampleCard::parkingLine(card), QStringLiteral("PARKING #-1"));
    }

    void toMap_decoded_bringsTheSameRecord()
    {
        const ParkomatCardData card = ExampleCard::card();
        const QVariantMap map = card.toMap();
        QCOMPARE(map, ExampleCard::map(ExampleCard::PAYLOAD));
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
            ExampleCard::card().toStringList(),
            QStringList({QStringLiteral("CARD UID "), QStringLiteral("305419896"), QStringLiteral("CARD ID"),
                         QStringLiteral("000123456"), QStringLiteral("PARKING #1"), QStringLiteral("CARD ACTIVATED "),
                         QStringLiteral("11.02.02 11:22:31"), QStringLiteral("DISCOUNT")}));
    }

    void toStringList_translator_translatesEveryLabel()
    {
        MarkingTranslator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        const QStringList lines = ExampleCard::card().toStringList();
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
        ParkomatCardData card = ExampleCard::card();
        card.setId(QString());
        QCOMPARE(card.toStringList(), QStringList());
    }

    void equality_oneFieldDifferent_isUnequal()
    {
        const ParkomatCardData card = ExampleCard::card();
        QVERIFY(card == ExampleCard::card());
        QVERIFY(!(card != ExampleCard::card()));

        ParkomatCardData other = ExampleCard::card();
        other.setUid(QStringLiteral("1"));
        QVERIFY(card != other);
        other = ExampleCard::card();
        other.setId(QStringLiteral("1"));
        QVERIFY(card != other);
        other = ExampleCard::card();
        other.setCardData(card.cardData() + '0');
        QVERIFY(card != other);
        other = ExampleCard::card();
        other.setCardDt(card.cardDt().addSecs(1));
        QVERIFY(card != other);
        other = ExampleCard::card();
        other.setDiscount(false);
        QVERIFY(card != other);
    }

    void equality_onlyParkingNumberDifferent_isUnequal()
    {
        ParkomatCardData one;
        ParkomatCardData two;
        one.parseMap(ExampleCard::map(QStringLiteral("01") + ExampleCard::PAYLOAD.mid(2)));
        two.parseMap(ExampleCard::map(QStringLiteral("02") + ExampleCard::PAYLOAD.mid(2)));
        MessageLog::drop();
        two.setCardData(one.cardData());
        QVERIFY(one != two);
    }

    void copy_original_isUntouched()
    {
        const ParkomatCardData card = ExampleCard::card();
        ParkomatCardData copy(card);
        QVERIFY(copy == card);
        copy.setUid(QStringLiteral("1"));
        QCOMPARE(card.uid(), QStringLiteral("305419896"));
        copy = card;
        QVERIFY(copy == card);
    }

    void moveConstruction_source_getsTheDefaults()
    {
        ParkomatCardData source = ExampleCard::card();
        const ParkomatCardData target(std::move(source));
        QVERIFY(target == ExampleCard::card());
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from record holds is part of its contract.
        QVERIFY(source.uid().isNull());
        QVERIFY(source.id().isNull());
        QVERIFY(source.cardData().isNull());
        QVERIFY(!source.cardDt().isValid());
        QVERIFY(source.discount());
        source.setUid(QStringLiteral("1"));
        source.setId(QStringLiteral("2"));
        QCOMPARE(ExampleCard::parkingLine(source), QStringLiteral("PARKING #1"));
        // NOLINTEND(bugprone-use-after-move)
    }

    void moveAssignment_source_getsTheTargetsTexts()
    {
        ParkomatCardData source = ExampleCard::card();
        ParkomatCardData target;
        target.setUid(QStringLiteral("1"));
        target.setId(QStringLiteral("2"));
        target.setCardData("abc");
        const QDateTime moment(QDate(2024, 3, 7), QTime(1, 2, 3), Qt::UTC);
        target.setCardDt(moment);
        target = std::move(source);
        QVERIFY(target == ExampleCard::card());
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from record holds is part of its contract.
        QCOMPARE(source.uid(), QStringLiteral("1"));
        QCOMPARE(source.id(), QStringLiteral("2"));
        QCOMPARE(source.cardData(), QByteArray("abc"));
        QCOMPARE(source.cardDt(), moment);
        QVERIFY(source.discount());
        QCOMPARE(ExampleCard::parkingLine(source), QStringLiteral("PARKING #1"));
        // NOLINTEND(bugprone-use-after-move)
    }

    void assignment_toItself_changesNothing()
    {
        ParkomatCardData card = ExampleCard::card();
        ParkomatCardData &same = card;
        card = same;
        QVERIFY(card == ExampleCard::card());
        card = std::move(same);
        QVERIFY(card == ExampleCard::card());
    }
};

TEST_MAIN(ParkomatCardDataTest)
#include "tst_parkomatcarddata.moc"
