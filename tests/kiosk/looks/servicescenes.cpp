// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/servicescenes.h"

#include "kiosk/looks/samples.h"
#include "plugin/pluginfile.h"
#include "plugin/pluginhost.h"
#include "pluginsettings.h"
#include "servicemenu.h"
#include "window/brokenscreen.h"
#include "window/screens.h"
#include "window/servicescreen.h"

namespace ServiceScenes {
namespace {
using kiosk::Screens;
using kiosk::ServiceScreen;

/// The parking plugin, loaded once: its library stays.
kiosk::PluginHost &parkingPlugin()
{
    static kiosk::PluginHost host(QStringLiteral(PLUGIN_FILE));
    if (host.plugin() == nullptr)
        host.load();
    return host;
}

/// The window, with the plugin's page that it only borrows.
class ServiceScene : public Screens
{
public:
    explicit ServiceScene(ServiceScreen::Section section,
                          const QVector<kiosk::LedgerEntry> &entries = Samples::ledger())
        : Screens(Samples::terminal())
    {
        kiosk::PluginSettings::write({{QStringLiteral("TermId"), QStringLiteral("0042")}});
        m_menu.open(parkingPlugin().plugin());
        service().open(m_menu.page(), Samples::plugin(), entries, {});
        service().showSection(section);
        showScreen(service());
    }
    ~ServiceScene() override { service().leave(); }

private:
    kiosk::ServiceMenu m_menu;
};

std::unique_ptr<QWidget> brokenBy(const QString &reason, const kiosk::PluginIdentity &plugin)
{
    auto window = std::make_unique<Screens>(Samples::terminal());
    window->broken().setFailure(reason, plugin, Samples::terminal());
    window->showScreen(window->broken());
    return window;
}
} // namespace

std::unique_ptr<QWidget> settings()
{
    auto window = std::make_unique<ServiceScene>(ServiceScreen::Section::Settings);
    window->service().setStatus(QStringLiteral("Настройки сохранены."));
    return window;
}

std::unique_ptr<QWidget> payments()
{
    return std::make_unique<ServiceScene>(ServiceScreen::Section::Payments);
}

std::unique_ptr<QWidget> paymentsNone()
{
    return std::make_unique<ServiceScene>(ServiceScreen::Section::Payments, QVector<kiosk::LedgerEntry>());
}

std::unique_ptr<QWidget> ledgerFault()
{
    auto window = std::make_unique<ServiceScene>(ServiceScreen::Section::Payments);
    window->service().setLedgerFault(
        QStringLiteral("the ledger: COMMIT: database or disk is full Unable to fetch row"));
    return window;
}

std::unique_ptr<QWidget> plugin()
{
    return std::make_unique<ServiceScene>(ServiceScreen::Section::Plugin);
}

std::unique_ptr<QWidget> broken()
{
    kiosk::PluginIdentity identity = kiosk::PluginFile::describe(QStringLiteral(OTHER_PLUGIN_FILE));
    // Not of this machine: the picture is everybody's.
    identity.path = Samples::plugin().path;
    identity.qtVersion = QStringLiteral("5.11.3");
    return brokenBy(kiosk::PluginFile::mistake(QStringLiteral(OTHER_PLUGIN_FILE)), identity);
}

std::unique_ptr<QWidget> brokenLibrary()
{
    const kiosk::PluginIdentity identity = Samples::plugin();
    return brokenBy(
        QStringLiteral("Плагин не загружается: Cannot load library %1: (libTerminalPlatformCore.so.1: cannot "
                       "open shared object file: No such file or directory)")
            .arg(identity.path),
        identity);
}
} // namespace ServiceScenes
