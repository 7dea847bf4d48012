// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/settingsmapcodec.h"

#include "support/testcase.h"

#include <QCborArray>
#include <QCborMap>
#include <QDateTime>

#include <limits>

class SettingsMapCodecTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void value_encodedAndDecoded_isTheSame_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("text") << QVariant(QString::fromUtf8("Сумма, \"150,00\"; = \\"));
        QTest::newRow("empty text") << QVariant(QString(QLatin1String("")));
        QTest::newRow("text with NUL") << QVariant(QString::fromLatin1("a\0b", 3));
        QTest::newRow("text beyond the basic plane") << QVariant(QString::fromUtf8("\U0001F697"));
        QTest::newRow("long text") << QVariant(QString(1 << 20, QLatin1Char('x')));
        QTest::newRow("true") << QVariant(true);
        QTest::newRow("false") << QVariant(false);
        QTest::newRow("whole number") << QVariant(qlonglong(65535));
        QTest::newRow("highest") << QVariant(std::numeric_limits<qlonglong>::max());
        QTest::newRow("lowest") << QVariant(std::numeric_limits<qlonglong>::min());
        QTest::newRow("real number") << QVariant(0.1);
        QTest::newRow("infinity") << QVariant(std::numeric_limits<double>::infinity());
        QTest::newRow("bytes") << QVariant(QByteArray("\0\x80\xff", 3));
        QTest::newRow("no bytes") << QVariant(QByteArray(""));
        QTest::newRow("moment") << QVariant(QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9, 123), Qt::UTC));
        QTest::newRow("local moment") << QVariant(QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)));
        QTest::newRow("list") << QVariant(QVariantList{1LL, QStringLiteral("two"), QVariantList{3LL}});
        QTest::newRow("map") << QVariant(
            QVariantMap{{QStringLiteral("a"), QVariantMap{{QStringLiteral("b"), 1LL}}}, {QString(), true}});
    }

    void value_encodedAndDecoded_isTheSame()
    {
        QFETCH(QVariant, value);
        const QSettings::SettingsMap map = {{QStringLiteral("GROUP/key"), value}};
        const auto decoded = SettingsMapCodec::decode(SettingsMapCodec::encode(map));
        QVERIFY(decoded.has_value());
        QCOMPARE(*decoded, map);
        QCOMPARE(decoded->first().type(), value.type());
    }

    void value_ofAnotherType_keepsItsText_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("int") << QVariant(-7);
        QTest::newRow("unsigned") << QVariant(4294967295U);
        QTest::newRow("largest unsigned") << QVariant(std::numeric_limits<qulonglong>::max());
        QTest::newRow("first unsigned beyond signed") << QVariant(qulonglong(1) << 63);
        QTest::newRow("short") << QVariant::fromValue(short(-3));
        QTest::newRow("unsigned short") << QVariant::fromValue(quint16(65535));
        QTest::newRow("float") << QVariant(0.5F);
        QTest::newRow("character") << QVariant(QChar(0x416));
        QTest::newRow("date") << QVariant(QDate(2024, 3, 7));
        QTest::newRow("time") << QVariant(QTime(14, 5, 9));
        QTest::newRow("null text") << QVariant(QString());
        QTest::newRow("nothing") << QVariant();
    }

    void value_ofAnotherType_keepsItsText()
    {
        QFETCH(QVariant, value);
        const auto decoded = SettingsMapCodec::decode(SettingsMapCodec::encode({{QStringLiteral("key"), value}}));
        QVERIFY(decoded.has_value());
        QVERIFY(decoded->contains(QStringLiteral("key")));
        QCOMPARE(decoded->first().toString(), value.toString());
    }

    void largeUnsigned_insideOthers_keepsItsText()
    {
        const qulonglong highest = std::numeric_limits<qulonglong>::max();
        const QVariantMap nested = {{QStringLiteral("list"), QVariantList{highest}}};
        const auto decoded = SettingsMapCodec::decode(SettingsMapCodec::encode({{QStringLiteral("key"), nested}}));
        QVERIFY(decoded.has_value());
        const QVariant list = decoded->first().toMap().value(QStringLiteral("list"));
        QCOMPARE(list.toList().value(0).toString(), QString::number(highest));
    }

    void textList_encodedAndDecoded_isAListOfTheSameTexts()
    {
        const QStringList list = {QStringLiteral("a"), QString(), QStringLiteral("b,c")};
        const auto decoded = SettingsMapCodec::decode(SettingsMapCodec::encode({{QStringLiteral("key"), list}}));
        QVERIFY(decoded.has_value());
        QCOMPARE(decoded->first().toStringList(), list);
    }

    void keys_encodedAndDecoded_areTheSame()
    {
        QSettings::SettingsMap map;
        for (const char *key : {"a", "A", "GROUP/key", "GROUP/sub/key", "ключ", " key ", "a=b", "[x]", ";"})
            map.insert(QString::fromUtf8(key), QString::fromUtf8(key));
        const auto decoded = SettingsMapCodec::decode(SettingsMapCodec::encode(map));
        QVERIFY(decoded.has_value());
        QCOMPARE(*decoded, map);
    }

    void emptyMap_encodedAndDecoded_isEmpty()
    {
        const auto decoded = SettingsMapCodec::decode(SettingsMapCodec::encode({}));
        QVERIFY(decoded.has_value());
        QVERIFY(decoded->isEmpty());
    }

    void bytes_thatAreNotExactlyOneMap_areRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray map = SettingsMapCodec::encode({{QStringLiteral("key"), 1}, {QStringLiteral("other"), 2}});
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("[GROUP]\nkey=1\n");
        QTest::newRow("a number") << QCborValue(1).toCbor();
        QTest::newRow("a list") << QCborValue(QCborArray{1}).toCbor();
        QTest::newRow("a byte behind") << map + '\0';
        QTest::newRow("a map behind") << map + map;
        for (int size = 1; size < map.size(); ++size)
            QTest::addRow("cut at %d", size) << map.left(size);
    }

    void bytes_thatAreNotExactlyOneMap_areRefused()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!SettingsMapCodec::decode(bytes).has_value());
    }
};

TEST_MAIN(SettingsMapCodecTest)
#include "tst_settingsmapcodec.moc"
