// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/paypack.h"
#include "core/provider.h"
#include "core/sessionmanager.h"
#include "core/terminalappsettings.h"
#include "core/trelminfo.h"
#include "extension/currency.h"
#include "guiclient/formproject.h"
#include "guiclient/pluginbaseformviewer.h"
#include "plugininterface/ipaybyprovider.h"
#include "support/rawserver.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>

#include <memory>
#include <utility>

/// A host's side of payments through one plugin: provider 18156, the session, the form on the (offscreen) screen, what
/// the form signals, and the customer's eyes and fingers.
///
/// Knows the plugin as a host does, by its root object alone. It stops a payment that is under way when it dies.
/// Warnings of the plugin (from "src/") do not fail the test: it logs whatever it does as warnings. All else does, but
/// for the critical lines of its journal, which say at each payment in a new work directory that there is none yet.
class HandlerBench
{
public:
    static constexpr qint64 PROVIDER_ID = 18156;

    explicit HandlerBench(QObject *root)
        : m_root(root), m_plugin(qobject_cast<IPayByProvider *>(root)), m_project(QStringLiteral(TEST_PROJECT))
    {
        TestCase::ignoreWarningsOf(QStringLiteral("src/"));
        TestCase::ignoreLogOf(QStringLiteral("src/parkomatdatastorage.cpp"));
        newPayment();
    }
    ~HandlerBench()
    {
        if (m_root)
            m_plugin->stop();
        deleteReleased();
    }
    HandlerBench(const HandlerBench &) = delete;
    HandlerBench &operator=(const HandlerBench &) = delete;

    [[nodiscard]] IPayByProvider *plugin() const { return m_plugin; }

    /// Lets the plugin's settings name a service on this machine.
    static void useService(quint16 port)
    {
        TerminalAppSettings settings;
        const QString group = QStringLiteral("PARKOMAT_PLUGIN");
        settings.setPluginSettingsValue(group, QStringLiteral("csHost"), QStringLiteral("127.0.0.1"));
        settings.setPluginSettingsValue(group, QStringLiteral("csPort"), QString::number(port));
    }

    // The payment

    /// Makes provider and session anew, as for the next customer; the ones before die.
    void newPayment()
    {
        m_provider = std::make_unique<Provider>(PROVIDER_ID, QStringLiteral("Парковка"));
        m_provider->setParameters(parametersNamed(parameterNames()));
        m_session = std::make_unique<SessionManager>(&m_project);
    }
    // The host's objects die in the middle of the payment; they are not to be asked for until the next one.
    void loseProvider() { m_provider.reset(); }
    void loseSession() { m_session.reset(); }

    [[nodiscard]] Provider &provider() const { return *m_provider; }
    [[nodiscard]] SessionManager &session() const { return *m_session; }
    [[nodiscard]] FormProject &project() { return m_project; }
    [[nodiscard]] const Currency &currency() const { return m_currency; }

    /// What the plugin fills of a provider's parameters.
    [[nodiscard]] static QList<QByteArray> parameterNames()
    {
        return {"card_num", "SummToPay", "TermNo", "ParkNumber", "StartDate", "StartTime", "UIN"};
    }

    /// Starts the payment and shows its form.
    void start()
    {
        IPayWidget *const form = m_plugin->start(m_provider.get(), m_currency, m_session.get());
        watch(qobject_cast<PluginBaseFormViewer *>(form != nullptr ? form->widget() : nullptr));
    }
    /// start(), and the form's first screen.
    void startWithScreen()
    {
        start();
        m_plugin->showInitScreen();
    }
    /// As from the card reader.
    void readCard(const QVariantMap &card) const
    {
        Q_EMIT m_session->newParcomatCardDataCommand(QStringLiteral("newParcomatCardData"), card);
    }
    /// On the slot of that name, which is all that the host knows of it.
    void permitCancel() const { QVERIFY(QMetaObject::invokeMethod(m_root.data(), "permitCancel")); }
    void commit(const QList<Payment> &payments) const
    {
        PayPack pack;
        for (const Payment &payment : payments)
            pack.addPayment(payment);
        m_plugin->doPaymentPredProcessing(m_session.get(), &pack);
    }

    /// commit() with a service that confirms, without the second until the plugin looks for the answer.
    /// @return whether it was the answer that let the host go on.
    [[nodiscard]] bool commitAnswered(const QList<Payment> &payments) const
    {
        // The plugin puts the message up before anything can happen.
        const Meanwhile answered({{[this] { return messageText().isEmpty(); }, [] { letPass(1'100); }}});
        commit(payments);
        return answered.isDone();
    }

    /// What a reader finds on the cards: something else than what stands in for it when a card is typed.
    [[nodiscard]] static QString payload() { return QStringLiteral("05473009031402240000000001000000"); }
    /// A card of the cash service's car park that owes 150.00.
    [[nodiscard]] static QVariantMap demoCard()
    {
        return card(QStringLiteral("305419896"), QStringLiteral("0000123456"));
    }
    /// @param uid decimal.
    [[nodiscard]] static QVariantMap card(const QString &uid, const QString &number)
    {
        return {{QStringLiteral("id"), uid}, {QStringLiteral("cardId"), number}, {QStringLiteral("pdata"), payload()}};
    }
    /// Amounts in hundredths.
    [[nodiscard]] static Payment payment(qint64 uid, qint64 summ, qint64 comission = 0, qint64 providerId = PROVIDER_ID)
    {
        Payment payment(uid, QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)), providerId);
        payment.setSumm(FixNumber(100, summ));
        payment.setComission(FixNumber(100, comission), false, false);
        return payment;
    }
    [[nodiscard]] static QList<ProviderParameter> parametersNamed(const QList<QByteArray> &names)
    {
        QList<ProviderParameter> parameters;
        for (const QByteArray &name : names) {
            ProviderParameter parameter;
            parameter.setName(QString::fromUtf8(name));
            parameter.setLabel(QStringLiteral("Поле ") + parameter.name());
            parameters.append(parameter);
        }
        return parameters;
    }
    /// "name=value" for each of the provider's parameters, in order.
    [[nodiscard]] QStringList parameters() const
    {
        QStringList all;
        for (const ProviderParameter &parameter : m_provider->parameters())
            all.append(parameter.name() + QLatin1Char('=') + parameter.value());
        return all;
    }
    /// The value of the parameter; a null text where there is none of that name.
    [[nodiscard]] QString parameter(const QString &name) const
    {
        for (const ProviderParameter &parameter : m_provider->parameters()) {
            if (parameter.name() == name)
                return parameter.value();
        }
        return QString();
    }

    /// What the plugin itself said at critical level since the last call, in order.
    [[nodiscard]] static QStringList takeAlarms()
    {
        QStringList texts;
        const QList<LogLine> lines = MessageLog::takeIf([](const LogLine &line) {
            return line.level == QtCriticalMsg && line.file == QLatin1String("src/parkomatpluginhandler.cpp");
        });
        for (const LogLine &line : lines)
            texts.append(line.text);
        return texts;
    }

    // The screen

    [[nodiscard]] bool hasForm() const { return !m_form.isNull(); }
    /// Never null: without a form the test ends here.
    [[nodiscard]] PluginBaseFormViewer *form() const
    {
        PluginBaseFormViewer *const form = m_form;
        if (form == nullptr)
            qFatal("there is no form");
        return form;
    }
    /// What is on top: the viewer that the plugin laid over the form, else the form. May be null, as the form may.
    [[nodiscard]] static FormViewer *topViewerOf(PluginBaseFormViewer *form)
    {
        FormViewer *top = form;
        const auto children = form != nullptr ? form->findChildren<FormViewer *>() : QList<FormViewer *>();
        for (FormViewer *child : children) {
            if (child->isVisible())
                top = child;
        }
        return top;
    }
    [[nodiscard]] FormViewer *topViewer() const { return topViewerOf(m_form); }
    /// The name of the view on top: "messagesView", "inputView"; empty for none.
    [[nodiscard]] QString topView() const { return topViewer() != nullptr ? topViewer()->currentView() : QString(); }
    /// Empty without a message on top.
    [[nodiscard]] QString messageText() const { return text<QLabel>("messageText"); }
    /// Seconds left of the message on top, as it says; empty where it does not.
    [[nodiscard]] QString countdown() const { return text<QLabel>("countdown"); }
    /// Which buttons the view on top offers: none for a wait, "ok" for an error, "ok cancel" for a prompt, "yes no".
    /// On an input screen "next back".
    [[nodiscard]] QString buttons() const
    {
        QStringList shown;
        for (const char *name : {"ok", "cancel", "yes", "no", "next", "back"}) {
            if (button(name) != nullptr)
                shown.append(QLatin1String(name));
        }
        return shown.join(QLatin1Char(' '));
    }
    [[nodiscard]] QString caption(const char *name) const { return text<QAbstractButton>(QByteArray(name) + "Button"); }
    /// Touches a button of the view on top, by its name in buttons(). @return false when it is not offered.
    [[nodiscard]] bool press(const char *name) const
    {
        QAbstractButton *const touched = button(name);
        if (touched == nullptr)
            return false;
        touched->click();
        return true;
    }
    /// Types a text into the input screen in place of what is there, and goes on. @return false without such a screen.
    [[nodiscard]] bool type(const QString &text) const
    {
        auto *line = part<QLineEdit>("inputLine");
        if (line == nullptr)
            return false;
        line->setText(text);
        return press("next");
    }
    /// Text of a visible part of the view on top, by its object name; a null text where there is none.
    template <typename Widget>
    [[nodiscard]] QString text(const char *name) const
    {
        const auto *widget = part<Widget>(name);
        return widget != nullptr ? widget->text() : QString();
    }
    /// A visible part of the view on top, by its object name; else null.
    template <typename Widget>
    [[nodiscard]] Widget *part(const char *name) const
    {
        QWidget *const view = topViewer() != nullptr ? topViewer()->getUi(topView()) : nullptr;
        auto *const widget = view != nullptr ? view->findChild<Widget *>(QLatin1String(name)) : nullptr;
        return widget != nullptr && widget->isVisible() ? widget : nullptr;
    }

    /// Whether the widget is there and was hidden itself, not just with what it is in.
    [[nodiscard]] static bool isHidden(const QWidget *widget) { return widget != nullptr && widget->isHidden(); }

    /// The form's signals since the last call, in order: "needCancel", "needTick", "needShowPayDetail".
    [[nodiscard]] QStringList takeSignals() { return std::exchange(m_signals, {}); }
    [[nodiscard]] int ticks() const { return m_signals.count(QStringLiteral("needTick")); }
    /// The signals without taking them, and without the ticks.
    [[nodiscard]] QStringList outcome() const
    {
        QStringList signalled = m_signals;
        signalled.removeAll(QStringLiteral("needTick"));
        return signalled;
    }

private:
    [[nodiscard]] QAbstractButton *button(const char *name) const
    {
        return part<QAbstractButton>(QByteArray(name) + "Button");
    }

    void watch(PluginBaseFormViewer *form)
    {
        if (form == nullptr || form == m_form)
            return;
        m_form = form;
        const auto record = [this](const char *signal) { m_signals.append(QLatin1String(signal)); };
        QObject::connect(form, &PluginBaseFormViewer::needCancel, &m_context, [record] { record("needCancel"); });
        QObject::connect(form, &PluginBaseFormViewer::needTick, &m_context, [record] { record("needTick"); });
        QObject::connect(form, &PluginBaseFormViewer::needShowPayDetail, &m_context,
                         [record] { record("needShowPayDetail"); });
        form->resize(800, 600);
        form->show();
    }

    QPointer<QObject> m_root;
    IPayByProvider *m_plugin;
    FormProject m_project;
    Currency m_currency;
    std::unique_ptr<Provider> m_provider;
    std::unique_ptr<SessionManager> m_session;
    QPointer<PluginBaseFormViewer> m_form;
    QStringList m_signals;
    QObject m_context;
};
