// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginproviderparameterinputcontroller.h"
#include "guiclient/pluginviewloadhelper.h"
#include "handlerchildren.h"
#include "parkomataccessmanager.h"
#include "parkomatpluginsettingswidget.h"
#include "scriptedpayment.h"

#include <QApplication>

namespace {
const QString BUS_MESSAGE = QStringLiteral("tarvSchoolCardPluginRequest");

} // namespace

/// One payment after another through one handler: what start makes and reuses, what stop releases and leaves.
class HandlerLifecycleTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void start_first_makesTheFormAndShowsNothing()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        QVERIFY(bench.hasForm());
        QCOMPARE(bench.form()->session(), &bench.session());
        QCOMPARE(bench.form()->messageType(), BUS_MESSAGE);
        QVERIFY(bench.form()->currency() == bench.currency());
        QCOMPARE(bench.topView(), QString());
        QCOMPARE(bench.takeSignals(), QStringList());
        QCOMPARE(childrenOf<MessageWidgetController>(handler).size(), 0);
        QCOMPARE(childrenOf<ParkomatAccessManager>(handler).size(), 0);
        QVERIFY(handler.helperViewer() == nullptr);
    }

    void start_terminalDescription_isTheForms()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        TrelmInfo info;
        info.id = 4224;
        info.phone = QStringLiteral("8 800 000-00-00");
        handler.setTrelmInfo(info);
        bench.start();
        QCOMPARE(bench.form()->info().id, qint64(4224));
        QCOMPARE(bench.form()->info().phone, info.phone);
    }

    void start_providerAndCurrency_areTheForms()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        const auto sumDue = [&](const QString &amount, const Currency &currency) {
            bench.newPayment();
            ProviderParameter due;
            due.setName(QStringLiteral("SummToPay"));
            due.setValue(amount);
            bench.provider().setParameters({due});
            IPayWidget *const form = handler.start(&bench.provider(), currency, &bench.session());
            auto *const viewer = qobject_cast<PluginBaseFormViewer *>(form->widget());
            viewer->showPayDetail();
            return viewer->findChild<QLabel *>(QStringLiteral("sumDue"))->text();
        };
        QCOMPARE(sumDue(QStringLiteral("150.00"), {978, QStringLiteral("евро"), 2}), QStringLiteral("150.00 евро"));
        handler.stop();
        QCOMPARE(sumDue(QStringLiteral("9.90"), {398, QStringLiteral("тенге"), 2}), QStringLiteral("9.90 тенге"));
    }

    void start_repeated_reusesTheFormUnchanged()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        const QPointer<PluginBaseFormViewer> form = bench.form();
        SessionManager other(&bench.project());
        TrelmInfo info;
        info.id = 7;
        handler.setTrelmInfo(info);
        Currency currency;
        currency.code = 978;
        IPayWidget *const again = handler.start(&bench.provider(), currency, &other);
        QCOMPARE(again->widget(), form.data());
        QCOMPARE(form->session(), &bench.session());
        QCOMPARE(form->info().id, qint64(0));
        QCOMPARE(form->currency().code, 643);
    }

    void start_nothingGiven_givesAForm()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        IPayWidget *const form = handler.start(nullptr, Currency(), nullptr);
        QVERIFY(form != nullptr);
        handler.showInitScreen();
        QCOMPARE(qobject_cast<FormViewer *>(form->widget())->getUi(QStringLiteral("messagesView")), nullptr);
    }

    void start_afterStop_makesAnotherFormAndKeepsTheLoadHelper()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        const QPointer<PluginBaseFormViewer> first = bench.form();
        const auto *const helper = handler.findChild<PluginViewLoadHelper *>();
        QVERIFY(helper != nullptr);
        QCOMPARE(helper->pluginId(), 2023);
        QCOMPARE(helper->pluginStringId(), QStringLiteral("tarvSchoolCardPlugin"));
        QCOMPARE(helper->projectDir(), bench.project().projectDir());
        QCOMPARE(helper->viewer(), first.data());

        handler.stop();
        deleteReleased();
        QVERIFY(first.isNull());
        bench.newPayment();
        bench.session().setActiveProject(nullptr);
        bench.start();
        QVERIFY(bench.hasForm());
        // Deliberately: the first payment's, with that one's project, and without a viewer by now.
        QCOMPARE(handler.findChildren<PluginViewLoadHelper *>(),
                 QList<PluginViewLoadHelper *>{handler.findChild<PluginViewLoadHelper *>()});
        QCOMPARE(handler.findChild<PluginViewLoadHelper *>(), helper);
        QCOMPARE(helper->projectDir(), bench.project().projectDir());
        QVERIFY(helper->viewer() == nullptr);
    }

    void start_noProject_leavesTheLoadHelperWithoutFolder()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.session().setActiveProject(nullptr);
        bench.start();
        QCOMPARE(handler.findChild<PluginViewLoadHelper *>()->projectDir(), QString());
    }

    void start_twiceOnOneSession_aCommandArrivesTwice()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        bench.start();
        service.hold();
        service.hold();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(service.requests(), 2);
        // The connection of a start lasts as long as handler and session do.
        handler.stop();
        bench.start();
        for (int i = 0; i < 3; ++i)
            service.hold();
        bench.readCard(HandlerBench::demoCard());
        WAIT_FOR(service.requests(), 5);
        QCOMPARE(service.complaint(), QString());
    }

    void start_onAnotherSession_leavesTheFirstOneConnected()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        SessionManager earlier(&bench.project());
        handler.start(&bench.provider(), Currency(), &earlier);
        bench.start();
        service.hold();
        Q_EMIT earlier.newParcomatCardDataCommand(QString(), HandlerBench::demoCard());
        WAIT_FOR(service.requests(), 1);
        QCOMPARE(service.complaint(), QString());
    }

    void client_eachPayment_isAnotherAndTheLastLivesOn()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        for (int payment = 1; payment <= 3; ++payment) {
            bench.newPayment();
            bench.start();
            QCOMPARE(childrenOf<ParkomatAccessManager>(handler).size(), payment - 1);
            service.hold();
            service.hold();
            bench.readCard(HandlerBench::demoCard());
            bench.readCard(HandlerBench::demoCard());
            QCOMPARE(childrenOf<ParkomatAccessManager>(handler).size(), payment);
            WAIT_FOR(service.requests(), 2 * payment);
            handler.stop();
        }
    }

    void client_lateAnswer_reachesTheNextPayment()
    {
        NextPayment next;
        QCOMPARE(next.bench.messageText(), QStringLiteral("Приложите парковочную карту"));
        next.service.release(0, ScriptedService::check(12'300));
        WAIT_FOR(next.bench.parameter(QStringLiteral("SummToPay")), QStringLiteral("123.00"));
        QCOMPARE(next.bench.messageText(), QString());
        letPass(2200);
        QCOMPARE(next.bench.outcome(), QStringList(QStringLiteral("needShowPayDetail")));
    }

    void stop_nothingCreated_doesNothing()
    {
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        handler.stop();
        handler.stop();
        QVERIFY(handler.children().isEmpty());
    }

    void stop_everythingUp_releasesViewsAndLeavesTheRest()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        service.hold();
        handler.showCardNumberInputScreen();
        bench.readCard(HandlerBench::demoCard());
        handler.permitCancel();
        const QPointer<FormViewer> form = bench.form();
        const QPointer<FormViewer> helper = handler.helperViewer();
        const QPointer<ParkomatPluginSettingsWidget> settings =
            dynamic_cast<ParkomatPluginSettingsWidget *>(handler.getSettingsWidget());
        QWidget serviceMenu;
        settings->setParent(&serviceMenu);
        settings->show();
        serviceMenu.show();
        QCOMPARE(childrenOf<MessageWidgetController>(handler).size(), 2);

        handler.stop();
        // Hidden at once, deleted behind the host's back.
        QVERIFY(HandlerBench::isHidden(form));
        QVERIFY(HandlerBench::isHidden(helper));
        QVERIFY(HandlerBench::isHidden(settings));
        QVERIFY(handler.helperViewer() == nullptr);
        deleteReleased();
        QVERIFY(form.isNull());
        QVERIFY(helper.isNull());
        QVERIFY(settings.isNull());
        QCOMPARE(childrenOf<MessageWidgetController>(handler).size(), 1);
        QCOMPARE(childrenOf<PluginProviderParameterInputController>(handler).size(), 1);
        QCOMPARE(childrenOf<ParkomatAccessManager>(handler).size(), 1);
        QCOMPARE(childrenOf<PluginViewLoadHelper>(handler).size(), 1);
        WAIT_FOR(service.requests(), 1);
    }

    void stop_cardRead_isStillTheNextPaymentsCard()
    {
        ScriptedService service;
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        for (int payment = 0; payment < 2; ++payment) {
            bench.newPayment();
            bench.start();
            service.plan(ScriptedService::check());
            bench.readCard(payment == 0 ? HandlerBench::demoCard()
                                        : HandlerBench::card(QStringLiteral("4294967295"), QStringLiteral("2")));
            WAIT_FOR(bench.parameter(QStringLiteral("card_num")), QStringLiteral("0000123456"));
            QCOMPARE(service.sent(payment, QStringLiteral("CardUid")), QStringLiteral("78563412"));
            handler.stop();
        }
        QCOMPARE(service.complaint(), QString());
    }

    void formTemplate_anyName_isEmpty()
    {
        ParkomatPluginHandler handler;
        QCOMPARE(handler.pluginFormTemplate(QString(), QString()), QVariantMap());
        QCOMPARE(handler.pluginFormTemplate(QStringLiteral("tarvSchoolCardPlugin"), QStringLiteral("form")),
                 QVariantMap());
    }

    void settingsWidget_whileItLives_isTheSame()
    {
        ParkomatPluginHandler handler;
        const HandlerBench bench(&handler);
        IPayByProviderSettingsWidget *const first = handler.getSettingsWidget();
        QVERIFY(first != nullptr);
        QCOMPARE(handler.getSettingsWidget(), first);
        auto *const page = dynamic_cast<QWidget *>(first);
        QVERIFY(page->parent() == nullptr);
        QVERIFY(!page->isVisible());
        const QPointer<QWidget> guard(page);
        delete page;
        IPayByProviderSettingsWidget *const second = handler.getSettingsWidget();
        QVERIFY(second != nullptr);
        QVERIFY(guard.isNull());
        QCOMPARE(handler.getSettingsWidget(), second);
    }
};

WIDGET_TEST_MAIN(HandlerLifecycleTest)
#include "tst_handlerlifecycle.moc"
