// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "terminalinfo.h"

#include "core/terminalappsettings.h"

namespace kiosk {
TrelmInfo terminalInfo()
{
    const TerminalAppSettings settings;
    const auto text = [&settings](const char *key, const QString &unlessSet) {
        return settings.getPluginSettingsValue(QStringLiteral("TERMINAL"), QLatin1String(key), unlessSet);
    };
    TrelmInfo info;
    info.id = settings.trelmId();
    info.name = text("name", QStringLiteral("Терминал оплаты"));
    info.address = text("address", QString());
    info.phone = text("phone", QString());
    return info;
}
} // namespace kiosk
