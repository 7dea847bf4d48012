// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomatcarddata.h"
#include "support/messagelog.h"

#include <QTest>

/// The card that the tests of its record begin with.
namespace ExampleCard {
inline const QString PAYLOAD = QStringLiteral("01312211020202190000000100000000");

/// As a card reader sends it, with another payload.
inline QVariantMap map(const QString &pdata)
{
    return {{QStringLiteral("id"), QStringLiteral("305419896")},
            {QStringLiteral("cardId"), QStringLiteral("000123456")},
            {QStringLiteral("pdata"), pdata}};
}

inline ParkomatCardData card()
{
    ParkomatCardData card(map(PAYLOAD));
    MessageLog::drop();
    return card;
}

/// The parking number has no getter of its own: it is the third labelled line.
inline QString parkingLine(const ParkomatCardData &card)
{
    return card.toStringList().value(4);
}

inline void verifyEmpty(const ParkomatCardData &card)
{
    QVERIFY(!card.isValid());
    QVERIFY(card.uid().isNull());
    QVERIFY(card.id().isNull());
    QVERIFY(card.cardData().isNull());
    QVERIFY(card.cardDt().isNull());
    QVERIFY(!card.discount());
    QVERIFY(card == ParkomatCardData());
}
} // namespace ExampleCard
