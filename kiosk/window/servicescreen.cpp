// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/servicescreen.h"

#include "guiclient/touchscrollarea.h"
#include "window/editornames.h"
#include "window/facts.h"
#include "window/ledgerlist.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QStackedWidget>

namespace kiosk {
namespace {
/// A page as high as it has to be, at the top of what it is shown in.
QWidget *atTop(QWidget *page)
{
    auto *holder = new QWidget;
    auto *layout = new QVBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(page);
    layout->addStretch(1);
    return holder;
}
} // namespace

ServiceScreen::ServiceScreen(QWidget *parent)
    : QWidget(parent), m_tabs(new QButtonGroup(this)), m_tabLayout(new QHBoxLayout), m_sections(new QStackedWidget),
      m_settings(new TouchScrollArea(new QWidget)), m_payments(new LedgerList), m_plugin(new Facts),
      m_status(Parts::label({}, "hint")), m_ledgerFault(Parts::label({}, "noticeDoubtful")),
      m_save(Parts::button(QStringLiteral("Сохранить"), "saveButton", "primary"))
{
    auto *plugin = new TouchScrollArea(atTop(m_plugin));
    for (TouchScrollArea *area : {m_settings, plugin})
        area->setFrameShape(QFrame::NoFrame);
    m_tabLayout->setSpacing(12);
    addSection(QStringLiteral("Настройки"), "settingsTab", m_settings);
    addSection(QStringLiteral("Платежи"), "paymentsTab", m_payments);
    addSection(QStringLiteral("Плагин"), "pluginTab", plugin);
    connect(m_tabs, &QButtonGroup::idClicked, this, [this](int id) { showSection(static_cast<Section>(id)); });

    m_status->setObjectName(QStringLiteral("serviceStatus"));
    m_ledgerFault->setObjectName(QStringLiteral("ledgerFault"));
    setLedgerFault({});
    QPushButton *close = Parts::button(QStringLiteral("Закрыть"), "closeButton", "secondary");
    connect(close, &QPushButton::clicked, this, &ServiceScreen::closeWanted);
    connect(m_save, &QPushButton::clicked, this, &ServiceScreen::saveWanted);
    auto *bar = new QFrame;
    bar->setObjectName(QStringLiteral("bottomBar"));
    auto *buttons = new QHBoxLayout(bar);
    buttons->setContentsMargins(32, 16, 32, 16);
    buttons->setSpacing(24);
    buttons->addWidget(close);
    buttons->addWidget(m_status, 1);
    buttons->addWidget(m_save);

    auto *content = new QVBoxLayout;
    content->setContentsMargins(32, 20, 32, 20);
    content->setSpacing(16);
    content->addLayout(m_tabLayout);
    content->addWidget(m_ledgerFault);
    content->addWidget(m_sections, 1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(content, 1);
    layout->addWidget(bar);
}

ServiceScreen::~ServiceScreen()
{
    leave();
}

void ServiceScreen::addSection(const QString &caption, const char *name, QWidget *page)
{
    QPushButton *tab = Parts::button(caption, name, "tab");
    tab->setCheckable(true);
    m_tabs->addButton(tab, m_sections->addWidget(page));
    m_tabLayout->addWidget(tab, 1);
}

void ServiceScreen::open(QWidget *page, const PluginIdentity &plugin, const QVector<LedgerEntry> &entries,
                         const Currency &currency)
{
    leave();
    m_page = page;
    if (page == nullptr)
        page = Parts::label(QStringLiteral("У плагина нет настроек."), "text");
    EditorNames::complete(*page);
    m_settings->setWidget(atTop(page));
    page->show();
    m_payments->setEntries(entries, currency);
    setIdentity(plugin);
    showSection(Section::Settings);
}

void ServiceScreen::setLedgerFault(const QString &reason)
{
    m_ledgerFault->setText(
        QStringLiteral("Журнал платежей недоступен: проверьте диск. Последние итоги могут быть ещё не записаны.\n") +
        reason);
    m_ledgerFault->setVisible(!reason.isEmpty());
}

void ServiceScreen::leave()
{
    // Without a parent it is hidden; the terminal deletes it.
    if (m_page)
        m_page->setParent(nullptr);
    m_page = nullptr;
}

void ServiceScreen::showSection(Section section)
{
    const int index = static_cast<int>(section);
    m_tabs->button(index)->setChecked(true);
    m_sections->setCurrentIndex(index);
    showSave();
    setStatus({}, "hint");
}

void ServiceScreen::showSave()
{
    // Elsewhere there is nothing to save.
    m_save->setVisible(m_sections->currentIndex() == static_cast<int>(Section::Settings) && m_page);
}

void ServiceScreen::setSaved()
{
    setStatus(QStringLiteral("Настройки сохранены."), "hint");
}

void ServiceScreen::setNotSaved()
{
    showSave();
    setStatus(m_page ? QStringLiteral("Не сохранено: файл настроек не записывается. Проверьте диск и права на файл.")
                     : QStringLiteral("Не сохранено: плагин закрыл страницу настроек. Закройте меню и откройте снова."),
              "outcomeBad");
}

void ServiceScreen::setStatus(const QString &text, const char *role)
{
    m_status->setText(text);
    Parts::setRole(*m_status, role);
}

void ServiceScreen::setIdentity(const PluginIdentity &plugin)
{
    m_plugin->clear();
    m_plugin->addHeading(plugin.description);
    m_plugin->addRow(QStringLiteral("Версия"), plugin.version);
    m_plugin->addRow(QStringLiteral("Сборка"), plugin.build);
    m_plugin->addRow(QStringLiteral("Номер"), QString::number(plugin.id));
    m_plugin->addRow(QStringLiteral("Обозначение"), plugin.stringId);
    m_plugin->addRow(QStringLiteral("Qt плагина / терминала"),
                     plugin.qtVersion + QStringLiteral(" / ") + QLatin1String(qVersion()));
    m_plugin->addBelow(QStringLiteral("Интерфейс"), plugin.interfaceId);
    m_plugin->addBelow(QStringLiteral("Файл"), plugin.path);
}
} // namespace kiosk
