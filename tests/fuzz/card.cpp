// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fuzztarget.h"
#include "parkomatcarddata.h"

#include <algorithm>
#include <utility>

namespace {
/// The input's lines in order; a missing one is a missing key.
QVariantMap mapFrom(const QByteArray &input)
{
    static const QStringList keys = {QStringLiteral("id"), QStringLiteral("cardId"), QStringLiteral("pdata")};
    const QList<QByteArray> lines = input.split('\n');
    QVariantMap map;
    for (int i = 0; i < std::min(keys.size(), lines.size()); ++i)
        map.insert(keys.at(i), QString::fromUtf8(lines.at(i).constData(), lines.at(i).size()));
    return map;
}

bool isHex(const QString &text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || (c >= QLatin1Char('A') && c <= QLatin1Char('F'));
    });
}

void requireHexOfUid(const ParkomatCardData &card)
{
    const QString hex = card.uidHex();
    const quint32 uid = card.uid().toUInt(nullptr, 10);
    if (uid < 0x10000000U) {
        const int length = std::max(1, QString::number(uid, 16).size());
        FUZZ_REQUIRE(hex == QString(8 - length, QChar(QChar::Null)));
        return;
    }
    FUZZ_REQUIRE(hex.size() == 8 && isHex(hex));
    // Back again: the lowest byte comes first.
    const QByteArray bytes = QByteArray::fromHex(hex.toLatin1());
    quint32 read = 0;
    for (int i = 0; i < 4; ++i)
        read |= static_cast<quint32>(static_cast<unsigned char>(bytes.at(i))) << (8 * i);
    FUZZ_REQUIRE(read == uid);
}

/// Whether the payload survives as Latin-1 text that ends at its first NUL character.
bool isKept(const QString &payload)
{
    return std::all_of(payload.cbegin(), payload.cend(),
                       [](QChar c) { return c.unicode() != 0 && c.unicode() <= 0xff; });
}

void requireRoundTrip(const ParkomatCardData &card, const QString &payload)
{
    const QVariantMap map = card.toMap();
    FUZZ_REQUIRE(map.size() == 3);
    ParkomatCardData again;
    FUZZ_REQUIRE(again.parseMap(map) == card.isValid());
    FUZZ_REQUIRE(again.uid() == card.uid() && again.id() == card.id());
    if (isKept(payload))
        FUZZ_REQUIRE(again == card);
}

void requireLines(const ParkomatCardData &card)
{
    const QStringList lines = card.toStringList();
    if (!card.isValid()) {
        FUZZ_REQUIRE(lines.isEmpty());
        return;
    }
    FUZZ_REQUIRE(lines.size() == (card.discount() ? 8 : 7));
    FUZZ_REQUIRE(lines.at(1) == card.uid() && lines.at(3) == card.id());
}

void requireValue(const ParkomatCardData &card)
{
    ParkomatCardData copy(card);
    FUZZ_REQUIRE(copy == card);
    const ParkomatCardData moved(std::move(copy));
    FUZZ_REQUIRE(moved == card && !(moved != card));
    ParkomatCardData cleaned(card);
    cleaned.clean();
    FUZZ_REQUIRE(cleaned == ParkomatCardData());
}
} // namespace

/// A card reader's map; its three texts are the input's lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QVariantMap map = mapFrom(FuzzTarget::bytes(data, size));
    const QString payload = map.value(QStringLiteral("pdata")).toString().trimmed();

    // Filled before: nothing of an earlier card may stay.
    ParkomatCardData card;
    card.setUid(QStringLiteral("305419896"));
    card.setCardData("earlier");
    card.setDiscount(true);
    const bool isValid = card.parseMap(map);
    FUZZ_REQUIRE(isValid == card.isValid());
    FUZZ_REQUIRE(card == ParkomatCardData(QVariant(map)));
    if (!map.contains(QStringLiteral("cardId")))
        FUZZ_REQUIRE(!isValid && card == ParkomatCardData());
    FUZZ_REQUIRE(card.cardData().size() == (payload.size() == 32 && map.contains(QStringLiteral("pdata")) ? 32 : 0));

    requireHexOfUid(card);
    requireRoundTrip(card, payload);
    requireLines(card);
    requireValue(card);
    return 0;
}
