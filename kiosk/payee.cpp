// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payee.h"

#include "core/provider.h"

namespace kiosk {
namespace {
ProviderParameter parameter(const char *name, const QString &label)
{
    ProviderParameter made;
    made.setName(QLatin1String(name));
    made.setLabel(label);
    return made;
}
} // namespace

Provider *Payee::makeProvider(QObject *owner)
{
    auto *provider = new Provider(PROVIDER_ID, QStringLiteral("Парковка"), owner);
    provider->setParameters({
        parameter(CARD_NUMBER, QStringLiteral("Номер карты")),
        parameter("StartDate", QStringLiteral("Дата въезда")),
        parameter("StartTime", QStringLiteral("Время въезда")),
        parameter(SUM_DUE, QStringLiteral("К оплате")),
        parameter("ParkNumber", QStringLiteral("Парковка №")),
        parameter("TermNo", QStringLiteral("Паркомат №")),
        parameter(PARKING_SESSION, QStringLiteral("Парковочная сессия")),
    });
    return provider;
}

QString Payee::valueOf(const QList<ProviderParameter> &parameters, const char *name)
{
    for (const ProviderParameter &one : parameters) {
        if (one.name() == QLatin1String(name))
            return one.value();
    }
    return {};
}
} // namespace kiosk
