// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginbaseformviewer.h"

#include "core/provider.h"
#include "core/sessionmanager.h"

PluginBaseFormViewer::PluginBaseFormViewer(SessionManager *session, Provider *provider, const Currency &currency,
                                           const QString &messageType, QWidget *parent)
    : FormViewer(session, false, parent), m_provider(provider), m_currency(currency), m_messageType(messageType)
{}

PluginBaseFormViewer::~PluginBaseFormViewer() = default;

void PluginBaseFormViewer::setMessageReciever(QObject * /*receiver*/, const char * /*slot*/) {}

void PluginBaseFormViewer::setMessageSender(QObject * /*sender*/, const char * /*signal*/) {}

void PluginBaseFormViewer::setInfo(const TrelmInfo &info)
{
    m_info = info;
}

void PluginBaseFormViewer::showPayDetail()
{
    const QString name = QString::fromLatin1(PAY_DETAIL_VIEW);
    if (getUi(name) == nullptr)
        addView(new QWidget, name);
    showWidget(name);
}

void PluginBaseFormViewer::hidePayDetail()
{
    if (currentView() == QLatin1String(PAY_DETAIL_VIEW))
        getUi(currentView())->hide();
}

void PluginBaseFormViewer::setPaidIn(const FixNumber &sum)
{
    m_paidIn = sum;
}

void PluginBaseFormViewer::receiveMessage(const QString &type, const QVariantMap &message)
{
    if (type == m_messageType)
        Q_EMIT messageReceived(message);
}
