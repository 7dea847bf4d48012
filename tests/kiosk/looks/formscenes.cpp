// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/formscenes.h"

#include "core/provider.h"
#include "core/sessionmanager.h"
#include "guiclient/messagewidgetcontroller.h"
#include "guiclient/pluginbaseformviewer.h"
#include "guiclient/pluginproviderparameterinputcontroller.h"
#include "guiclient/widgetnames.h"
#include "kiosk/looks/samples.h"
#include "payee.h"
#include "terminal.h"
#include "window/look.h"
#include "window/paymentscreen.h"
#include "window/screens.h"

namespace FormScenes {
namespace {
using Controller = MessageWidgetController;

/// A payment under way: the terminal's window, and the form in it as the plugin makes it.
class Payment : public kiosk::Screens
{
public:
    Payment() : kiosk::Screens(Samples::terminal()), m_provider(kiosk::Payee::makeProvider(this))
    {
        m_form = std::make_unique<PluginBaseFormViewer>(&m_session, m_provider, Currency(), QString());
        m_form->setInfo(Samples::terminal());
        payment().setForm(m_form.get());
        m_state.phone = Samples::terminal().phone;
        payment().setState(m_state);
        showScreen(payment());
    }
    ~Payment() override { payment().setForm(nullptr); }

    [[nodiscard]] FormViewer &form() { return *m_form; }

    /// The answer to a parking check.
    void setParameters(const QString &sumDue)
    {
        const QHash<QString, QString> values = {{QStringLiteral("card_num"), QStringLiteral("000123456")},
                                                {QStringLiteral("SummToPay"), sumDue},
                                                {QStringLiteral("TermNo"), QStringLiteral("0042")},
                                                {QStringLiteral("ParkNumber"), QStringLiteral("12")},
                                                {QStringLiteral("StartDate"), QStringLiteral("2024-03-07")},
                                                {QStringLiteral("StartTime"), QStringLiteral("11:35:09")},
                                                {QStringLiteral("UIN"), QStringLiteral("P-78563412-20240307")}};
        QList<ProviderParameter> parameters = m_provider->parameters();
        for (ProviderParameter &parameter : parameters)
            parameter.setValue(values.value(parameter.name()));
        m_provider->setParameters(parameters);
    }

    void showDetails(const QString &sumDue, const QString &cash, const QString &comission = {})
    {
        setParameters(sumDue);
        m_state.hasDetails = true;
        m_state.purchase = kiosk::Purchase(FixNumber(100, comission));
        m_state.purchase.setDue(sumDue);
        m_state.purchase.add(FixNumber(100, cash));
        m_state.canCancel = !m_state.purchase.hasCash();
        m_state.canPay = m_state.purchase.hasCash();
        m_state.acceptsCash = m_state.purchase.toPayIn() > FixNumber();
        m_state.secondsLeft = m_state.purchase.hasCash() ? kiosk::TerminalOptions().inactivitySeconds : 0;
        m_form->setPaidIn(m_state.purchase.cash());
        m_form->showPayDetail();
        payment().setState(m_state);
    }

    /// While the plugin asks again.
    void holdPay()
    {
        m_state.canPay = false;
        payment().setState(m_state);
    }

    void commit()
    {
        m_state.isCommitting = true;
        m_state.canPay = false;
        payment().setState(m_state);
    }

    /// As plugins show messages in a form, and in a viewer that they lay over it.
    static void showMessage(FormViewer &viewer, const QString &text, int seconds, int kind, const QString &ok = {})
    {
        const QString name = QStringLiteral("messagesView");
        const QString path = kiosk::Look::projectDir() + QLatin1Char('/') + WidgetNames().messageViewFileName();
        if (!viewer.loadFromFile(path, name, {}))
            qFatal("the project has no message view");
        auto *controller = new Controller(&viewer);
        controller->setUi(viewer.getUi(name));
        controller->initMessage(text, seconds, kind);
        if (!ok.isEmpty())
            controller->setOkCaption(ok);
    }

    void showInput(const char *label, const char *keyboard, const QString &value)
    {
        ProviderParameter parameter;
        parameter.setName(QStringLiteral("id"));
        parameter.setLabel(QString::fromUtf8(label));
        parameter.setKeyboardType(QLatin1String(keyboard));
        parameter.setValue(value);
        auto *controller =
            new PluginProviderParameterInputController(&m_session, m_form.get(), QString(), QString(), this);
        controller->setParameter(m_provider->name(), parameter, false);
    }

private:
    SessionManager m_session;
    Provider *m_provider;
    std::unique_ptr<PluginBaseFormViewer> m_form;
    kiosk::PaymentScreen::State m_state = cancellable();

    static kiosk::PaymentScreen::State cancellable()
    {
        kiosk::PaymentScreen::State state;
        state.canCancel = true;
        return state;
    }
};

std::unique_ptr<QWidget> message(const QString &text, int seconds, int kind, const QString &ok = {})
{
    auto window = std::make_unique<Payment>();
    Payment::showMessage(window->form(), text, seconds, kind, ok);
    return window;
}

std::unique_ptr<QWidget> detailsOf(const QString &sumDue, const QString &cash)
{
    auto window = std::make_unique<Payment>();
    window->showDetails(sumDue, cash);
    return window;
}
} // namespace

std::unique_ptr<QWidget> waiting()
{
    return std::make_unique<Payment>();
}

std::unique_ptr<QWidget> waitCard()
{
    return message(QStringLiteral("Приложите парковочную карту"), 30, Controller::Prompt,
                   QStringLiteral("Ввести\nвручную"));
}

std::unique_ptr<QWidget> checking()
{
    return message(QStringLiteral("Проверка информации, подождите..."), 60, Controller::Wait);
}

std::unique_ptr<QWidget> error()
{
    return message(QStringLiteral("Парковка уже оплачена"), 10, Controller::Error);
}

std::unique_ptr<QWidget> errorOfTheNetwork()
{
    return message(QStringLiteral("Error transferring http://cash.example.org:13006/api/ParkingCheck - server replied: "
                                  "Service Unavailable"),
                   10, Controller::Error);
}

std::unique_ptr<QWidget> cancelQuestion()
{
    auto window = std::make_unique<Payment>();
    window->showDetails(QStringLiteral("150.00"), {});
    auto *helper = new FormViewer(nullptr, false, &window->form());
    Payment::showMessage(*helper, QStringLiteral("Все данные будут потеряны. Продолжить отмену платежа?"), 15,
                         Controller::YesNo);
    helper->show();
    return window;
}

std::unique_ptr<QWidget> cardNumber()
{
    auto window = std::make_unique<Payment>();
    window->showInput("Введите номер карты", "number", QStringLiteral("000123456"));
    return window;
}

std::unique_ptr<QWidget> cardUid()
{
    auto window = std::make_unique<Payment>();
    window->showInput("Введите UID карты", "full", QStringLiteral("12345678"));
    return window;
}

std::unique_ptr<QWidget> details()
{
    return detailsOf(QStringLiteral("150.00"), {});
}

std::unique_ptr<QWidget> detailsPart()
{
    return detailsOf(QStringLiteral("150.00"), QStringLiteral("100.00"));
}

std::unique_ptr<QWidget> detailsPaid()
{
    return detailsOf(QStringLiteral("150.00"), QStringLiteral("150.00"));
}

std::unique_ptr<QWidget> detailsChange()
{
    return detailsOf(QStringLiteral("150.00"), QStringLiteral("200.00"));
}

std::unique_ptr<QWidget> detailsNothingDue()
{
    return detailsOf(QStringLiteral("0.00"), {});
}

std::unique_ptr<QWidget> detailsToReturn()
{
    return detailsOf(QStringLiteral("0.00"), QStringLiteral("100.00"));
}

std::unique_ptr<QWidget> detailsComission()
{
    auto window = std::make_unique<Payment>();
    window->showDetails(QStringLiteral("150.00"), QStringLiteral("100.00"), QStringLiteral("5.00"));
    return window;
}

std::unique_ptr<QWidget> checkingWithMoney()
{
    auto window = std::make_unique<Payment>();
    window->showDetails(QStringLiteral("150.00"), QStringLiteral("100.00"));
    Payment::showMessage(window->form(), QStringLiteral("Проверка информации, подождите..."), 60, Controller::Wait);
    window->holdPay();
    return window;
}

std::unique_ptr<QWidget> errorWithMoney()
{
    auto window = std::make_unique<Payment>();
    window->showDetails(QStringLiteral("150.00"), QStringLiteral("100.00"));
    Payment::showMessage(window->form(), QStringLiteral("Сервис временно недоступен"), 10, Controller::Error);
    return window;
}

std::unique_ptr<QWidget> committingError()
{
    auto window = std::make_unique<Payment>();
    window->showDetails(QStringLiteral("150.00"), QStringLiteral("150.00"));
    Payment::showMessage(window->form(), QStringLiteral("Платёж уже зарегистрирован с другой суммой"), 10,
                         Controller::Error);
    window->commit();
    return window;
}

std::unique_ptr<QWidget> committing()
{
    auto window = std::make_unique<Payment>();
    window->showDetails(QStringLiteral("150.00"), QStringLiteral("150.00"));
    Payment::showMessage(window->form(), QStringLiteral("Выполняется подтверждение операции..."), 30, Controller::Wait);
    window->commit();
    return window;
}
} // namespace FormScenes
