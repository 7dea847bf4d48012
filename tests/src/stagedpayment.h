// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "fragilepayment.h"
#include "paymentlook.h"

#include <functional>

/// One payment that is brought to a stage, where an event comes: what is seen of it then. Stages, events and outcomes
/// are explained in data/handler-matrix.txt.
///
/// The cash service answers when it is told to. No time is waited for: both clocks are the test's.
class StagedPayment
{
public:
    [[nodiscard]] static QStringList stages() { return namesOf(stageTable()); }
    [[nodiscard]] static QStringList events() { return namesOf(eventTable()); }

    StagedPayment()
    {
        TerminalAppSettings().setOnlineCheckTimeout(ONLINE_CHECK_SECONDS);
        ParkomatSettings().setParkingId(QStringLiteral("12"));
    }

    /// Makes the payment before this one, where the event is about its request.
    void precedeFor(const QString &event)
    {
        const bool isOvertaken = event.startsWith(QLatin1String("overtaken"));
        if (!isOvertaken && !event.startsWith(QLatin1String("late")))
            return;
        start();
        readFirstCard();
        m_payment.settle();
        if (!isOvertaken)
            stop();
        m_bench.newPayment();
        m_payment.settle();
    }

    void reach(const QString &stage)
    {
        for (const Stage &each : stageTable()) {
            if (QLatin1String(each.name) != stage)
                continue;
            if (each.before != nullptr)
                reach(QLatin1String(each.before));
            if (each.step != nullptr)
                (this->*each.step)();
        }
        m_payment.settle();
        m_stage = stage;
        Q_UNUSED(takeHappened())
    }

    /// @return "screen | happened | sent | held | later".
    [[nodiscard]] QString outcomeOf(const QString &event)
    {
        QStringList outcome;
        const auto act = [this, &event, &outcome] {
            m_sentBefore = m_payment.service().requests().size();
            perform(event);
            m_payment.settle();
            outcome = QStringList{PaymentLook::screen(m_bench), takeHappened(), QString(),
                                  PaymentLook::held(m_session, m_provider)};
            TestClock::skip(LATER_MS);
        };
        if (m_stage == QLatin1String("confirming")) {
            commitAnd(act);
        } else {
            act();
            QCoreApplication::processEvents();
        }
        m_payment.settle();
        outcome[2] = sent();
        outcome.append(takeHappened());
        return outcome.join(QStringLiteral(" | "));
    }

    /// Empty when the cash service was asked as it should be.
    [[nodiscard]] QString complaint() const { return m_payment.service().complaint(); }

private:
    using Step = void (StagedPayment::*)();
    struct Stage
    {
        const char *name;
        /// The stage that the step leads from.
        const char *before;
        Step step;
    };
    struct Event
    {
        const char *name;
        Step step;
    };

    [[nodiscard]] static QList<Stage> stageTable()
    {
        using Self = StagedPayment;
        return {{"before start", nullptr, nullptr},
                {"started", "before start", &Self::start},
                {"prompt", "started", &Self::showInitScreen},
                {"card number", "prompt", &Self::pressOk},
                {"card UID", "card number", &Self::typeNumber},
                {"checking", "prompt", &Self::readFirstCard},
                {"answered", "checking", &Self::answer},
                {"details", "answered", &Self::waitForDetails},
                {"confirming", "details", nullptr},
                {"confirmed", "details", &Self::commit},
                {"error", "checking", &Self::refuse},
                {"question", "checking", &Self::ask},
                {"stopped", "checking", &Self::stop}};
    }
    [[nodiscard]] static QList<Event> eventTable()
    {
        using Self = StagedPayment;
        return {{"card", &Self::readCard},
                {"start", &Self::start},
                {"start, card", &Self::startAndReadCard},
                {"stop", &Self::stop},
                {"cancel, yes", &Self::askAndSayYes},
                {"cancel, no", &Self::askAndSayNo},
                {"answer", &Self::answer},
                {"error", &Self::refuse},
                {"late answer", &Self::answerLate},
                {"late error", &Self::refuseLate},
                {"overtaken answer", &Self::answerLate},
                {"overtaken error", &Self::refuseLate},
                {"form gone", &Self::loseForm},
                {"view gone", &Self::loseView},
                {"controller gone", &Self::loseControllers},
                {"session gone", &Self::loseSession},
                {"provider gone", &Self::loseProvider},
                {"handler gone", &Self::loseHandler},
                {"time passes", &Self::letTimePass}};
    }
    template <typename Entry>
    [[nodiscard]] static QStringList namesOf(const QList<Entry> &entries)
    {
        QStringList names;
        for (const Entry &entry : entries)
            names.append(QLatin1String(entry.name));
        return names;
    }
    void perform(const QString &event)
    {
        for (const Event &each : eventTable()) {
            if (QLatin1String(each.name) == event)
                (this->*each.step)();
        }
    }

    // What host, customer and time do

    void start()
    {
        m_payment.start();
        m_session = &m_bench.session();
        m_provider = &m_bench.provider();
        PluginBaseFormViewer *const form = m_bench.form();
        if (form == m_knownForm)
            return;
        m_knownForm = form;
        QObject::connect(form, &PluginBaseFormViewer::needShowPayDetail, form, [this, form] {
            if (!m_isCommitting)
                form->showPayDetail();
        });
    }
    void showInitScreen() { m_payment.plugin().showInitScreen(); }
    void pressOk() { QVERIFY(m_bench.press("ok")); }
    void typeNumber() { QVERIFY(m_bench.type(NamedCard::all().at(2).number)); }
    void readFirstCard() { m_bench.readCard(NamedCard::all().at(0).data()); }
    void readCard() { m_bench.readCard(NamedCard::all().at(1).data()); }
    void startAndReadCard()
    {
        start();
        readCard();
    }
    void stop() { m_payment.plugin().stop(); }
    void ask()
    {
        m_bench.permitCancel();
        if (m_bench.buttons() == QLatin1String("yes no"))
            m_happened.append(QStringLiteral("asked"));
    }
    void askAndSayYes()
    {
        ask();
        QCOMPARE(m_bench.press("yes"), !m_happened.isEmpty());
    }
    void askAndSayNo()
    {
        ask();
        QCOMPARE(m_bench.press("no"), !m_happened.isEmpty());
    }
    void waitForDetails() { leap(LATER_MS); }
    void commit()
    {
        commitAnd([this] {
            answer();
            TestClock::skip(LATER_MS);
        });
    }
    /// The longest that a message of its kind stays, and a second.
    void letTimePass()
    {
        const bool isChecking = PaymentLook::screen(m_bench) == QLatin1String("checking");
        leap((isChecking ? ONLINE_CHECK_SECONDS : LONGEST_FIXED_SECONDS) * 1'000 + 1'000);
    }

    // What becomes of host objects

    void loseForm()
    {
        m_payment.loseForm();
        answerInFlight();
    }
    void loseView()
    {
        const FormViewer *const viewer = m_bench.topViewer();
        QWidget *const current = viewer->getUi(viewer->currentView());
        delete (current != nullptr ? current : viewer->getUi(QStringLiteral("messagesView")));
        answerInFlight();
    }
    void loseControllers()
    {
        m_payment.loseControllers();
        answerInFlight();
    }
    void loseSession()
    {
        m_payment.loseSession();
        answerInFlight();
    }
    void loseProvider()
    {
        m_payment.loseProvider();
        answerInFlight();
    }
    void loseHandler()
    {
        m_payment.loseHandler();
        waitUntil([this] { return m_payment.service().openConnections() == 0; });
    }

    // What the cash service does

    void answer()
    {
        m_payment.answerLast(m_payment.isPayInFlight() ? FragilePayment::paid() : CheckAnswer::own().body);
    }
    void refuse() { m_payment.answerLast(FragilePayment::refusal("own error")); }
    void answerLate() { m_payment.answer(0, CheckAnswer::late().body); }
    void refuseLate() { m_payment.answer(0, FragilePayment::refusal("late error")); }
    void answerInFlight()
    {
        if (m_payment.unanswered() > 0)
            answer();
    }

    /// Lets act happen inside of the host's commit. The call may return by itself then; where it does not, its time
    /// limit passes.
    void commitAnd(const std::function<void()> &act)
    {
        int passes = 0;
        const Meanwhile meanwhile({{[this] { return m_payment.isPayInFlight(); }, act},
                                   // A poll that was due has come before.
                                   {[&passes] { return ++passes > 5; },
                                    [] {
                                        FragilePayment::passTheTimeLimit();
                                        TestClock::skip(LATER_MS);
                                    }}});
        m_isCommitting = true;
        m_bench.commit({HandlerBench::payment(1, 15'000)});
        m_isCommitting = false;
        FragilePayment::stopTheClock();
        if (!meanwhile.isDone())
            m_happened.append(QStringLiteral("returned"));
    }

    // What is seen

    [[nodiscard]] QString takeHappened()
    {
        QStringList all = std::exchange(m_happened, {});
        for (const QString &signal : m_bench.takeSignals()) {
            if (signal == QLatin1String("needCancel"))
                all.append(QStringLiteral("cancel"));
            else if (signal == QLatin1String("needShowPayDetail"))
                all.append(QStringLiteral("details"));
        }
        return all.join(QStringLiteral(", "));
    }
    [[nodiscard]] QString sent() const
    {
        QStringList all;
        for (int i = m_sentBefore; i < m_payment.service().requests().size(); ++i)
            all.append(PaymentLook::sent(m_payment.service().requests().at(i)));
        return all.join(QStringLiteral(", "));
    }

    static constexpr int ONLINE_CHECK_SECONDS = 45;
    static constexpr int LONGEST_FIXED_SECONDS = 30;
    /// Longer than it takes to the details and to a poll, shorter than any message stays.
    static constexpr int LATER_MS = 3'000;

    FragilePayment m_payment;
    HandlerBench &m_bench = m_payment.bench();
    QPointer<PluginBaseFormViewer> m_knownForm;
    QPointer<SessionManager> m_session = &m_bench.session();
    QPointer<Provider> m_provider = &m_bench.provider();
    QString m_stage;
    QStringList m_happened;
    bool m_isCommitting = false;
    int m_sentBefore = 0;
};
