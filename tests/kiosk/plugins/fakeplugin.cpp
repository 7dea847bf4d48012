// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/paypack.h"
#include "core/provider.h"
#include "core/sessionmanager.h"
#include "core/terminalappsettings.h"
#include "guiclient/messagewidgetcontroller.h"
#include "guiclient/pluginbaseformviewer.h"
#include "plugininterface/ipaybyprovider.h"
#include "plugininterface/ipaybyprovidersettingswidget.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>

#include <cstdlib>

#include <unistd.h>

namespace {
// Outlive the root objects: each customer has another. The last one dies with the library, behind all static objects.
QStringList &calls()
{
    static auto *const all = new QStringList;
    return *all;
}
QVariantMap &plans()
{
    static auto *const all = new QVariantMap;
    return *all;
}
QPointer<QEventLoop> heldLoop;

void record(const QString &call)
{
    calls().append(call);
}

/// What no terminal may do.
void require(bool isAsItMustBe, const char *what)
{
    if (!isAsItMustBe)
        qCritical("the terminal broke its contract: %s", what);
}

const int loaded = [] {
    const QByteArray mood = qgetenv("FAKE_PLUGIN");
    if (mood == "dies")
        std::abort();
    if (mood == "ends")
        std::_Exit(3);
    while (mood == "hangs")
        ::pause();
    return 0;
}();
} // namespace

class FakeSettings : public QWidget, public IPayByProviderSettingsWidget
{
    Q_OBJECT

public:
    void saveSettings() override
    {
        record(QStringLiteral("saveSettings"));
        TerminalAppSettings().setPluginSettingsValue(QStringLiteral("FAKE_PLUGIN"), QStringLiteral("isSaved"),
                                                     QStringLiteral("yes"));
    }
    ~FakeSettings() override { record(QStringLiteral("~FakeSettings")); }
};

/// A plugin that does what a test plans, writes down what the terminal does, and complains where the terminal breaks
/// its contract. A test reaches it as the terminal does, by its root object.
///
/// Plans: "confirmation" ("not wanted", "dies", and see confirm()), "form" and "settings" ("none"). FAKE_PLUGIN in the
/// environment says what the library does while it is loaded ("dies", "ends", "hangs"), whom it takes payments for
/// ("another payee"), that a card of 150.00 brings up the details and its confirmation never ends ("never returns",
/// "stands still"), and that its end takes for ever once its settings page was asked for ("never goes").
class FakePlugin : public QObject, public IPayByProvider
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID PAY_BY_PROVIDER_IID)
    Q_INTERFACES(IPayByProvider)

public:
    FakePlugin() { Q_UNUSED(loaded) }
    ~FakePlugin() override
    {
        record(QStringLiteral("~FakePlugin"));
        while (m_hasHadAPage && qgetenv("FAKE_PLUGIN") == "never goes")
            ::pause();
    }

    Q_INVOKABLE QStringList takeCalls() { return qExchange(calls(), {}); }
    Q_INVOKABLE void plan(const QString &what, const QVariant &value) { plans().insert(what, value); }
    Q_INVOKABLE void forgetPlans() { plans().clear(); }
    /// Ends a confirmation that is "held", as it should end.
    Q_INVOKABLE void letGo()
    {
        takeMessageOff();
        heldLoop->quit();
    }
    Q_INVOKABLE void permitCancel() { record(QStringLiteral("permitCancel")); }
    /// What the terminal left in the session.
    Q_INVOKABLE QVariantMap sessionData() { return m_session ? m_session->pluginsData() : QVariantMap(); }
    Q_INVOKABLE void fill(const QString &parameter, const QString &value)
    {
        QList<ProviderParameter> parameters = m_provider->parameters();
        for (ProviderParameter &one : parameters) {
            if (one.name() == parameter)
                one.setValue(value);
        }
        m_provider->setParameters(parameters);
    }

    QString pluginVersion() const override { return QStringLiteral("1.2.3"); }
    QString pluginBuild() const override { return QStringLiteral("2024-03-07T14:05:09"); }
    QSet<long long> supportedProviders() const override
    {
        return {qgetenv("FAKE_PLUGIN") == "another payee" ? 1 : 18156};
    }
    QString pluginDescription() override { return QStringLiteral("Плагин для испытаний"); }
    QVariantMap pluginFormTemplates() override { return {}; }
    int pluginId() override { return 7; }
    QString pluginStringId() override { return QStringLiteral("fakePlugin"); }
    QVariantList getStompFilters() override { return {}; }
    bool needRestartIfExists() override { return true; }
    bool hasSettingsWidget() override { return plans().value(QStringLiteral("settings")) != QStringLiteral("none"); }
    bool needPaymentPredProcessing() override
    {
        return plans().value(QStringLiteral("confirmation")) != QStringLiteral("not wanted");
    }

    bool setMessageReciever(QObject *receiver, const char *slot) override
    {
        require(!m_form, "setMessageReciever() comes before start()");
        m_receiver = receiver;
        m_slot = slot;
        record(QStringLiteral("setMessageReciever"));
        return true;
    }
    bool setMessageSender(QObject *sender, const char *signal) override
    {
        m_sender = sender;
        m_signal = signal;
        record(QStringLiteral("setMessageSender"));
        return true;
    }
    void setTrelmInfo(const TrelmInfo &info) override { record(QStringLiteral("setTrelmInfo ") + info.name); }

    IPayWidget *start(Provider *provider, const Currency &currency, SessionManager *session) override
    {
        require(!m_form, "start() comes once");
        require(provider != nullptr && provider->id() == 18156, "start() has the provider");
        require(m_receiver && m_sender, "receiver and sender come before start()");
        m_provider = provider;
        m_session = session;
        connect(session, &SessionManager::newParcomatCardDataCommand, this,
                [this](const QString & /*command*/, const QVariantMap &card) {
                    record(QStringLiteral("card ") + card.value(QStringLiteral("id")).toString());
                    if (!endlessMood().isEmpty())
                        showDetails();
                });
        record(QStringLiteral("start"));
        if (plans().value(QStringLiteral("form")) == QStringLiteral("none"))
            return nullptr;
        m_form = new PluginBaseFormViewer(session, provider, currency, QStringLiteral("fakeRequest"));
        m_form->setMessageReciever(m_receiver, m_slot.constData());
        m_form->setMessageSender(m_sender, m_signal.constData());
        return m_form;
    }
    void stop() override
    {
        require(!heldLoop, "stop() waits for the confirmation");
        if (m_form) {
            m_form->hide();
            m_form->deleteLater();
            m_form.clear();
        }
        record(QStringLiteral("stop"));
    }
    void showInitScreen() override
    {
        require(m_form && m_form->isVisible(), "the form is up before showInitScreen()");
        record(QStringLiteral("showInitScreen"));
    }
    IPayByProviderSettingsWidget *getSettingsWidget() override
    {
        m_hasHadAPage = true;
        record(QStringLiteral("getSettingsWidget"));
        if (!m_settings)
            m_settings = new FakeSettings;
        return m_settings;
    }

    void doPaymentPredProcessing(SessionManager *session, PayPack *pack) override
    {
        require(needPaymentPredProcessing(), "doPaymentPredProcessing() is wanted");
        require(session != nullptr && session == m_session, "the session is the payment's");
        require(pack != nullptr && pack->payments().size() == 1, "the pack has the payment");
        const Payment payment = pack->payments().value(0);
        require(payment.created().isValid() && payment.providerId() == 18156, "the payment is whole");
        record(QStringLiteral("pay %1 %2 %3")
                   .arg(payment.uid())
                   .arg(payment.summ().toString(), payment.comission().toString()));
        const QString confirmation =
            endlessMood().isEmpty()
                ? plans().value(QStringLiteral("confirmation"), QStringLiteral("taken off")).toString()
                : endlessMood();
        if (confirmation == QLatin1String("dies")) {
            delete this;
            return;
        }
        confirm(confirmation);
        require(m_session && m_provider && m_form, "session, provider and form outlive the confirmation");
        record(QStringLiteral("returned"));
    }

private:
    static QString endlessMood()
    {
        const QString mood = QString::fromUtf8(qgetenv("FAKE_PLUGIN"));
        return mood == QLatin1String("never returns") || mood == QLatin1String("stands still") ? mood : QString();
    }

    void showDetails()
    {
        fill(QStringLiteral("SummToPay"), QStringLiteral("150.00"));
        Q_EMIT m_form->needShowPayDetail();
    }

    void confirm(const QString &how)
    {
        if (how == QLatin1String("no message"))
            return;
        while (how == QLatin1String("never returns"))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        while (how == QLatin1String("stands still"))
            ::pause();
        const bool closesByItself = how == QLatin1String("closed by itself");
        showMessage(closesByItself ? 1 : 0);
        if (how == QLatin1String("taken off"))
            spin(10, [this] { takeMessageOff(); });
        else if (how == QLatin1String("taken off at once"))
            takeMessageOff();
        else if (how == QLatin1String("left up"))
            spin(10, [] {});
        else if (how == QLatin1String("replaced"))
            spin(10, [this] { showMessage(0); });
        else if (how == QLatin1String("another behind it"))
            spin(10, [this] {
                takeMessageOff();
                showMessage(0);
                spin(10, [this] { takeMessageOff(); });
            });
        else if (how == QLatin1String("late"))
            spin(1100, [this] { takeMessageOff(); });
        else if (closesByItself)
            spin(1500, [this] { takeMessageOff(); });
        else if (how == QLatin1String("held"))
            hold();
        else
            qFatal("there is no plan %s", qPrintable(how));
    }

    void showMessage(int seconds)
    {
        takeMessageOff();
        m_message = new MessageWidgetController(this);
        m_message->initMessageSingleSignalMode(QStringLiteral("…"), seconds, MessageWidgetController::Wait);
    }
    void takeMessageOff()
    {
        if (m_message)
            m_message->deleteLater();
        m_message.clear();
    }

    /// Lets events happen, as the host's call may, until the time has come.
    template <typename Act>
    void spin(int milliseconds, const Act &act)
    {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, [&loop, &act] {
            act();
            loop.quit();
        });
        loop.exec();
    }
    static void hold()
    {
        QEventLoop loop;
        heldLoop = &loop;
        loop.exec();
    }

    QPointer<QObject> m_receiver;
    QPointer<QObject> m_sender;
    QByteArray m_slot;
    QByteArray m_signal;
    QPointer<Provider> m_provider;
    QPointer<SessionManager> m_session;
    QPointer<PluginBaseFormViewer> m_form;
    QPointer<FakeSettings> m_settings;
    QPointer<MessageWidgetController> m_message;
    bool m_hasHadAPage = false;
};

#include "fakeplugin.moc"
