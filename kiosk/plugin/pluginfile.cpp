// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugin/pluginfile.h"

#include "plugininterface/ipaybyprovider.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QVersionNumber>

namespace kiosk {
namespace {
/// The metadata has it as one number, a byte each: 0x050f00.
QString versionText(int number)
{
    constexpr int byte = 0xff;
    return QVersionNumber(number >> 16, number >> 8 & byte, number & byte).toString();
}
} // namespace

PluginIdentity PluginFile::describe(const QString &path)
{
    PluginIdentity identity;
    identity.path = path;
    if (path.isEmpty())
        return identity;
    const QJsonObject metaData = QPluginLoader(path).metaData();
    identity.interfaceId = metaData.value(QStringLiteral("IID")).toString();
    if (metaData.contains(QStringLiteral("version")))
        identity.qtVersion = versionText(metaData.value(QStringLiteral("version")).toInt());
    return identity;
}

QString PluginFile::mistake(const QString &path)
{
    if (QFileInfo(path).isDir())
        return QStringLiteral("В этой папке нет плагина с интерфейсом ") + QLatin1String(PAY_BY_PROVIDER_IID);
    if (!QFileInfo(path).isFile())
        return QStringLiteral("Нет такого файла плагина");
    const QString interfaceId = describe(path).interfaceId;
    if (interfaceId.isEmpty())
        return QStringLiteral("Файл не является плагином Qt");
    if (interfaceId != QLatin1String(PAY_BY_PROVIDER_IID))
        return QStringLiteral("Это плагин другого интерфейса; нужен ") + QLatin1String(PAY_BY_PROVIDER_IID);
    return {};
}

QString PluginFile::find(const QString &folder)
{
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &file : files) {
        const QString path = file.absoluteFilePath();
        if (QLibrary::isLibrary(path) && mistake(path).isEmpty())
            return path;
    }
    return QDir(folder).absolutePath();
}
} // namespace kiosk
