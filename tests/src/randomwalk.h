// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/messagewidgetcontroller.h"
#include "guiclient/pluginproviderparameterinputcontroller.h"
#include "parkomatpluginhandler.h"
#include "plugininterface/ipaybyprovidersettingswidget.h"
#include "support/handlerbench.h"
#include "support/testclock.h"
#include "walkcustomer.h"
#include "walkservice.h"

#include <QApplication>
#include <QMetaMethod>

#include <numeric>
#include <random>

/// Does to a plugin whatever a host, a customer, a card reader, the cash service and time can do, and what they should
/// not, in a random order that is the same for the same seed.
///
/// Nobody's choice depends on what happened: each step draws the same numbers whether it finds anything to act upon or
/// not. So a seed leads along the same way on a slow machine, too.
class RandomWalk
{
public:
    /// Tells each step before it is done.
    using Tell = void (*)(int number, const char *name, unsigned a, unsigned b);

    RandomWalk(unsigned seed, Tell tell) : m_random(seed), m_tell(tell), m_project(QStringLiteral(TEST_PROJECT))
    {
        TestClock::freeze(now());
        makeHandler(0, 0);
        makeSession(0, 0);
        makeProvider(0, 0);
    }
    RandomWalk(const RandomWalk &) = delete;
    RandomWalk &operator=(const RandomWalk &) = delete;
    ~RandomWalk()
    {
        loseHandler(0, 0);
        loseSession(0, 0);
        loseProvider(0, 0);
    }

    /// @return what is not as it should be; empty at the end of a good walk.
    [[nodiscard]] QString walk(int steps)
    {
        while (m_step < steps) {
            const QString wrong = go();
            if (!wrong.isEmpty())
                return wrong;
        }
        return m_service.complaint();
    }

private:
    struct Step
    {
        const char *name;
        /// How often it is taken.
        int weight;
        void (RandomWalk::*take)(unsigned a, unsigned b);
    };

    [[nodiscard]] static const QList<Step> &steps()
    {
        using Self = RandomWalk;
        static const QList<Step> all = {
            {"start", 8, &Self::start},
            {"stop", 3, &Self::stop},
            {"showInitScreen", 6, &Self::showInitScreen},
            {"slot", 20, &Self::callSlot},
            {"commit", 5, &Self::commit},
            {"card", 8, &Self::readCard},
            {"card in the session", 2, &Self::leaveCard},
            {"press", 20, &Self::press},
            {"type", 8, &Self::type},
            {"answer", 16, &Self::answer},
            {"time", 12, &Self::letTimePass},
            {"settings page", 2, &Self::openSettings},
            {"settings page gone", 1, &Self::loseSettings},
            {"message ends", 1, &Self::setMessageEnds},
            {"session", 4, &Self::makeSession},
            {"provider", 4, &Self::makeProvider},
            {"session gone", 2, &Self::loseSession},
            {"provider gone", 2, &Self::loseProvider},
            {"form gone", 2, &Self::loseForm},
            {"view gone", 2, &Self::loseView},
            {"controllers gone", 2, &Self::loseControllers},
            {"question's viewer gone", 1, &Self::loseHelperViewer},
            {"load helper gone", 1, &Self::loseLoadHelper},
            {"handler gone", 1, &Self::loseHandler},
            {"reaction", 4, &Self::setReaction},
        };
        return all;
    }

    QString go()
    {
        static const int weights =
            std::accumulate(steps().cbegin(), steps().cend(), 0, [](int sum, const Step &s) { return sum + s.weight; });
        int at = static_cast<int>(draw() % static_cast<unsigned>(weights));
        auto step = steps().cbegin();
        for (; at >= step->weight; ++step)
            at -= step->weight;
        const unsigned a = draw();
        const unsigned b = draw();
        m_tell(++m_step, step->name, a, b);
        if (!m_handler)
            makeHandler(0, 0);
        (this->*step->take)(a, b);
        settle();
        return whatIsWrong();
    }
    unsigned draw() { return static_cast<unsigned>(m_random() % 1'000); }

    // The host

    [[nodiscard]] ParkomatPluginHandler &handler() const
    {
        ParkomatPluginHandler *const handler = m_handler;
        if (handler == nullptr)
            qFatal("there is no handler");
        return *handler;
    }
    void makeHandler(unsigned /*a*/, unsigned /*b*/)
    {
        m_handler = new ParkomatPluginHandler;
        m_starts = 0;
    }
    void start(unsigned a, unsigned b)
    {
        ++m_starts;
        IPayWidget *const form = handler().start(a % 8 == 0 ? nullptr : m_provider.get(), Currency(),
                                                 b % 8 == 0 ? nullptr : m_session.get());
        auto *const viewer = static_cast<PluginBaseFormViewer *>(form->widget());
        if (m_form == viewer)
            return;
        m_form = viewer;
        viewer->resize(800, 600);
        viewer->show();
        QObject::connect(viewer, &PluginBaseFormViewer::needCancel, &m_context, [this] { react(); });
        QObject::connect(viewer, &PluginBaseFormViewer::needTick, &m_context, [this] { react(); });
        QObject::connect(viewer, &PluginBaseFormViewer::needShowPayDetail, &m_context, [this] { react(); });
    }
    void stop(unsigned /*a*/, unsigned /*b*/) { handler().stop(); }
    void showInitScreen(unsigned /*a*/, unsigned /*b*/) { handler().showInitScreen(); }
    void callSlot(unsigned a, unsigned b)
    {
        const QMetaObject &meta = ParkomatPluginHandler::staticMetaObject;
        const int slots = meta.methodCount() - meta.methodOffset();
        const QMetaMethod slot = meta.method(meta.methodOffset() + static_cast<int>(a) % slots);
        QVariantList values;
        for (int i = 0; i < slot.parameterCount(); ++i)
            values.append(argument(slot.parameterType(i), b));
        const auto generic = [&values](int i) {
            return i < values.size() ? QGenericArgument(values.at(i).typeName(), values.at(i).constData())
                                     : QGenericArgument();
        };
        slot.invoke(m_handler, generic(0), generic(1));
    }
    [[nodiscard]] static QVariant argument(int type, unsigned b)
    {
        static const int codes[] = {-1, 0, 1, 2, 3, 110};
        switch (type) {
        case QMetaType::Int:
            return codes[b % std::size(codes)];
        case QMetaType::QString:
            return WalkCustomer::text(b);
        case QMetaType::QVariantMap:
            return card(b);
        default:
            return QVariant(type, nullptr);
        }
    }
    /// Commits, takes some steps meanwhile, and lets the time limit pass.
    void commit(unsigned a, unsigned /*b*/)
    {
        if (m_depth == MOST_COMMITS)
            return;
        ++m_depth;
        const Meanwhile meanwhile({{[] { return true; },
                                    [this] {
                                        for (int i = 0; i < 3 && m_wrong.isEmpty(); ++i)
                                            m_wrong = go();
                                    }},
                                   {[] { return true; },
                                    [] {
                                        TestClock::freeze(now().addSecs(3'600));
                                        TestClock::skip(1'000);
                                    }}});
        PayPack pack;
        for (unsigned i = 0; i < a % 3; ++i)
            pack.addPayment(HandlerBench::payment(i + 1, 5'000));
        handler().doPaymentPredProcessing(m_session.get(), a % 5 == 0 ? nullptr : &pack);
        TestClock::freeze(now());
        --m_depth;
    }
    void openSettings(unsigned a, unsigned /*b*/)
    {
        IPayByProviderSettingsWidget *const page = handler().getSettingsWidget();
        m_settings = dynamic_cast<QWidget *>(page);
        m_settings->setParent(&m_menu);
        if (a % 2 == 0)
            page->saveSettings();
        // What was saved must not lead away from the test's service.
        m_service.use();
    }
    void setMessageEnds(unsigned a, unsigned b)
    {
        handler().setMessageReciever(a % 2 == 0 ? &m_context : nullptr, SLOT(deleteLater()));
        handler().setMessageSender(b % 2 == 0 ? m_session.get() : nullptr,
                                   SIGNAL(newParcomatCardDataCommand(QString, QVariantMap)));
    }
    /// What the host does at the form's next signal.
    void setReaction(unsigned a, unsigned /*b*/)
    {
        using Self = RandomWalk;
        static constexpr void (Self::*reactions[])(unsigned, unsigned) = {
            &Self::stop,           &Self::start,           &Self::loseHandler,
            &Self::loseForm,       &Self::loseView,        &Self::loseSession,
            &Self::loseProvider,   &Self::loseControllers, &Self::loseHelperViewer,
            &Self::loseLoadHelper, &Self::showInitScreen,  &Self::makeSession};
        m_reaction = reactions[a % std::size(reactions)];
    }
    void react()
    {
        const auto reaction = std::exchange(m_reaction, nullptr);
        if (reaction != nullptr && m_handler)
            (this->*reaction)(1, 1);
    }

    // What comes and goes

    void makeSession(unsigned /*a*/, unsigned /*b*/) { m_session = std::make_unique<SessionManager>(&m_project); }
    void makeProvider(unsigned /*a*/, unsigned /*b*/)
    {
        m_provider = std::make_unique<Provider>(HandlerBench::PROVIDER_ID, QStringLiteral("Парковка"));
        m_provider->setParameters(HandlerBench::parametersNamed({"card_num", "SummToPay", "UIN"}));
    }
    void loseSession(unsigned /*a*/, unsigned /*b*/) { m_session.reset(); }
    void loseProvider(unsigned /*a*/, unsigned /*b*/) { m_provider.reset(); }
    void loseForm(unsigned /*a*/, unsigned /*b*/) { delete m_form; }
    void loseView(unsigned /*a*/, unsigned /*b*/)
    {
        if (const FormViewer *const viewer = HandlerBench::topViewerOf(m_form))
            delete viewer->getUi(viewer->currentView());
    }
    void loseSettings(unsigned /*a*/, unsigned /*b*/) { delete m_settings; }
    void loseControllers(unsigned /*a*/, unsigned /*b*/)
    {
        qDeleteAll(handler().findChildren<MessageWidgetController *>());
        qDeleteAll(handler().findChildren<PluginProviderParameterInputController *>());
    }
    void loseHelperViewer(unsigned /*a*/, unsigned /*b*/) { delete handler().helperViewer(); }
    void loseLoadHelper(unsigned /*a*/, unsigned /*b*/) { delete handler().findChild<PluginViewLoadHelper *>(); }
    /// The host takes the form and the page away, too, which nobody else would.
    void loseHandler(unsigned /*a*/, unsigned /*b*/)
    {
        delete m_handler;
        delete m_form;
        delete m_settings;
    }

    // Reader, customer, cash service, time

    [[nodiscard]] static QVariantMap card(unsigned a)
    {
        switch (a % 4) {
        case 0:
            return {};
        case 1:
            return {{QStringLiteral("id"), QVariantMap()}, {QStringLiteral("pdata"), QStringLiteral("1")}};
        default:
            return HandlerBench::demoCard();
        }
    }
    void readCard(unsigned a, unsigned /*b*/)
    {
        if (m_session)
            Q_EMIT m_session->newParcomatCardDataCommand(QString(), card(a));
    }
    void leaveCard(unsigned a, unsigned /*b*/)
    {
        if (m_session)
            m_session->setPluginsData({{QString::number(HandlerBench::PROVIDER_ID), card(a)}});
    }
    void press(unsigned a, unsigned /*b*/) { WalkCustomer::press(m_form, a); }
    void type(unsigned a, unsigned b) { WalkCustomer::type(m_form, a, b % 4 == 0); }
    void answer(unsigned a, unsigned b) { m_service.answer(handler(), a, b); }
    void letTimePass(unsigned a, unsigned /*b*/)
    {
        static const int lengths[] = {100, 1'000, 2'500, 16'000, 61'000};
        TestClock::skip(lengths[a % std::size(lengths)]);
        QCoreApplication::processEvents();
    }

    // What must hold

    /// Lets everything happen that needs no time.
    void settle()
    {
        waitUntil([this] { return m_service.hasAllOf(m_handler); });
        QCoreApplication::processEvents();
        deleteReleased();
    }
    template <typename Object>
    [[nodiscard]] int count() const
    {
        return m_handler ? m_handler->findChildren<Object *>(QString(), Qt::FindDirectChildrenOnly).size() : 0;
    }
    [[nodiscard]] QString whatIsWrong() const
    {
        if (!m_wrong.isEmpty())
            return m_wrong;
        // What a commit lets go of goes behind it.
        if (count<MessageWidgetController>() > 2 + m_depth)
            return QStringLiteral("%1 message controllers").arg(count<MessageWidgetController>());
        if (count<PluginProviderParameterInputController>() > 1)
            return QStringLiteral("more than one input controller");
        if (count<PluginViewLoadHelper>() > 1)
            return QStringLiteral("more than one load helper");
        if (m_handler && m_handler->findChildren<QNetworkAccessManager *>().size() > m_starts + 1)
            return QStringLiteral("more clients than payments");
        if (m_handler && m_handler->helperViewer() != nullptr && m_handler->helperViewer()->parent() != m_form)
            return QStringLiteral("a question over nothing");
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const QWidget *window : windows) {
            if (window != m_form && window != &m_menu)
                return QStringLiteral("a window left behind: ") + QLatin1String(window->metaObject()->className());
        }
        return QString();
    }

    [[nodiscard]] static QDateTime now() { return QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)); }

    static constexpr int MOST_COMMITS = 2;

    std::mt19937 m_random;
    Tell m_tell;
    int m_step = 0;
    int m_starts = 0;
    int m_depth = 0;
    QString m_wrong;
    WalkService m_service;
    FormProject m_project;
    QObject m_context;
    QPointer<ParkomatPluginHandler> m_handler;
    std::unique_ptr<SessionManager> m_session;
    std::unique_ptr<Provider> m_provider;
    QPointer<PluginBaseFormViewer> m_form;
    QWidget m_menu;
    QPointer<QWidget> m_settings;
    void (RandomWalk::*m_reaction)(unsigned, unsigned) = nullptr;
};
