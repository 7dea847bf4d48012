// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "cardinputs.h"

#include <QDataStream>

namespace {
/// Stands in for the payload that only a card reader can read.
const char MANUAL_PDATA[] = "01312211020202190000000100000000";

ProviderParameter input(const char *name, const QString &label, const char *keyboardType)
{
    ProviderParameter parameter;
    parameter.setName(QLatin1String(name));
    parameter.setLabel(label);
    parameter.setCheckLabel(QString());
    parameter.setKeyboardType(QLatin1String(keyboardType));
    return parameter;
}
} // namespace

ProviderParameter CardInputs::cardNumber()
{
    return input("id", QStringLiteral("Введите номер карты"), "number");
}

ProviderParameter CardInputs::cardUid()
{
    ProviderParameter parameter = input("uid", QStringLiteral("Введите UID карты"), "full");
    parameter.setKeyboardLanguage(QStringLiteral("en"));
    return parameter;
}

ProviderParameter CardInputs::carNumber(const QString &cardId)
{
    return input("car_number", QStringLiteral("Номер карты: %1. Введите номер автомобиля.").arg(cardId), "number");
}

void CardInputs::keepCardNumber(QVariantMap &card, const QString &text)
{
    card.insert(QStringLiteral("cardId"), text);
    card.insert(QStringLiteral("cdt"), 1);
    card.insert(QStringLiteral("pdata"), QLatin1String(MANUAL_PDATA));
}

void CardInputs::keepCardUid(QVariantMap &card, const QString &text)
{
    QDataStream stream(QByteArray::fromHex(text.toLatin1()));
    qint32 number = 0;
    stream >> number;
    card.insert(QStringLiteral("id"), static_cast<quint32>(number));
}
