// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"
#include "extension/currency.h"
#include "guiclient/formviewer.h"
#include "guiclient/messagewidgetcontroller.h"
#include "guiclient/pluginbaseformviewer.h"
#include "guiclient/pluginproviderparameterinputcontroller.h"
#include "guiclient/pluginviewloadhelper.h"
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "parkomatcarddata.h"
#include "plugininterface/ipaybyprovider.h"

#include <QByteArray>
#include <QLoggingCategory>
#include <QObject>
#include <QPointer>
#include <QVariantMap>

class ParkomatAccessManager;
class ParkomatPluginSettingsWidget;

/// The plugin's own log category, "parkomat".
Q_DECLARE_LOGGING_CATEGORY(PARKOMAT_PLUGIN_LOG)

/// The plugin's root object: takes one customer at a time from the wait for a card to the registered payment.
///
/// The host drives it through IPayByProvider and through its slots, which it calls by name. Everything runs on the GUI
/// thread. Host objects are held weakly and may die at any moment: what is gone is left out. Without a form viewer
/// nothing is shown.
///
/// One handler keeps its first valid card for as long as it lives, and each start() leaves the cash service's client of
/// the payment before alive; docs/deliberate-behaviour.md says why these and other oddities stay.
class ParkomatPluginHandler : public QObject, public IPayByProvider
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID PAY_BY_PROVIDER_IID)
    Q_INTERFACES(IPayByProvider)

public:
    explicit ParkomatPluginHandler(QObject *parent = nullptr);
    ~ParkomatPluginHandler() override;

    [[nodiscard]] QString pluginVersion() const override;
    [[nodiscard]] QString pluginBuild() const override;
    [[nodiscard]] QSet<long long> supportedProviders() const override;
    bool setMessageReciever(QObject *receiver, const char *slot) override;
    bool setMessageSender(QObject *sender, const char *signal) override;
    void setTrelmInfo(const TrelmInfo &info) override;

    /// Shows nothing yet; see showInitScreen(). Each call connects the session's card commands once more.
    IPayWidget *start(Provider *provider, const Currency &currency, SessionManager *session) override;
    bool needRestartIfExists() override { return true; }
    bool hasSettingsWidget() override { return true; }
    bool needPaymentPredProcessing() override { return true; }

    /// Registers the payment with the cash service: posts one request for all of the pack's payments to this provider,
    /// and returns at the first of its polls, one a second, that finds an answer or the host's online-check time-out
    /// passed. Events are processed meanwhile. The outcome is not reported.
    /// @param session not used: the session that start() was given counts.
    void doPaymentPredProcessing(SessionManager *session, PayPack *pack) override;

    /// The page that still lives, else a new one without a parent.
    IPayByProviderSettingsWidget *getSettingsWidget() override;
    void stop() override;
    /// Asks for the parking card; one that the host left in the session's data under the provider's number counts at
    /// once.
    void showInitScreen() override;

    QString pluginDescription() override;
    QVariantMap pluginFormTemplates() override;
    int pluginId() override;
    QString pluginStringId() override;
    QVariantList getStompFilters() override;

    QVariantMap pluginFormTemplate(const QString &name, const QString &type);

    /// Null while no cancel question is up.
    [[nodiscard]] FormViewer *helperViewer() const;

    // The host calls these by name; their order is part of the meta-object.
public Q_SLOTS:
    QPointer<MessageWidgetController> loadPermitCancelMessagesView();
    QPointer<MessageWidgetController> loadHelperMessagesView();
    void hideHelperMessagesView();
    void cancelAcceptHandler();
    /// Lays the question whether to cancel over the form.
    void permitCancel();
    void permitCancelMessageResult(int exitCode);
    /// Takes the message off and tells the host that the payment is over.
    void exitFromMessage();
    void exitFromMessageCode(int code);
    /// Takes @a data as the card, unless a valid one is known already, and asks the cash service what is owed.
    /// @param command is not looked at.
    void newParcomatCardDataCommandHandler(QString command, QVariantMap data);
    void showCarNumberInputScreen();
    void showCardNumberInputScreen();
    void showCardUidInputScreen();
    void carNumberInputHandler(QString car);
    void cardNumberInputHandler(QString text);
    /// @param uid hexadecimal, highest byte first; what is missing to four bytes makes it 0.
    void cardUidInputHandler(QString uid);
    void parkomatAccessManagerErrorHandler(QVariantMap error);
    void waitCardMsgHandler(int code);
    void parkInfoPayResponseHandler(ParkInfoPayResponse response);
    void parkingCheckResponseHandler(ParkingCheckResponse response);

private:
    QPointer<MessageWidgetController> loadMessagesView();
    void releaseMessage(QPointer<MessageWidgetController> &controller);
    /// Brings up the viewer's view for messages, loaded from the session's project where it has none yet.
    void showMessagesView(FormViewer *viewer);
    /// @param backMethod of @a backReceiver, as SIGNAL() or SLOT() make it; @param nextSlot of this handler.
    void showInputScreen(const ProviderParameter &parameter, QObject *backReceiver, const char *backMethod,
                         const char *nextSlot);
    void createParkingAccessManager();
    void checkPluginViewLoadHelper();
    void sendParkingCheckRequest();
    void fillProviderParameters();

    QPointer<Provider> m_provider;
    QPointer<SessionManager> m_sessionManager;
    QPointer<FormViewer> m_helperViewer;
    QPointer<MessageWidgetController> m_helperMessageController;
    QPointer<QObject> m_messageSender;
    QByteArray m_messageSenderSignal;
    QPointer<QObject> m_messageReceiver;
    QByteArray m_messageReceiverSlot;
    QString m_projectDir;
    TrelmInfo m_trelmInfo;
    QPointer<PluginBaseFormViewer> m_formViewer;
    QPointer<MessageWidgetController> m_messageController;
    Currency m_currency;
    ParkingCheckResponse m_lastCheckResponse;
    QPointer<PluginViewLoadHelper> m_viewLoadHelper;
    QPointer<ParkomatAccessManager> m_accessManager;
    QPointer<ParkomatPluginSettingsWidget> m_settingsWidget;
    QPointer<PluginProviderParameterInputController> m_inputController;
    ParkomatCardData m_cardData;
    bool m_isPayResponseArrived = false;
    QVariantMap m_manualCard;
};
