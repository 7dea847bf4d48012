// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginbaseformviewer.h"

#include "core/provider.h"
#include "core/sessionmanager.h"
#include "guiclient/paydetailview.h"

namespace {
bool isGiven(const QObject *object, const char *signature)
{
    return object != nullptr && qstrlen(signature) > 0;
}

/// Nobody pays less than nothing: a sum below it, in large letters, would be taken for one to pay.
QString toPay(const QString &sumDue)
{
    return FixNumber(100, sumDue) < FixNumber() ? FixNumber().toString() : sumDue;
}
} // namespace

PluginBaseFormViewer::PluginBaseFormViewer(SessionManager *session, Provider *provider, const Currency &currency,
                                           const QString &messageType, QWidget *parent)
    : FormViewer(session, false, parent), m_provider(provider), m_currency(currency), m_messageType(messageType)
{}

PluginBaseFormViewer::~PluginBaseFormViewer() = default;

void PluginBaseFormViewer::setMessageReciever(QObject *receiver, const char *slot)
{
    disconnect(m_receiver);
    if (isGiven(receiver, slot))
        m_receiver = connect(this, SIGNAL(message(QString, QVariantMap)), receiver, slot);
}

void PluginBaseFormViewer::setMessageSender(QObject *sender, const char *signal)
{
    disconnect(m_sender);
    if (isGiven(sender, signal))
        m_sender = connect(sender, signal, this, SLOT(receiveMessage(QString, QVariantMap)));
}

void PluginBaseFormViewer::setInfo(const TrelmInfo &info)
{
    m_info = info;
    updateDetails();
}

PayDetailView *PluginBaseFormViewer::details() const
{
    return qobject_cast<PayDetailView *>(getUi(QLatin1String(PAY_DETAIL_VIEW)));
}

void PluginBaseFormViewer::showPayDetail()
{
    if (PayDetailView *view = details()) {
        fill(*view);
        showWidget(QLatin1String(PAY_DETAIL_VIEW));
        return;
    }
    auto *view = new PayDetailView;
    fill(*view);
    if (m_provider)
        connect(m_provider, &Provider::parametersChanged, view, [this] { updateDetails(); });
    addView(view, QLatin1String(PAY_DETAIL_VIEW));
}

void PluginBaseFormViewer::hidePayDetail()
{
    if (PayDetailView *view = details())
        view->hide();
}

void PluginBaseFormViewer::setPaidIn(const FixNumber &sum)
{
    m_paidIn = sum;
    if (PayDetailView *view = details())
        view->setPaidIn(withCurrency(sum.toString()));
}

QString PluginBaseFormViewer::withCurrency(const QString &amount) const
{
    return amount.isEmpty() ? amount : amount + QLatin1Char(' ') + m_currency.shortName;
}

void PluginBaseFormViewer::updateDetails()
{
    if (PayDetailView *view = details())
        fill(*view);
}

void PluginBaseFormViewer::fill(PayDetailView &view) const
{
    QString due;
    QList<ProviderParameter> others;
    const QList<ProviderParameter> parameters = m_provider ? m_provider->parameters() : QList<ProviderParameter>();
    for (const ProviderParameter &parameter : parameters) {
        if (parameter.name() == QLatin1String(SUM_DUE_PARAMETER))
            due = parameter.value();
        else
            others.append(parameter);
    }
    view.setSumDue(withCurrency(toPay(due)));
    view.setPaidIn(withCurrency(m_paidIn.toString()));
    view.setParameters(others);
    view.setPhone(m_info.phone);
}

void PluginBaseFormViewer::receiveMessage(const QString &type, const QVariantMap &message)
{
    if (type == m_messageType)
        Q_EMIT messageReceived(message);
}
