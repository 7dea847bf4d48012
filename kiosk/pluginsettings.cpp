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

QString PluginSettings::write(const QVariantMap &settings)
{
    return whyNotWritten([&settings] {
        TerminalAppSettings stored;
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting) {
            const QString text = setting.value().toString();
            const QString value = setting.key() == QLatin1String(PORT) ? QString::number(text.toUShort()) : text;
            stored.setPluginSettingsValue(QLatin1String(GROUP), setting.key(), value);
        }
    });
}

QString PluginSettings::whyNotWritten(const std::function<void()> &write)
{
    Q_UNUSED(TerminalAppSettings::takeWriteFailure());
    write();
    return TerminalAppSettings::takeWriteFailure() ? QStringLiteral("the settings cannot be written, see the log")
                                                   : QString();
}
} // namespace kiosk
