// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/brokenscreen.h"

#include "plugininterface/ipaybyprovider.h"
#include "window/facts.h"
#include "window/outcometext.h"
#include "window/statusicon.h"
#include "window/turningbox.h"

#include <QHBoxLayout>

namespace kiosk {
namespace {
QString orUnknown(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("неизвестно") : text;
}
} // namespace

BrokenScreen::BrokenScreen(QWidget *parent)
    : QWidget(parent), m_advice(Parts::label({}, "textStrong")), m_facts(new Facts)
{
    m_advice->setObjectName(QStringLiteral("brokenAdvice"));
    auto *heading = new QHBoxLayout;
    heading->setSpacing(24);
    heading->addWidget(new StatusIcon(StatusIcon::Kind::Bad));
    heading->addWidget(Parts::label(QStringLiteral("Терминал не работает"), "title"), 1);
    auto *customer = new QVBoxLayout;
    customer->setSpacing(20);
    customer->addWidget(Parts::label(QStringLiteral("Оплатить парковку здесь сейчас нельзя."), "text"));
    customer->addWidget(m_advice);
    customer->addStretch(1);
    auto *engineer = new QVBoxLayout;
    engineer->addWidget(m_facts);
    engineer->addStretch(1);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(56, 24, 56, 24);
    layout->setSpacing(20);
    layout->addStretch(1);
    layout->addLayout(heading);
    layout->addWidget(new TurningBox(customer, 1, engineer, 2));
    layout->addStretch(2);
}

void BrokenScreen::setPluginFailure(const QString &reason, const PluginIdentity &plugin, const TrelmInfo &terminal)
{
    begin(terminal);
    m_facts->addBelow(QStringLiteral("Плагин не загружен"), reason);
    m_facts->addBelow(QStringLiteral("Файл"), orUnknown(plugin.path));
    m_facts->addBelow(QStringLiteral("Интерфейс плагина"), orUnknown(plugin.interfaceId));
    m_facts->addBelow(QStringLiteral("Нужен интерфейс"), QStringLiteral(PAY_BY_PROVIDER_IID));
    m_facts->addBelow(QStringLiteral("Qt плагина / терминала"),
                      orUnknown(plugin.qtVersion) + QStringLiteral(" / ") + QLatin1String(qVersion()));
}

void BrokenScreen::setLedgerFailure(const QString &reason, const QString &path, const TrelmInfo &terminal)
{
    begin(terminal);
    m_facts->addBelow(QStringLiteral("Журнал платежей не открывается"), reason);
    m_facts->addBelow(QStringLiteral("Файл"), path);
    m_facts->addBelow(
        QStringLiteral("Что делать"),
        QStringLiteral("Освободите место на диске, проверьте права на файл. Если он повреждён, сохраните все "
                       "файлы, чьё имя начинается так же, и уберите их из папки. Терминал пробует снова сам."));
}

void BrokenScreen::begin(const TrelmInfo &terminal)
{
    const QString advice = OutcomeText::call(terminal.phone);
    m_advice->setText(advice.left(1).toUpper() + advice.mid(1));
    m_facts->clear();
    m_facts->addHeading(QStringLiteral("Для сервисного инженера"));
}
} // namespace kiosk
