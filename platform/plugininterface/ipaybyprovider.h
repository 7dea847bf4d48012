// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"
#include "core/trelminfo.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QtPlugin>

struct Currency;
class IPayByProviderSettingsWidget;
class IPayWidget;
class PayPack;
class Provider;
class QObject;
class SessionManager;

/// How the terminal recognises a plugin of this interface, in the plugin's metadata.
#define PAY_BY_PROVIDER_IID "org.trelm.terminal.plugins.paybyprovider"

// Some operations take values where a reference would do: that is the interface.
// NOLINTBEGIN(performance-unnecessary-value-param)

/// What the terminal asks of a plugin that takes payments for providers of its own.
///
/// The order of the operations is binary interface: plugins built earlier rely on it. Everything is called on the GUI
/// thread.
class IPayByProvider
{
public:
    virtual ~IPayByProvider() = default;

    // Identity.
    [[nodiscard]] virtual QString pluginVersion() const = 0;
    /// When the plugin was built, ISO 8601 without a zone.
    [[nodiscard]] virtual QString pluginBuild() const = 0;
    /// Numbers of the providers that this plugin takes payments for.
    [[nodiscard]] virtual QSet<long long> supportedProviders() const = 0;

    // Where the plugin's form sends messages to and takes them from; called before start(). Both are signatures as
    // SIGNAL() and SLOT() make them. @return whether the plugin uses them.
    virtual bool setMessageReciever(QObject *receiver, const char *slot) = 0;
    virtual bool setMessageSender(QObject *sender, const char *signal) = 0;
    virtual void setTrelmInfo(const TrelmInfo &info) = 0;

    /// A customer chose the provider. Shows nothing yet.
    /// @return the payment form, owned by the plugin until stop(); null where there is none.
    virtual IPayWidget *start(Provider *provider, const Currency &currency, SessionManager *session) = 0;
    /// Whether a plugin that is in use already is started again for the next customer.
    virtual bool needRestartIfExists() = 0;

    // Which of the optional stages the plugin takes part in.
    virtual bool hasSettingsWidget() = 0;
    virtual bool needPaymentPredProcessing() = 0;
    virtual bool needPaymentPostProcessing() { return false; }
    virtual bool needPaymentPayCheck() { return false; }
    virtual bool needPaymentJsonPayCheck() { return false; }
    virtual bool needCloseCycleSummCheck() { return false; }
    virtual QList<QVariantMap> prepareCloseCycleSummCheck() { return {}; }
    virtual void startWaitPostProcessing(QVariant /*data*/) {}
    /// Called before the host commits a pack of payments; it may take its time. Whatever comes of it, the host commits.
    virtual void doPaymentPredProcessing(SessionManager *session, PayPack *pack) = 0;
    virtual bool doPaymentPayCheck(SessionManager * /*session*/, Payment /*payment*/, Provider * /*provider*/,
                                   QVariantMap /*data*/, QVariantMap * /*result*/)
    {
        return false;
    }
    virtual void sendPaymentJsonPayCheck(SessionManager * /*session*/, Payment /*payment*/, Provider * /*provider*/,
                                         QVariantMap * /*result*/)
    {}

    /// The plugin's page of settings. The host embeds it, tells it to save, and deletes it when the menu is left;
    /// stop() takes it away too.
    virtual IPayByProviderSettingsWidget *getSettingsWidget() = 0;
    /// The payment is over: the form is released.
    virtual void stop() = 0;
    /// The form is on the screen now: the plugin's first message may appear.
    virtual void showInitScreen() = 0;

    virtual QString pluginDescription() = 0;
    virtual QVariantMap pluginFormTemplates() = 0;
    virtual int pluginId() = 0;
    /// By it the host finds the plugin's resources.
    virtual QString pluginStringId() = 0;
    /// Types of the bus messages that the plugin wants to see.
    virtual QVariantList getStompFilters() = 0;

protected:
    IPayByProvider() = default;
    IPayByProvider(const IPayByProvider &) = default;
    IPayByProvider &operator=(const IPayByProvider &) = default;
};
// NOLINTEND(performance-unnecessary-value-param)

Q_DECLARE_INTERFACE(IPayByProvider, PAY_BY_PROVIDER_IID)
