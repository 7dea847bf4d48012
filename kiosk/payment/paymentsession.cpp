// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/paymentsession.h"

#include "extension/fixnumber.h"
#include "guiclient/pluginbaseformviewer.h"
#include "kiosklog.h"
#include "payee.h"
#include "plugininterface/ipaybyprovider.h"
#include "plugininterface/ipaywidget.h"

#include <QAbstractButton>

#include <algorithm>

namespace kiosk {
namespace {
template <typename Part>
bool hasVisible(const QWidget &form, const QString &name = {})
{
    const auto parts = form.findChildren<Part *>(name);
    return std::any_of(parts.begin(), parts.end(), [](const Part *part) { return part->isVisible(); });
}
} // namespace

PaymentSession::PaymentSession(FormProject *project, QObject *parent)
    : QObject(parent), m_session(project), m_provider(Payee::makeProvider(this))
{}

void PaymentSession::leaveCard(const QVariantMap &card)
{
    QVariantMap data = m_session.pluginsData();
    data.insert(QString::number(Payee::PROVIDER_ID), card);
    m_session.setPluginsData(data);
}

bool PaymentSession::start(IPayByProvider &plugin, const Currency &currency)
{
    IPayWidget *const payWidget = plugin.start(m_provider, currency, &m_session);
    m_form = payWidget != nullptr ? payWidget->widget() : nullptr;
    if (!m_form)
        return false;
    connect(m_form, SIGNAL(needCancel()), this, SIGNAL(cancelNeeded()), Qt::QueuedConnection);
    connect(m_form, SIGNAL(needTick()), this, SIGNAL(ticked()));
    connect(m_form, SIGNAL(needShowPayDetail()), this, SIGNAL(detailsNeeded()));
    return true;
}

void PaymentSession::readCard(const QVariantMap &card)
{
    Q_EMIT m_session.newParcomatCardDataCommand(QStringLiteral("newParcomatCardDataCommand"), card);
}

void PaymentSession::showDetails(const FixNumber &paidIn)
{
    showPaidIn(paidIn);
    if (auto *const form = qobject_cast<PluginBaseFormViewer *>(m_form))
        form->showPayDetail();
    else
        qCWarning(KIOSK_LOG) << "the plugin's form has no details to show";
}

void PaymentSession::showPaidIn(const FixNumber &paidIn)
{
    if (auto *const form = qobject_cast<PluginBaseFormViewer *>(m_form))
        form->setPaidIn(paidIn);
}

bool PaymentSession::isDetailsUp() const
{
    const auto *const form = qobject_cast<PluginBaseFormViewer *>(m_form);
    if (form == nullptr || form->currentView() != QLatin1String(PluginBaseFormViewer::PAY_DETAIL_VIEW))
        return false;
    return !hasVisible<FormViewer>(*form);
}

bool PaymentSession::isWaiting() const
{
    return m_form && hasVisible<QWidget>(*m_form, QStringLiteral("messageText")) &&
           !hasVisible<QAbstractButton>(*m_form);
}
} // namespace kiosk
