// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "cardinputs.h"

namespace {
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
