// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugin/pluginhost.h"

#include "kiosklog.h"
#include "payee.h"
#include "plugin/pluginfile.h"
#include "plugin/pluginprobe.h"
#include "plugininterface/ipaybyprovider.h"

namespace kiosk {
PluginHost::PluginHost(const QString &path, QObject *parent)
    : QObject(parent), m_loader(path), m_identity(PluginFile::describe(path)),
      m_brokenReason(QStringLiteral("Плагин не загружен"))
{}

PluginHost::~PluginHost()
{
    delete m_root;
}

void PluginHost::load(const PluginProbe &probe)
{
    setBrokenReason(PluginFile::mistake(m_identity.path));
    if (m_brokenReason.isEmpty())
        setBrokenReason(probe.run(m_identity.path));
    if (m_brokenReason.isEmpty())
        load();
}

void PluginHost::load()
{
    setBrokenReason(PluginFile::mistake(m_identity.path));
    if (m_brokenReason.isEmpty())
        takeInstance();
    IPayByProvider *const loaded = plugin();
    if (loaded == nullptr)
        return;
    m_identity.description = loaded->pluginDescription();
    m_identity.version = loaded->pluginVersion();
    m_identity.build = loaded->pluginBuild();
    m_identity.id = loaded->pluginId();
    m_identity.stringId = loaded->pluginStringId();
}

IPayByProvider *PluginHost::plugin() const
{
    return qobject_cast<IPayByProvider *>(m_root);
}

void PluginHost::renew()
{
    if (m_isRenewing)
        return;
    m_isRenewing = true;
    // Queued: the object's children go after the signal, and the fresh one is not to meet them.
    const auto takeFresh = [this] {
        m_isRenewing = false;
        takeInstance();
        Q_EMIT renewed();
    };
    if (!m_root) {
        QMetaObject::invokeMethod(this, takeFresh, Qt::QueuedConnection);
        return;
    }
    connect(m_root, &QObject::destroyed, this, takeFresh, Qt::QueuedConnection);
    m_root->deleteLater();
    m_root.clear();
}

void PluginHost::takeInstance()
{
    m_isAwaitingLateAnswer = false;
    QObject *const root = m_loader.instance();
    const auto *const plugin = qobject_cast<IPayByProvider *>(root);
    if (root == nullptr)
        setBrokenReason(QStringLiteral("Плагин не загружается: ") + m_loader.errorString());
    else if (plugin == nullptr)
        setBrokenReason(QStringLiteral("Объект плагина не отвечает за интерфейс ") +
                        QLatin1String(PAY_BY_PROVIDER_IID));
    else if (!plugin->supportedProviders().contains(Payee::PROVIDER_ID))
        setBrokenReason(QStringLiteral("Плагин не принимает платежи получателя %1").arg(Payee::PROVIDER_ID));
    else
        m_root = root;
}

void PluginHost::setBrokenReason(const QString &reason)
{
    m_brokenReason = reason;
    if (!reason.isEmpty())
        qCCritical(KIOSK_LOG).noquote() << "no plugin:" << m_identity.path << reason;
}
} // namespace kiosk
