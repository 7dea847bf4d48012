// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bareexchange.h"
#include "benchmarkcase.h"
#include "clientresponder.h"
#include "core/paypack.h"
#include "core/provider.h"
#include "core/sessionmanager.h"
#include "guiclient/formproject.h"
#include "parkinfopayrequest.h"
#include "parkingcheckrequest.h"
#include "parkomatpluginhandler.h"
#include "terminal.h"

#include <QDateTime>
#include <QEventLoop>

#include <memory>
#include <stdexcept>
#include <vector>

namespace {
using Operation = BenchmarkCase::Operation;

const std::string BARE = "payment-bare";
// The confirmation returns at a poll, one a second, so that a payment takes as long.
constexpr int TIMES = 20;
// Those that are not counted, too.
constexpr size_t PAYMENTS = 2 * TIMES;

// A host that keeps its plugin: how many customers it had before, at the beginning and at the end of its life.
const std::string EARLY = "payment-tenth";
constexpr int EARLY_PAYMENTS = 10;
constexpr int LATE_PAYMENTS = 1'000;
constexpr int KEPT_TIMES = 8;

constexpr qint64 PROVIDER = 18156;

Payment payment()
{
    Payment pay(70001, QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)), PROVIDER);
    pay.setSumm(FixNumber(100, qint64(15'000)));
    return pay;
}

void addParameters(Provider &provider)
{
    QList<ProviderParameter> parameters;
    for (const char *name : {"card_num", "SummToPay", "TermNo", "ParkNumber", "StartDate", "StartTime", "UIN"}) {
        ProviderParameter parameter;
        parameter.setName(QLatin1String(name));
        parameters.append(parameter);
    }
    provider.setParameters(parameters);
}

/// The plugin with its form, which is not shown and has its views already.
class Handler
{
public:
    explicit Handler(FormProject &project)
    {
        SessionManager session(&project);
        Provider provider(PROVIDER, QStringLiteral("Парковка"));
        IPayWidget *form = m_plugin.start(&provider, Currency(), &session);
        m_plugin.showInitScreen();
        if (dynamic_cast<PluginBaseFormViewer &>(*form).getUi(QStringLiteral("messagesView")) == nullptr)
            throw std::runtime_error("the form has no view for messages");
    }

    /// From the card reader's command to the filled parameters, then from the commit to the answer.
    void pay(FormProject &project)
    {
        Customer customer(project);
        check(customer);
        PayPack pack;
        pack.addPayment(payment());
        m_plugin.doPaymentPredProcessing(&customer.session, &pack);
    }
    /// A customer who only looks at what is owed.
    void check(FormProject &project)
    {
        Customer customer(project);
        check(customer);
    }

private:
    struct Customer
    {
        explicit Customer(FormProject &project) : session(&project) { addParameters(provider); }

        SessionManager session;
        Provider provider = Provider(PROVIDER, QStringLiteral("Парковка"));
    };

    void check(Customer &customer)
    {
        m_plugin.start(&customer.provider, Currency(), &customer.session);
        QEventLoop loop;
        QObject::connect(&customer.provider, &Provider::parametersChanged, &loop, &QEventLoop::quit);
        Q_EMIT customer.session.newParcomatCardDataCommand(QStringLiteral("parkomatCardData"), Terminal::cardMap());
        loop.exec();
        if (customer.provider.parameters().at(1).value() != QLatin1String("150.00"))
            throw std::runtime_error("the parameters were not filled");
    }

    ParkomatPluginHandler m_plugin;
};

/// A handler for each payment: one keeps its first card.
class Host
{
public:
    Host()
    {
        m_responder.configure();
        while (m_handlers.size() < PAYMENTS)
            m_handlers.push_back(std::make_unique<Handler>(m_project));
    }

    void pay() { m_handlers.at(m_next++)->pay(m_project); }

private:
    ClientResponder m_responder;
    FormProject m_project = FormProject(QStringLiteral(FORM_PROJECT));
    std::vector<std::unique_ptr<Handler>> m_handlers;
    size_t m_next = 0;
};

/// One handler for all, each with a session of its own. It leaves a client behind for every customer.
class KeepingHost
{
public:
    explicit KeepingHost(int customersBefore)
    {
        // Qt's watch over the network's interfaces tells every manager, by the clock: no part of a payment.
        qputenv("QT_EXCLUDE_GENERIC_BEARER", "1");
        m_responder.configure();
        m_handler = std::make_unique<Handler>(m_project);
        for (int i = 0; i < customersBefore; ++i)
            m_handler->check(m_project);
    }

    void pay() { m_handler->pay(m_project); }

private:
    ClientResponder m_responder;
    FormProject m_project = FormProject(QStringLiteral(FORM_PROJECT));
    std::unique_ptr<Handler> m_handler;
};

Operation kept(int customersBefore)
{
    return [host = std::make_shared<KeepingHost>(customersBefore)] { host->pay(); };
}

Operation whole()
{
    return [host = std::make_shared<Host>()] { host->pay(); };
}

Operation bare()
{
    const auto responder = std::make_shared<ClientResponder>();
    responder->configure();
    const ParkomatCardData card = ParkomatCardData(QVariant(Terminal::cardMap()));
    const ParkInfoPayRequest pay(card, payment(), payment().summ());
    const BareExchange first(responder->port(), QStringLiteral("ParkingCheck"), ParkingCheckRequest(card).toXml());
    const BareExchange second(responder->port(), QStringLiteral("ParkInfoPay"), pay.toXml());
    return [responder, first, second] {
        first.run();
        second.run();
    };
}
} // namespace

BenchmarkCases paymentCases()
{
    return {{"payment", "payment", std::nullopt, whole, RatioBound{BARE, 2.2}, TIMES},
            {"payment", BARE, std::nullopt, bare, std::nullopt, TIMES},
            {"kept plugin", "payment-thousandth", std::nullopt, [] { return kept(LATE_PAYMENTS); },
             RatioBound{EARLY, 1.05}, KEPT_TIMES},
            {"kept plugin", EARLY, std::nullopt, [] { return kept(EARLY_PAYMENTS); }, std::nullopt, KEPT_TIMES}};
}
