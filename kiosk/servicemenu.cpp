// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "servicemenu.h"

#include "kiosklog.h"
#include "plugininterface/ipaybyprovider.h"
#include "plugininterface/ipaybyprovidersettingswidget.h"
#include "pluginsettings.h"

namespace kiosk {
ServiceMenu::~ServiceMenu()
{
    delete m_page;
}

void ServiceMenu::open(IPayByProvider *plugin)
{
    if (plugin == nullptr || !plugin->hasSettingsWidget())
        return;
    m_settings = plugin->getSettingsWidget();
    m_page = dynamic_cast<QWidget *>(m_settings);
    if (!m_page)
        qCWarning(KIOSK_LOG) << "the plugin's settings page is no widget";
}

QString ServiceMenu::save()
{
    if (!m_page)
        return QStringLiteral("the plugin has no settings page");
    // The page tells nothing of it.
    return PluginSettings::whyNotWritten([this] { m_settings->saveSettings(); });
}

void ServiceMenu::close()
{
    if (!m_page)
        return;
    m_page->hide();
    // Not at once: the button that closes the menu may be on the stack.
    m_page->deleteLater();
    m_page.clear();
}
} // namespace kiosk
