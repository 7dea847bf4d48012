// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatpluginhandler.h"

#include "bus/logger.h"
#include "bus/logvariant.h"
#include "cardinputs.h"
#include "core/paypack.h"
#include "core/provider.h"
#include "core/sessionmanager.h"
#include "core/terminalappsettings.h"
#include "guiclient/formproject.h"
#include "guiclient/widgetnames.h"
#include "mergedpayment.h"
#include "parkinfopayrequest.h"
#include "parkingcharge.h"
#include "parkingcheckrequest.h"
#include "parkomataccessmanager.h"
#include "parkomatlog.h"
#include "parkomatpluginsettingswidget.h"
#include "payresponsewait.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTimer>

namespace {
constexpr long long PROVIDER_ID = 18156;

/// When this file was compiled; the compiler pads the day with a blank.
QString buildMoment()
{
    const QString text = QStringLiteral("%1 %2").arg(QLatin1String(__DATE__), QLatin1String(__TIME__)).simplified();
    return QLocale(QStringLiteral("en")).toDateTime(text, QStringLiteral("MMM d yyyy hh:mm:ss")).toString(Qt::ISODate);
}

// Built in this order when the library is loaded. The message type and the string identifier below name another plugin
// of the family on purpose: the host routes the bus's messages and loads resources by them.
const QSet<long long> SUPPORTED_PROVIDERS = {PROVIDER_ID};
const QString pluginMessageType = QStringLiteral("tarvSchoolCardPluginRequest");
const QString PARKOMAT_PLUGIN_VERSION = QStringLiteral("5.0.10");
const QString PARKOMAT_PLUGIN_BUILD = buildMoment();

const char PLUGIN_STRING_ID[] = "tarvSchoolCardPlugin";
constexpr int PLUGIN_ID = 2023;

// The form viewers' name for the view that shows messages.
const char MESSAGES_VIEW[] = "messagesView";

// Seconds that a message stays up before it closes by itself.
constexpr int WAIT_CARD_SECONDS = 30;
constexpr int CANCEL_QUESTION_SECONDS = 15;
constexpr int CONFIRMATION_SECONDS = 30;

// Milliseconds.
constexpr int DETAILS_DELAY = 2000;

template <typename Object>
void release(QPointer<Object> &object)
{
    if (!object)
        return;
    object->deleteLater();
    object.clear();
}

template <typename Widget>
void hideAndRelease(QPointer<Widget> &widget)
{
    if (widget)
        widget->hide();
    release(widget);
}
} // namespace

Q_LOGGING_CATEGORY(PARKOMAT_PLUGIN_LOG, "parkomat")

// The slots take values: their signatures stand in the context of their log lines.
// NOLINTBEGIN(performance-unnecessary-value-param)

ParkomatPluginHandler::ParkomatPluginHandler(QObject *parent) : QObject(parent)
{
    qCDebug(PARKOMAT_PLUGIN_LOG).noquote() << "NALOG_CONSTRUCTOR";
}

ParkomatPluginHandler::~ParkomatPluginHandler()
{
    qCDebug(DEFAULT_LOG).noquote() << "ParkomatPluginHandler plugin destructor";
    qCDebug(PARKOMAT_PLUGIN_LOG).noquote() << "NALOG_DESTRUCTOR";
}

// Identity

QString ParkomatPluginHandler::pluginVersion() const
{
    return PARKOMAT_PLUGIN_VERSION;
}

QString ParkomatPluginHandler::pluginBuild() const
{
    return PARKOMAT_PLUGIN_BUILD;
}

QSet<long long> ParkomatPluginHandler::supportedProviders() const
{
    return SUPPORTED_PROVIDERS;
}

QString ParkomatPluginHandler::pluginDescription()
{
    return QStringLiteral("Плагин паркомата");
}

QVariantMap ParkomatPluginHandler::pluginFormTemplates()
{
    return {};
}

QVariantMap ParkomatPluginHandler::pluginFormTemplate(const QString & /*name*/, const QString & /*type*/)
{
    return {};
}

int ParkomatPluginHandler::pluginId()
{
    return PLUGIN_ID;
}

QString ParkomatPluginHandler::pluginStringId()
{
    return QLatin1String(PLUGIN_STRING_ID);
}

QVariantList ParkomatPluginHandler::getStompFilters()
{
    return {pluginMessageType};
}

// What the host hands over

bool ParkomatPluginHandler::setMessageReciever(QObject *receiver, const char *slot)
{
    m_messageReceiver = receiver;
    m_messageReceiverSlot = slot;
    return true;
}

bool ParkomatPluginHandler::setMessageSender(QObject *sender, const char *signal)
{
    m_messageSender = sender;
    m_messageSenderSignal = signal;
    return true;
}

void ParkomatPluginHandler::setTrelmInfo(const TrelmInfo &info)
{
    m_trelmInfo = info;
}

IPayByProviderSettingsWidget *ParkomatPluginHandler::getSettingsWidget()
{
    if (!m_settingsWidget)
        m_settingsWidget = new ParkomatPluginSettingsWidget;
    return m_settingsWidget;
}

// Start and stop

IPayWidget *ParkomatPluginHandler::start(Provider *provider, const Currency &currency, SessionManager *session)
{
    m_currency = currency;
    // Each payment gets a client of its own. The last one stays alive, a child of the handler: its answer may be late.
    m_accessManager.clear();
    m_sessionManager = session;
    // Connected again on every start and never undone, so that a command comes once for each start on this session.
    if (session != nullptr)
        connect(session, SIGNAL(newParcomatCardDataCommand(QString, QVariantMap)), this,
                SLOT(newParcomatCardDataCommandHandler(QString, QVariantMap)));
    m_provider = provider;
    const FormProject *project = session != nullptr ? session->activeProject() : nullptr;
    m_projectDir = project != nullptr ? project->projectDir() : QString();
    if (!m_formViewer) {
        m_formViewer = new PluginBaseFormViewer(session, provider, currency, pluginMessageType);
        m_formViewer->setMessageReciever(m_messageReceiver, m_messageReceiverSlot.constData());
        m_formViewer->setMessageSender(m_messageSender, m_messageSenderSignal.constData());
        m_formViewer->setInfo(m_trelmInfo);
    }
    qCDebug(PARKOMAT_PLUGIN_LOG).noquote() << "NALOG_PLUGIN_STARTED";
    checkPluginViewLoadHelper();
    return m_formViewer;
}

void ParkomatPluginHandler::stop()
{
    // Message, input screen, client and card stay: what they still have to say finds no form.
    hideAndRelease(m_helperViewer);
    releaseMessage(m_helperMessageController);
    hideAndRelease(m_formViewer);
    hideAndRelease(m_settingsWidget);
}

void ParkomatPluginHandler::checkPluginViewLoadHelper()
{
    // It belongs to the handler: a later payment's folder and form change nothing.
    if (m_viewLoadHelper)
        return;
    m_viewLoadHelper = new PluginViewLoadHelper(pluginId(), pluginStringId(), m_projectDir, m_formViewer);
    m_viewLoadHelper->setParent(this);
}

void ParkomatPluginHandler::createParkingAccessManager()
{
    if (m_accessManager)
        return;
    m_accessManager = new ParkomatAccessManager(this);
    connect(m_accessManager, SIGNAL(error(QVariantMap)), this, SLOT(parkomatAccessManagerErrorHandler(QVariantMap)));
    connect(m_accessManager, SIGNAL(parkingCheckResponse(ParkingCheckResponse)), this,
            SLOT(parkingCheckResponseHandler(ParkingCheckResponse)));
    connect(m_accessManager, SIGNAL(parkInfoPayResponse(ParkInfoPayResponse)), this,
            SLOT(parkInfoPayResponseHandler(ParkInfoPayResponse)));
}

// Message views

void ParkomatPluginHandler::releaseMessage(QPointer<MessageWidgetController> &controller)
{
    // One that is released inside a nested event loop lives on until that loop has ended: it has nothing more to say.
    if (controller) {
        controller->disconnect(this);
        if (m_formViewer) // no receiver at all would be everybody's
            controller->disconnect(m_formViewer);
    }
    release(controller);
}

void ParkomatPluginHandler::showMessagesView(FormViewer *viewer)
{
    const QString name = QLatin1String(MESSAGES_VIEW);
    if (viewer->getUi(name) != nullptr) {
        viewer->showWidget(name);
        return;
    }
    if (!m_sessionManager || m_sessionManager->activeProject() == nullptr)
        return;
    const QString path = QDir::fromNativeSeparators(m_projectDir + QDir::separator() +
                                                    WidgetNames(false, nullptr).messageViewFileName());
    if (QFile::exists(path))
        viewer->loadFromFile(path, name, {});
}

QPointer<MessageWidgetController> ParkomatPluginHandler::loadMessagesView()
{
    releaseMessage(m_messageController);
    if (m_formViewer)
        showMessagesView(m_formViewer);
    m_messageController = new MessageWidgetController(this);
    m_messageController->setUi(m_formViewer ? m_formViewer->getUi(QLatin1String(MESSAGES_VIEW)) : nullptr);
    return m_messageController;
}

QPointer<MessageWidgetController> ParkomatPluginHandler::loadHelperMessagesView()
{
    if (!m_helperViewer && m_formViewer)
        m_helperViewer = new FormViewer(m_sessionManager, false, m_formViewer);
    releaseMessage(m_helperMessageController);
    if (m_helperViewer)
        showMessagesView(m_helperViewer);
    m_helperMessageController = new MessageWidgetController(this);
    m_helperMessageController->setUi(m_helperViewer ? m_helperViewer->getUi(QLatin1String(MESSAGES_VIEW)) : nullptr);
    return m_helperMessageController;
}

void ParkomatPluginHandler::hideHelperMessagesView()
{
    releaseMessage(m_helperMessageController);
    if (!m_helperViewer)
        return;
    m_helperViewer->hide();
    // It dies with the form viewer, its parent.
    m_helperViewer.clear();
}

FormViewer *ParkomatPluginHandler::helperViewer() const
{
    return m_helperViewer;
}

// Cancelling

QPointer<MessageWidgetController> ParkomatPluginHandler::loadPermitCancelMessagesView()
{
    QPointer<MessageWidgetController> controller = loadHelperMessagesView();
    controller->initMessage(QStringLiteral("Все данные будут потеряны. Продолжить отмену платежа?"),
                            CANCEL_QUESTION_SECONDS, MessageWidgetController::YesNo);
    return controller;
}

void ParkomatPluginHandler::permitCancel()
{
    const QPointer<MessageWidgetController> controller = loadPermitCancelMessagesView();
    if (!m_helperViewer || !controller)
        return;
    connect(controller, SIGNAL(finish(int)), this, SLOT(permitCancelMessageResult(int)));
    m_helperViewer->show();
}

void ParkomatPluginHandler::permitCancelMessageResult(int exitCode)
{
    if (exitCode == MessageWidgetController::Yes)
        cancelAcceptHandler();
    else
        hideHelperMessagesView();
}

void ParkomatPluginHandler::cancelAcceptHandler()
{
    hideHelperMessagesView();
    if (m_formViewer)
        Q_EMIT m_formViewer->needCancel();
}

void ParkomatPluginHandler::exitFromMessage()
{
    releaseMessage(m_messageController);
    if (m_formViewer)
        Q_EMIT m_formViewer->needCancel();
}

void ParkomatPluginHandler::exitFromMessageCode(int /*code*/)
{
    exitFromMessage();
}

// Card acquisition

void ParkomatPluginHandler::showInitScreen()
{
    const QPointer<MessageWidgetController> controller = loadMessagesView();
    controller->initMessageSingleSignalMode(QStringLiteral("Приложите парковочную карту"), WAIT_CARD_SECONDS,
                                            MessageWidgetController::Prompt);
    controller->setOkCaption(QStringLiteral("Ввести\nвручную"));
    connect(controller, SIGNAL(finish(int)), this, SLOT(waitCardMsgHandler(int)));

    if (!m_sessionManager)
        return;
    const QString key = QString::number(PROVIDER_ID);
    QVariantMap data = m_sessionManager->pluginsData();
    if (!data.contains(key))
        return;
    newParcomatCardDataCommandHandler(QStringLiteral("parkomatCardData"), data.value(key).toMap());
    data.remove(key);
    if (m_sessionManager)
        m_sessionManager->setPluginsData(data);
}

void ParkomatPluginHandler::waitCardMsgHandler(int code)
{
    if (code == MessageWidgetController::PromptOk)
        showCardNumberInputScreen();
    else
        exitFromMessage();
}

void ParkomatPluginHandler::newParcomatCardDataCommandHandler(QString /*command*/, QVariantMap data)
{
    qCWarning(DEFAULT_LOG).noquote() << logvariant(data);
    // A card that was read once stays, whatever comes later.
    if (!m_cardData.isValid())
        m_cardData.parseMap(data);
    qCWarning(DEFAULT_LOG).noquote() << ParkingCheckRequest(m_cardData).toXml();
    sendParkingCheckRequest();
}

void ParkomatPluginHandler::showInputScreen(const ProviderParameter &parameter, QObject *backReceiver,
                                            const char *backMethod, const char *nextSlot)
{
    releaseMessage(m_messageController);
    delete m_inputController;
    m_inputController =
        new PluginProviderParameterInputController(m_sessionManager, m_formViewer, QString(), QString(), this);
    if (backReceiver != nullptr)
        connect(m_inputController, SIGNAL(needBack()), backReceiver, backMethod);
    connect(m_inputController, SIGNAL(needNext(QString)), this, nextSlot);
    m_inputController->setParameter(m_provider ? m_provider->name() : QString(), parameter, false);
}

void ParkomatPluginHandler::showCardNumberInputScreen()
{
    showInputScreen(CardInputs::cardNumber(), m_formViewer, SIGNAL(needCancel()),
                    SLOT(cardNumberInputHandler(QString)));
}

void ParkomatPluginHandler::cardNumberInputHandler(QString text)
{
    CardInputs::keepCardNumber(m_manualCard, text);
    m_cardData.setId(text);
    showCardUidInputScreen();
}

void ParkomatPluginHandler::showCardUidInputScreen()
{
    showInputScreen(CardInputs::cardUid(), this, SLOT(showCardNumberInputScreen()), SLOT(cardUidInputHandler(QString)));
}

void ParkomatPluginHandler::cardUidInputHandler(QString uid)
{
    CardInputs::keepCardUid(m_manualCard, uid);
    newParcomatCardDataCommandHandler(QString(), QVariantMap(m_manualCard));
}

void ParkomatPluginHandler::showCarNumberInputScreen()
{
    showInputScreen(CardInputs::carNumber(m_cardData.id()), m_formViewer, SIGNAL(needCancel()),
                    SLOT(carNumberInputHandler(QString)));
}

void ParkomatPluginHandler::carNumberInputHandler(QString /*car*/) {}

// Parking check

void ParkomatPluginHandler::sendParkingCheckRequest()
{
    createParkingAccessManager();
    m_accessManager->postData(ParkingCheckRequest(m_cardData));
    const QPointer<MessageWidgetController> controller = loadMessagesView();
    controller->initMessageSingleSignalMode(QStringLiteral("Проверка информации, подождите..."),
                                            TerminalAppSettings().onlineCheckTimeout(), MessageWidgetController::Wait);
    connect(controller, SIGNAL(finish(int)), this, SLOT(exitFromMessageCode(int)));
    if (m_formViewer)
        connect(controller, SIGNAL(tick()), m_formViewer, SIGNAL(needTick()));
}

void ParkomatPluginHandler::parkingCheckResponseHandler(ParkingCheckResponse response)
{
    releaseMessage(m_messageController);
    // Whether it is a good one, and this payment's, is not asked: the client tells answers from errors.
    m_lastCheckResponse = response;
    const QPointer<ParkomatPluginHandler> self(this);
    fillProviderParameters();
    // Whoever follows the parameters may have ended it all. The timer dies with the form viewer it was armed for.
    if (self && m_formViewer)
        QTimer::singleShot(DETAILS_DELAY, m_formViewer.data(), &PluginBaseFormViewer::needShowPayDetail);
}

void ParkomatPluginHandler::fillProviderParameters()
{
    const ParkingCharge charge(m_cardData, m_lastCheckResponse);
    QList<ProviderParameter> parameters = m_provider ? m_provider->parameters() : QList<ProviderParameter>();
    for (ProviderParameter &parameter : parameters) {
        if (const std::optional<QString> value = charge.parameterValue(parameter.name()))
            parameter.setValue(*value);
    }
    if (m_sessionManager) {
        QVariantMap data = m_sessionManager->pluginsData();
        charge.keepIn(data);
        m_sessionManager->setPluginsData(data);
    }
    if (m_provider)
        m_provider->setParameters(parameters);
}

void ParkomatPluginHandler::parkomatAccessManagerErrorHandler(QVariantMap error)
{
    const QPointer<MessageWidgetController> controller = loadMessagesView();
    // The text alone, without a word of whose it is. During a confirmation the wait for an answer goes on behind it.
    controller->initMessageSingleSignalMode(error.value(QStringLiteral("errorMessage")).toString(),
                                            TerminalAppSettings().autoCloseMessagesAfter(),
                                            MessageWidgetController::Error);
    connect(controller, SIGNAL(finish(int)), this, SLOT(exitFromMessageCode(int)));
}

// Payment confirmation

void ParkomatPluginHandler::doPaymentPredProcessing(SessionManager * /*session*/, PayPack *pack)
{
    if (!m_provider) {
        qCCritical(DEFAULT_LOG).noquote() << "INVALID PLUGIN PROVIDER";
        return;
    }
    MergedPayment merged(m_provider->id());
    for (const Payment &payment : pack != nullptr ? pack->payments() : QList<Payment>()) {
        if (merged.add(payment))
            qCWarning(DEFAULT_LOG).noquote() << "SOME PAYS FOR PROVIDER:" << m_provider->name();
    }

    loadMessagesView()->initMessageSingleSignalMode(QStringLiteral("Выполняется подтверждение операции..."),
                                                    CONFIRMATION_SECONDS, MessageWidgetController::Wait);
    createParkingAccessManager();
    const auto kept = ParkingCharge::keptIn(m_sessionManager ? m_sessionManager->pluginsData() : QVariantMap());
    // What the session holds is the card of this payment, whichever was read last.
    m_cardData.parseMap(kept.card);
    m_accessManager->postData(ParkInfoPayRequest(m_cardData, merged.payment(), kept.total));
    PayResponseWait(*this, m_isPayResponseArrived).run();
}

void ParkomatPluginHandler::parkInfoPayResponseHandler(ParkInfoPayResponse response)
{
    qCWarning(DEFAULT_LOG).noquote() << response.resultCode() << response.errorInfo();
    if (response.resultCode() != BaseParkomatResponse::SUCCESS)
        qCCritical(trelmbus::LOGGER).noquote() << "НУЖНО ОБРАБАТЫВАТЬ ОШИБКУ! ЧТО ДЕЛАТЬ С ПЛАТЕЖОМ И ДЕНЬГАМИ?";
    releaseMessage(m_messageController);
    // Nothing ties it to a request: the late answer to an earlier commit counts as well.
    m_isPayResponseArrived = true;
}
// NOLINTEND(performance-unnecessary-value-param)
