// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"
#include "extension/currency.h"
#include "extension/fixnumber.h"
#include "guiclient/formviewer.h"
#include "plugininterface/ipaywidget.h"

class PayDetailView;
class Provider;

/// The payment form of a plugin: its views, and the payment's details.
///
/// Made by the plugin for each payment. The plugin calls the three signals directly, the host connects them by name;
/// the host also calls showPayDetail() and setPaidIn().
class PluginBaseFormViewer : public FormViewer, public IPayWidget
{
    Q_OBJECT

public:
    /// The name of the details among the views.
    static constexpr auto PAY_DETAIL_VIEW = "payDetailView";
    /// The parameter that holds the sum due.
    static constexpr auto SUM_DUE_PARAMETER = "SummToPay";

    /// @param provider whose parameters the details show; not owned, may be null.
    /// @param messageType which bus messages are this form's.
    PluginBaseFormViewer(SessionManager *session, Provider *provider, const Currency &currency,
                         const QString &messageType, QWidget *parent = nullptr);
    ~PluginBaseFormViewer() override;

    QWidget *widget() override { return this; }

    /// Connects message(QString, QVariantMap) to the receiver, in place of an earlier one.
    /// @param slot as SLOT() (or SIGNAL()) makes it; null or empty, or no receiver: only the earlier one is let go.
    void setMessageReciever(QObject *receiver, const char *slot);
    /// Connects the sender's signal to receiveMessage(QString, QVariantMap), in place of an earlier one.
    /// @param signal as SIGNAL() makes it; null or empty, or no sender: only the earlier one is let go.
    void setMessageSender(QObject *sender, const char *signal);
    void setInfo(const TrelmInfo &info);

    [[nodiscard]] QString messageType() const { return m_messageType; }
    [[nodiscard]] TrelmInfo info() const { return m_info; }
    [[nodiscard]] Currency currency() const { return m_currency; }

    /// What the customer has paid in so far, which the details show.
    [[nodiscard]] FixNumber paidIn() const { return m_paidIn; }

public Q_SLOTS:
    /// Puts the details up: the provider's parameters with their labels and values, the sum due, what has been paid in.
    /// They follow the provider's parameters while they are there. A sum due below zero is shown as zero.
    void showPayDetail();
    /// Takes the details down; another view that is up stays.
    void hidePayDetail();
    void setPaidIn(const FixNumber &sum);
    /// Called when a bus message arrives; those of this form's type are handed on with messageReceived().
    void receiveMessage(const QString &type, const QVariantMap &message);

Q_SIGNALS:
    /// The payment is over without money.
    void needCancel();
    /// The customer is still there: the host's inactivity timer starts again.
    void needTick();
    /// It is known what is owed: the host shows the details.
    void needShowPayDetail();

    /// The form has something for the bus.
    void message(const QString &type, const QVariantMap &message);
    void messageReceived(const QVariantMap &message);

private:
    [[nodiscard]] PayDetailView *details() const;
    void updateDetails();
    void fill(PayDetailView &view) const;
    [[nodiscard]] QString withCurrency(const QString &amount) const;

    QPointer<Provider> m_provider;
    Currency m_currency;
    QString m_messageType;
    TrelmInfo m_info;
    FixNumber m_paidIn;
    QMetaObject::Connection m_receiver;
    QMetaObject::Connection m_sender;
};
