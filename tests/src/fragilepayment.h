// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "guiclient/pluginproviderparameterinputcontroller.h"
#include "handlerchildren.h"
#include "support/handlerbench.h"
#include "support/testclock.h"

/// A payment through a handler of its own, each part of which can be taken away at any moment, and a cash service that
/// answers when it is told to.
///
/// No time is waited for: the wall clock stands still, and TestClock::skip() leaves out what timers would take.
class FragilePayment
{
public:
    FragilePayment()
    {
        stopTheClock();
        HandlerBench::useService(m_service.port());
        m_service.planForAll(RawAnswer::held());
    }
    ~FragilePayment()
    {
        delete m_handler;
        // It is not the handler's.
        delete m_form;
    }
    FragilePayment(const FragilePayment &) = delete;
    FragilePayment &operator=(const FragilePayment &) = delete;

    /// Null once it has gone.
    [[nodiscard]] ParkomatPluginHandler *handler() const { return m_handler; }
    [[nodiscard]] IPayByProvider &plugin() const { return *m_bench.plugin(); }
    [[nodiscard]] HandlerBench &bench() { return m_bench; }
    [[nodiscard]] const RawServer &service() const { return m_service; }

    void start()
    {
        m_bench.start();
        m_form = m_bench.form();
    }

    // What goes

    void loseHandler() { delete m_handler; }
    void loseForm() { delete m_form; }
    void loseSession() { m_bench.loseSession(); }
    void loseProvider() { m_bench.loseProvider(); }
    /// Of messages and of hand input.
    void loseControllers()
    {
        if (!m_handler)
            return;
        qDeleteAll(m_handler->findChildren<MessageWidgetController *>());
        qDeleteAll(m_handler->findChildren<PluginProviderParameterInputController *>());
    }

    // The cash service

    /// Requests that the plugin has posted and that are not answered.
    [[nodiscard]] int unanswered() const { return ::unanswered(m_handler).size(); }
    [[nodiscard]] bool isPayInFlight() const
    {
        return unanswered() > 0 && !m_service.requests().isEmpty() &&
               m_service.requests().constLast().line().contains("/ParkInfoPay ");
    }
    /// Answers a request, counted from 0, and lets the plugin see it.
    void answer(int request, const QByteArray &body)
    {
        const int before = unanswered();
        m_service.send(m_service.requests().at(request).connection, {RawAnswer::http("200 OK", body)});
        ++m_answered;
        waitUntil([this, before] { return unanswered() < before; });
    }
    void answerLast(const QByteArray &body) { answer(m_service.requests().size() - 1, body); }

    [[nodiscard]] static QByteArray paid()
    {
        return QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"1\"/>");
    }
    [[nodiscard]] static QByteArray refusal(const QByteArray &text)
    {
        return "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"4\"><ErrorInfo>" + text +
               "</ErrorInfo></Response>";
    }

    // Time

    /// Lets everything happen that needs no time.
    void settle() const
    {
        waitUntil([this] { return m_service.requests().size() >= m_answered + unanswered(); });
        QCoreApplication::processEvents();
        deleteReleased();
    }
    static void stopTheClock() { TestClock::freeze(now()); }
    /// Ends commits that wait, at their next poll.
    static void passTheTimeLimit() { TestClock::freeze(now().addSecs(3'600)); }

private:
    [[nodiscard]] static QDateTime now() { return QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)); }

    RawServer m_service;
    QPointer<ParkomatPluginHandler> m_handler = new ParkomatPluginHandler;
    HandlerBench m_bench{m_handler};
    QPointer<PluginBaseFormViewer> m_form;
    int m_answered = 0;
};
