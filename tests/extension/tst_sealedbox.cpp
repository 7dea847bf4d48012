// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/sealedbox.h"

#include "extension/storagekey.h"
#include "support/testcase.h"

#include <QSet>

namespace {
constexpr int HEAD_AND_TAG = 8 + 24 + 16;

StorageKey keyOf(unsigned char first)
{
    std::array<unsigned char, StorageKey::SIZE> bytes = {};
    bytes[0] = first;
    return StorageKey(bytes);
}
} // namespace

class SealedBoxTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void content_sealedAndOpened_isTheSame_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("one byte") << QByteArray("x");
        QTest::newRow("zero bytes") << QByteArray(3, '\0');
        QTest::newRow("a box's beginning") << QByteArray("TSEALED1");
        QTest::newRow("1 MiB") << QByteArray(1 << 20, 'x');
    }

    void content_sealedAndOpened_isTheSame()
    {
        QFETCH(QByteArray, content);
        const QByteArray box = SealedBox::seal(content, keyOf(1));
        QCOMPARE(box.size(), content.size() + HEAD_AND_TAG);
        QVERIFY(box.startsWith("TSEALED1"));
        const auto opened = SealedBox::open(box, keyOf(1));
        QVERIFY(opened.has_value());
        QCOMPARE(*opened, content);
    }

    void content_sealedTwice_givesDifferentBoxes()
    {
        QSet<QByteArray> boxes;
        for (int i = 0; i < 100; ++i)
            boxes.insert(SealedBox::seal("the same", keyOf(1)));
        QCOMPARE(boxes.size(), 100);
    }

    void content_sealed_doesNotShow()
    {
        const QByteArray secret = "operation=4711";
        QVERIFY(!SealedBox::seal(secret + secret, keyOf(1)).contains(secret));
    }

    void box_ofAnotherKey_staysShut()
    {
        QVERIFY(!SealedBox::open(SealedBox::seal("content", keyOf(1)), keyOf(2)).has_value());
    }

    void box_withAnyBitChanged_staysShut()
    {
        const QByteArray box = SealedBox::seal("content", keyOf(1));
        for (int bit = 0; bit < box.size() * 8; ++bit) {
            QByteArray changed = box;
            changed[bit / 8] = static_cast<char>(changed.at(bit / 8) ^ (1 << bit % 8));
            QVERIFY2(!SealedBox::open(changed, keyOf(1)).has_value(), QByteArray::number(bit));
        }
    }

    void box_cutAnywhere_staysShut()
    {
        const QByteArray box = SealedBox::seal("content", keyOf(1));
        for (int size = 0; size < box.size(); ++size)
            QVERIFY2(!SealedBox::open(box.left(size), keyOf(1)).has_value(), QByteArray::number(size));
    }

    void box_withBytesAdded_staysShut()
    {
        const QByteArray box = SealedBox::seal("content", keyOf(1));
        QVERIFY(!SealedBox::open(box + '\0', keyOf(1)).has_value());
        QVERIFY(!SealedBox::open('\0' + box, keyOf(1)).has_value());
        QVERIFY(!SealedBox::open(box + box, keyOf(1)).has_value());
    }
};

TEST_MAIN(SealedBoxTest)
#include "tst_sealedbox.moc"
