// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "pluginsettings.h"

#include "core/terminalappsettings.h"

namespace kiosk {
namespace {
const char GROUP[] = "PARKOMAT_PLUGIN";
const char PORT[] = "csPort";

/// The page's number field takes no others.
bool isPort(const QString &value)
{
    bool isNumber = false;
    value.toUShort(&isNumber);
    return isNumber;
}
} // namespace

QStringList PluginSettings::keys()
{
    return {QStringLiteral("csHost"),    QString::fromLatin1(PORT),   QStringLiteral("csPath"),
            QStringLiteral("PartnerId"), QStringLiteral("ParkingId"), QStringLiteral("TermId")};
}

QString PluginSettings::mistake(const QString &key, const QString &value)
{
    if (!keys().contains(key))
        return QStringLiteral("there is no setting \"%1\"; the settings are %2")
            .arg(key, keys().join(QStringLiteral(", ")));
    if (key == QLatin1String(PORT) && !isPort(value))
        return QStringLiteral("\"%1\" is no port; write a number from 0 to 65535").arg(value);
    return {};
}

void PluginSettings::write(const QVariantMap &settings)
{
    TerminalAppSettings stored;
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting) {
        const QString text = setting.value().toString();
        stored.setPluginSettingsValue(QLatin1String(GROUP), setting.key(),
                                      setting.key() == QLatin1String(PORT) ? QString::number(text.toUShort()) : text);
    }
}
} // namespace kiosk
