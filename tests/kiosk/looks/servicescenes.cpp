// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/servicescenes.h"

#include "kiosk/looks/kioskscene.h"
#include "kiosk/looks/samples.h"
#include "plugin/pluginfile.h"
#include "window/brokenscreen.h"
#include "window/screens.h"
#include "window/servicescreen.h"
#include "window/startwindow.h"

namespace ServiceScenes {
namespace {
using kiosk::Screens;
using kiosk::ServiceScreen;

std::unique_ptr<Screens> menuAt(ServiceScreen::Section section, const QVector<kiosk::LedgerEntry> &entries)
{
    auto window = std::make_unique<Screens>(Samples::terminal());
    window->service().open(nullptr, Samples::plugin(), entries, {});
    window->service().showSection(section);
    window->showScreen(window->service());
    return window;
}

std::unique_ptr<KioskScene> opened(std::unique_ptr<KioskScene> window)
{
    window->terminal().openService();
    return window;
}

std::unique_ptr<QWidget> brokenBy(const QString &reason, const kiosk::PluginIdentity &plugin)
{
    auto window = std::make_unique<Screens>(Samples::terminal());
    window->broken().setPluginFailure(reason, plugin, Samples::terminal());
    window->showScreen(window->broken());
    return window;
}
} // namespace

std::unique_ptr<QWidget> settings()
{
    auto window = opened(std::make_unique<KioskScene>());
    window->touch("saveButton");
    return window;
}

std::unique_ptr<QWidget> settingsNone()
{
    auto window = std::make_unique<KioskScene>(QStringLiteral(FAKE_PLUGIN_FILE));
    window->plan("settings", QStringLiteral("none"));
    return opened(std::move(window));
}

std::unique_ptr<QWidget> settingsNotSaved()
{
    auto window = opened(std::make_unique<KioskScene>());
    delete window->terminal().settingsPage();
    window->touch("saveButton");
    return window;
}

std::unique_ptr<QWidget> payments()
{
    return menuAt(ServiceScreen::Section::Payments, Samples::ledger());
}

std::unique_ptr<QWidget> paymentsNone()
{
    return menuAt(ServiceScreen::Section::Payments, {});
}

std::unique_ptr<QWidget> ledgerFault()
{
    auto window = menuAt(ServiceScreen::Section::Payments, Samples::ledger());
    window->service().setLedgerFault(
        QStringLiteral("the ledger: COMMIT: database or disk is full Unable to fetch row"));
    return window;
}

std::unique_ptr<QWidget> plugin()
{
    return menuAt(ServiceScreen::Section::Plugin, {});
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

std::unique_ptr<QWidget> brokenLedger()
{
    auto window = std::make_unique<kiosk::StartWindow>(Samples::terminal());
    const QString path = QStringLiteral("/var/lib/payment-terminal/kiosk.db");
    window->showLedgerFailure(
        QStringLiteral("the ledger: %1: unable to open database file Error opening database").arg(path), path);
    return window;
}
} // namespace ServiceScenes
