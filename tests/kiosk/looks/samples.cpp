// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/samples.h"

#include "plugininterface/ipaybyprovider.h"
#include "purchase.h"

namespace Samples {
QDateTime now()
{
    return {QDate(2024, 3, 7), QTime(14, 5, 9)};
}

TrelmInfo terminal()
{
    TrelmInfo info;
    info.id = 42;
    info.name = QStringLiteral("Паркомат № 42");
    info.address = QStringLiteral("ул. Академика Королёва, 15, въезд 2");
    info.phone = QStringLiteral("8 800 000-00-42");
    return info;
}

kiosk::PluginIdentity plugin()
{
    kiosk::PluginIdentity identity;
    identity.path = QStringLiteral("/opt/payment-terminal/plugins/libparkomatplugin.so");
    identity.interfaceId = QStringLiteral(PAY_BY_PROVIDER_IID);
    identity.qtVersion = QStringLiteral("5.15.8");
    identity.description = QStringLiteral("Оплата парковки по карте");
    identity.version = QStringLiteral("5.0.10");
    identity.build = QStringLiteral("2024-03-04T11:37:47");
    identity.id = 2023;
    identity.stringId = QStringLiteral("tarvSchoolCardPlugin");
    return identity;
}

kiosk::LedgerEntry payment(kiosk::Outcome outcome, const QString &due, const QString &cash, const QString &comission)
{
    kiosk::Purchase purchase(FixNumber(100, comission));
    purchase.setDue(due);
    purchase.add(FixNumber(100, cash));
    kiosk::LedgerEntry entry;
    entry.uid = 1047;
    entry.created = now().addSecs(-125);
    entry.outcome = outcome;
    entry.due = purchase.due();
    entry.cash = purchase.cash();
    entry.summ = purchase.summ();
    entry.comission = purchase.comission();
    entry.total = purchase.total();
    entry.change = purchase.change();
    entry.remainder = purchase.remainder();
    if (outcome == kiosk::Outcome::Interrupted) {
        // Nothing was sent: all of it is owed to the customer.
        entry.summ = FixNumber();
        entry.total = FixNumber();
        entry.change = entry.cash;
        entry.remainder = entry.due;
    }
    entry.cardNumber = QStringLiteral("000123456");
    entry.parkingSession = QStringLiteral("P-78563412-20240307");
    return entry;
}

QVector<kiosk::LedgerEntry> ledger()
{
    using kiosk::Outcome;
    QVector<kiosk::LedgerEntry> entries = {
        payment(Outcome::Unconfirmed, QStringLiteral("150.00"), QStringLiteral("200.00")),
        payment(Outcome::Confirmed, QStringLiteral("150.00"), QStringLiteral("150.00")),
        payment(Outcome::Interrupted, QStringLiteral("150.00"), QStringLiteral("100.00")),
        payment(Outcome::Confirmed, QStringLiteral("850.00"), QStringLiteral("500.00")),
    };
    for (int i = 0; i < entries.size(); ++i) {
        entries[i].uid -= i;
        entries[i].created = entries[i].created.addSecs(-1800 * i);
    }
    return entries;
}
} // namespace Samples
