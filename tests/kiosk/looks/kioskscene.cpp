// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/kioskscene.h"

#include "core/provider.h"
#include "core/terminalappsettings.h"
#include "guiclient/messagewidgetcontroller.h"
#include "guiclient/pluginbaseformviewer.h"
#include "guiclient/widgetnames.h"
#include "kiosk/looks/samples.h"
#include "pluginsettings.h"
#include "support/waiting.h"
#include "support/workdirectory.h"
#include "view/view.h"
#include "window/look.h"

#include <QAbstractButton>

#include <algorithm>

namespace {
void require(bool isSo, const char *what)
{
    if (!isSo)
        qFatal("the scene cannot be made: %s", what);
}

/// What the terminal is called.
void writeSettings()
{
    TerminalAppSettings settings;
    const TrelmInfo info = Samples::terminal();
    for (const auto &[key, value] : {std::pair("name", info.name), {"address", info.address}, {"phone", info.phone}})
        settings.setPluginSettingsValue(QStringLiteral("TERMINAL"), QLatin1String(key), value);
    Q_UNUSED(kiosk::PluginSettings::write({{QStringLiteral("TermId"), QStringLiteral("0042")}}));
}
} // namespace

KioskAtWork::KioskAtWork(const QString &pluginFile, const kiosk::TerminalOptions &options)
    : m_project(kiosk::Look::projectDir()), m_host(pluginFile),
      m_ledger(WorkDirectory::path() + QStringLiteral("/ledger.db"))
{
    writeSettings();
    m_host.load();
    require(m_host.root() != nullptr, "there is no plugin");
    kiosk::TerminalOptions withProject = options;
    withProject.project = &m_project;
    m_terminal = std::make_unique<kiosk::Terminal>(m_host, m_ledger, withProject);
}

KioskAtWork::~KioskAtWork()
{
    m_terminal.reset();
    deleteReleased();
}

KioskScene::KioskScene(const kiosk::TerminalOptions &options) : KioskScene(QStringLiteral(PLUGIN_FILE), options) {}

KioskScene::KioskScene(const QString &pluginFile, const kiosk::TerminalOptions &options)
    : KioskAtWork(pluginFile, options), KioskWindow(KioskAtWork::terminal())
{}

void KioskScene::plan(const char *what, const QVariant &value)
{
    QMetaObject::invokeMethod(plugin(), "forgetPlans");
    require(QMetaObject::invokeMethod(plugin(), "plan", Q_ARG(QString, QLatin1String(what)), Q_ARG(QVariant, value)),
            "the plugin takes no plans");
}

void KioskScene::touch(const char *name)
{
    // Hidden views have buttons of the same names.
    const auto buttons = findChildren<QAbstractButton *>(QLatin1String(name));
    const auto meant = std::find_if(buttons.begin(), buttons.end(), [this](const QAbstractButton *button) {
        return button->isVisibleTo(this) && button->isEnabled();
    });
    require(meant != buttons.end(), name);
    (*meant)->click();
}

void KioskScene::type(const QString &text)
{
    const QString mistake = kiosk::View(terminal(), *this).type(text);
    require(mistake.isEmpty(), qPrintable(mistake));
}

void KioskScene::readCard()
{
    require(m_service.listen(QHostAddress::LocalHost), "there is no port for the cash service");
    const QString unstored = kiosk::PluginSettings::write(
        {{QStringLiteral("csHost"), QStringLiteral("127.0.0.1")}, {QStringLiteral("csPort"), m_service.serverPort()}});
    require(unstored.isEmpty(), qPrintable(unstored));
    const QString refused = terminal().readCard({{QStringLiteral("id"), QStringLiteral("2018915346")},
                                                 {QStringLiteral("cardId"), QStringLiteral("000123456")},
                                                 {QStringLiteral("pdata"), QString(32, QLatin1Char('0'))}});
    require(refused.isEmpty(), qPrintable(refused));
}

void KioskScene::putIn(const char *note)
{
    const QString refused = terminal().takeCash(FixNumber(100, QLatin1String(note)));
    require(refused.isEmpty(), qPrintable(refused));
}

void KioskScene::showDetails(const QString &sumDue)
{
    const QHash<QString, QString> values = {{QStringLiteral("card_num"), QStringLiteral("000123456")},
                                            {QStringLiteral("SummToPay"), sumDue},
                                            {QStringLiteral("TermNo"), QStringLiteral("0042")},
                                            {QStringLiteral("ParkNumber"), QStringLiteral("12")},
                                            {QStringLiteral("StartDate"), QStringLiteral("2024-03-07")},
                                            {QStringLiteral("StartTime"), QStringLiteral("11:35:09")},
                                            {QStringLiteral("UIN"), QStringLiteral("P-78563412-20240307")}};
    auto *const provider = terminal().findChild<Provider *>();
    require(provider != nullptr, "nobody is paying");
    QList<ProviderParameter> parameters = provider->parameters();
    for (ProviderParameter &parameter : parameters)
        parameter.setValue(values.value(parameter.name()));
    provider->setParameters(parameters);
    QMetaObject::invokeMethod(terminal().formWidget(), "needShowPayDetail");
    require(terminal().screen() == kiosk::Terminal::Screen::Details, "there are no details");
}

void KioskScene::fail(const QString &text)
{
    const QVariantMap error = {{QStringLiteral("errorMessage"), text}};
    require(QMetaObject::invokeMethod(plugin(), "parkomatAccessManagerErrorHandler", Q_ARG(QVariantMap, error)),
            "the plugin takes no error");
}

void KioskScene::beginCommit()
{
    touch("payButton");
    require(terminal().isCommitting(), "there is no commit");
    // The plugin would hold it in an event loop of its own until an answer is there.
    QCoreApplication::removePostedEvents(&terminal(), QEvent::MetaCall);
    auto *const form = qobject_cast<FormViewer *>(terminal().formWidget());
    const QString name = QStringLiteral("messagesView");
    require(form->loadFromFile(kiosk::Look::projectDir() + QLatin1Char('/') + WidgetNames().messageViewFileName(), name,
                               {}),
            "the project has no message view");
    auto *const message = new MessageWidgetController(plugin());
    message->setUi(form->getUi(name));
    message->initMessageSingleSignalMode(QStringLiteral("Выполняется подтверждение операции..."), 30,
                                         MessageWidgetController::Wait);
}

void KioskScene::takeMessageOff()
{
    qDeleteAll(plugin()->findChildren<MessageWidgetController *>());
}
