// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginbaseformviewer.h"

#include "guiclient/touchscrollarea.h"
#include "support/testcase.h"
#include "views.h"

#include <QApplication>
#include <QLabel>
#include <QScrollBar>
#include <QSignalSpy>

namespace {
const QString TYPE = QStringLiteral("cardRequest");
const QVariantMap MESSAGE{{QStringLiteral("a"), 1}};

/// The terminal's bus, as a form sees it.
class Bus : public QObject
{
    Q_OBJECT

public:
    QStringList got;

public Q_SLOTS:
    void take(const QString &type, const QVariantMap &message) { got.append(type + QString::number(message.size())); }

Q_SIGNALS:
    void arrived(const QString &type, const QVariantMap &message);
};

/// A payment's form and what its details say.
class Form
{
public:
    Form() : provider(std::make_unique<Provider>(18156, QStringLiteral("Парковка")))
    {
        provider->setParameters(Views::filledParameters());
        viewer = std::make_unique<PluginBaseFormViewer>(&session, provider.get(), Currency(), TYPE);
        viewer->resize(1024, 768);
        viewer->show();
    }

    [[nodiscard]] QStringList texts(const char *name) const
    {
        QStringList texts;
        const auto labels = viewer->findChildren<QLabel *>(QLatin1String(name));
        for (const QLabel *label : labels) {
            if (label->isVisible())
                texts.append(label->text());
        }
        return texts;
    }

    SessionManager session;
    std::unique_ptr<Provider> provider;
    std::unique_ptr<PluginBaseFormViewer> viewer;
};
} // namespace

/// The payment form: its details, and how messages pass through it.
class PluginBaseFormViewerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void form_new_tellsWhatItWasGiven()
    {
        const Form form;
        IPayWidget &side = *form.viewer;
        QCOMPARE(side.widget(), form.viewer.get());
        QCOMPARE(form.viewer->session(), &form.session);
        QCOMPARE(form.viewer->messageType(), TYPE);
        QVERIFY(form.viewer->currency() == Currency());
        QCOMPARE(form.viewer->paidIn().value(), 0);
        QCOMPARE(form.viewer->currentView(), QString());
        form.viewer->setInfo({15, QStringLiteral("n"), {}, {}});
        QCOMPARE(form.viewer->info().id, 15);
    }

    void signals_ofTheHostsContract_connectByName()
    {
        const Form form;
        IPayWidget &side = *form.viewer;
        for (const char *signal : {SIGNAL(needCancel()), SIGNAL(needTick()), SIGNAL(needShowPayDetail())}) {
            const QSignalSpy spy(side.widget(), signal);
            QVERIFY(spy.isValid());
        }
        const QSignalSpy cancels(form.viewer.get(), &PluginBaseFormViewer::needCancel);
        Q_EMIT form.viewer->needCancel();
        QCOMPARE(cancels.size(), 1);
    }

    void details_shown_areTheProvidersParameters()
    {
        const Form form;
        form.viewer->setInfo({15, {}, {}, QStringLiteral("8 800 100-20-30")});
        form.viewer->setPaidIn(FixNumber(100, 10000));
        form.viewer->showPayDetail();
        QCOMPARE(form.viewer->currentView(), QLatin1String(PluginBaseFormViewer::PAY_DETAIL_VIEW));
        QCOMPARE(form.texts("sumDue"), QStringList(QStringLiteral("150.00 руб.")));
        QCOMPARE(form.texts("paidIn"), QStringList(QStringLiteral("Внесено: 100.00 руб.")));
        QCOMPARE(form.texts("parameterLabel").join(QLatin1Char('|')),
                 QStringLiteral("Номер карты|Терминал|Парковка|Дата въезда|Время въезда|Номер операции"));
        QCOMPARE(form.texts("parameterValue").join(QLatin1Char('|')),
                 QStringLiteral("0412 7781 2203|15|7|2024-03-07|11:35:09|8a0f2c77-15"));
        QVERIFY(form.texts("phone").value(0).contains(QStringLiteral("8 800 100-20-30")));
    }

    void details_open_followParametersMoneyAndInfo()
    {
        const Form form;
        form.viewer->showPayDetail();
        QCOMPARE(form.texts("paidIn"), QStringList(QStringLiteral("Внесено: 0.00 руб.")));
        QCOMPARE(form.texts("phone"), QStringList());
        form.viewer->setPaidIn(FixNumber(100, 5050));
        QCOMPARE(form.viewer->paidIn().value(), 5050);
        QCOMPARE(form.texts("paidIn"), QStringList(QStringLiteral("Внесено: 50.50 руб.")));
        form.viewer->setInfo({15, {}, {}, QStringLiteral("112")});
        QCOMPARE(form.texts("phone").size(), 1);
        form.provider->setParameters({Views::parameter("SummToPay", {}, QStringLiteral("7.00"))});
        QCOMPARE(form.texts("sumDue"), QStringList(QStringLiteral("7.00 руб.")));
        QCOMPARE(form.texts("parameterValue"), QStringList());
        form.provider->setParameters(Views::filledParameters());
        QCoreApplication::processEvents();
        QCOMPARE(form.texts("parameterValue").size(), 6);
    }

    void parameter_shown_hasItsBestLabel_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("checkLabel");
        QTest::addColumn<QString>("shown");
        QTest::newRow("check label") << "Введите номер"
                                     << "Номер"
                                     << "Номер";
        QTest::newRow("label") << "Номер карты"
                               << ""
                               << "Номер карты";
        QTest::newRow("name") << ""
                              << ""
                              << "card_num";
    }

    void parameter_shown_hasItsBestLabel()
    {
        QFETCH(QString, label);
        QFETCH(QString, checkLabel);
        QFETCH(QString, shown);
        ProviderParameter parameter = Views::parameter("card_num", label, {});
        parameter.setCheckLabel(checkLabel);
        const Form form;
        form.provider->setParameters({parameter});
        form.viewer->showPayDetail();
        QCOMPARE(form.texts("parameterLabel"), QStringList(shown));
        QCOMPARE(form.texts("parameterValue"), QStringList(QStringLiteral("—")));
        QCOMPARE(form.texts("sumDue"), QStringList(QStringLiteral("—")));
    }

    void sumDue_belowZero_isShownAsNothing_data()
    {
        QTest::addColumn<QString>("value");
        for (const char *value : {"-0.01", "-5.00", "-150"})
            QTest::newRow(value) << QString::fromUtf8(value);
    }

    void sumDue_belowZero_isShownAsNothing()
    {
        QFETCH(QString, value);
        const Form form;
        form.provider->setParameters({Views::parameter("SummToPay", {}, value)});
        form.viewer->showPayDetail();
        QCOMPARE(form.texts("sumDue"), QStringList(QStringLiteral("0.00 руб.")));
        QCOMPARE(form.provider->parameters().first().value(), value);
    }

    void sumDue_anyText_isShownAsItIs_data()
    {
        QTest::addColumn<QString>("value");
        for (const char *value : {"0.00", "много", "-", "-много", "92233720368547758.07", "<b>1</b>"})
            QTest::newRow(value) << QString::fromUtf8(value);
    }

    void sumDue_anyText_isShownAsItIs()
    {
        QFETCH(QString, value);
        const Form form;
        form.provider->setParameters({Views::parameter("SummToPay", {}, value)});
        form.viewer->showPayDetail();
        QCOMPARE(form.texts("sumDue"), QStringList(value + QStringLiteral(" руб.")));
    }

    void parameters_tooMany_scrollUnderTheFinger()
    {
        const Form form;
        QList<ProviderParameter> many;
        for (int i = 0; i < 60; ++i)
            many.append(Views::parameter("p", QStringLiteral("Поле %1").arg(i), QString::number(i)));
        form.provider->setParameters(many);
        form.viewer->showPayDetail();
        QVERIFY(QTest::qWaitForWindowExposed(form.viewer.get()));
        QCoreApplication::processEvents();
        const auto *area = form.viewer->findChild<TouchScrollArea *>();
        QCOMPARE(area->verticalScrollBar()->value(), 0);
        QVERIFY(area->verticalScrollBar()->maximum() > 0);
        // From one label upwards, and further than there is.
        const QPoint start = area->mapTo(form.viewer.get(), QPoint(100, 200));
        QWindow *window = form.viewer->windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, start);
        QTest::mouseMove(window, start - QPoint(0, 150));
        QTRY_COMPARE(area->verticalScrollBar()->value(), 150);
        QTest::mouseMove(window, start - QPoint(0, 190));
        QTRY_COMPARE(area->verticalScrollBar()->value(), 190);
        QTest::mouseRelease(window, Qt::LeftButton, {}, start - QPoint(0, 190));
    }

    void details_hidden_leaveOtherViewsUp()
    {
        const Form form;
        form.viewer->hidePayDetail();
        form.viewer->showPayDetail();
        form.viewer->hidePayDetail();
        QCOMPARE(form.viewer->currentView(), QString());
        form.viewer->showPayDetail();
        form.viewer->addView(new QWidget, QStringLiteral("other"));
        form.viewer->hidePayDetail();
        QCOMPARE(form.viewer->currentView(), QStringLiteral("other"));
    }

    void provider_deleted_countsAsNone()
    {
        Form form;
        form.viewer->showPayDetail();
        form.provider.reset();
        form.viewer->setInfo({});
        form.viewer->showPayDetail();
        QCOMPARE(form.texts("sumDue"), QStringList(QStringLiteral("—")));
        QCOMPARE(form.texts("parameterValue"), QStringList());
        PluginBaseFormViewer without(nullptr, nullptr, Currency(), QString());
        without.showPayDetail();
        QCOMPARE(without.currentView(), QLatin1String(PluginBaseFormViewer::PAY_DETAIL_VIEW));
    }

    void details_deleted_areMadeAgain()
    {
        const Form form;
        form.viewer->showPayDetail();
        delete form.viewer->getUi(form.viewer->currentView());
        form.provider->setParameters(Views::filledParameters());
        form.viewer->setPaidIn(FixNumber(100, 1));
        QVERIFY(form.texts("sumDue").isEmpty());
        form.viewer->showPayDetail();
        QCOMPARE(form.texts("sumDue").size(), 1);
        QCOMPARE(form.texts("paidIn"), QStringList(QStringLiteral("Внесено: 0.01 руб.")));
    }

    // Messages

    void receiver_set_getsTheFormsMessages()
    {
        const Form form;
        Bus first;
        Bus second;
        form.viewer->setMessageReciever(&first, SLOT(take(QString, QVariantMap)));
        Q_EMIT form.viewer->message(TYPE, MESSAGE);
        form.viewer->setMessageReciever(&second, SLOT(take(QString, QVariantMap)));
        Q_EMIT form.viewer->message(TYPE, MESSAGE);
        QCOMPARE(first.got, QStringList(TYPE + QStringLiteral("1")));
        QCOMPARE(second.got, first.got);
    }

    void sender_set_isHeard()
    {
        const Form form;
        Bus first;
        Bus second;
        const QSignalSpy received(form.viewer.get(), &PluginBaseFormViewer::messageReceived);
        form.viewer->setMessageSender(&first, SIGNAL(arrived(QString, QVariantMap)));
        Q_EMIT first.arrived(TYPE, MESSAGE);
        Q_EMIT first.arrived(QStringLiteral("another type"), MESSAGE);
        QCOMPARE(received.size(), 1);
        QCOMPARE(received.at(0).at(0).toMap(), MESSAGE);
        form.viewer->setMessageSender(&second, SIGNAL(arrived(QString, QVariantMap)));
        Q_EMIT first.arrived(TYPE, MESSAGE);
        QCOMPARE(received.size(), 1);
        Q_EMIT second.arrived(TYPE, MESSAGE);
        QCOMPARE(received.size(), 2);
    }

    void receiverAndSender_nullOrEmpty_letGoOfTheOneBefore_data()
    {
        QTest::addColumn<bool>("hasObject");
        QTest::addColumn<QByteArray>("signature");
        QTest::newRow("null and null") << false << QByteArray();
        QTest::newRow("null object") << false << QByteArray(SLOT(take(QString, QVariantMap)));
        QTest::newRow("null signature") << true << QByteArray();
        QTest::newRow("empty signature") << true << QByteArray("");
    }

    void receiverAndSender_nullOrEmpty_letGoOfTheOneBefore()
    {
        QFETCH(bool, hasObject);
        QFETCH(QByteArray, signature);
        const Form form;
        Bus bus;
        form.viewer->setMessageReciever(&bus, SLOT(take(QString, QVariantMap)));
        form.viewer->setMessageSender(&bus, SIGNAL(arrived(QString, QVariantMap)));
        const QSignalSpy received(form.viewer.get(), &PluginBaseFormViewer::messageReceived);
        const char *text = signature.isNull() ? nullptr : signature.constData();
        form.viewer->setMessageReciever(hasObject ? &bus : nullptr, text);
        form.viewer->setMessageSender(hasObject ? &bus : nullptr, text);
        Q_EMIT form.viewer->message(TYPE, MESSAGE);
        Q_EMIT bus.arrived(TYPE, MESSAGE);
        QVERIFY(bus.got.isEmpty());
        QCOMPARE(received.size(), 0);
    }

    void receiverOrSender_deleted_isDoneWithout()
    {
        const Form form;
        auto bus = std::make_unique<Bus>();
        form.viewer->setMessageReciever(bus.get(), SLOT(take(QString, QVariantMap)));
        form.viewer->setMessageSender(bus.get(), SIGNAL(arrived(QString, QVariantMap)));
        bus.reset();
        Q_EMIT form.viewer->message(TYPE, MESSAGE);
        form.viewer->setMessageReciever(nullptr, nullptr);
        form.viewer->setMessageSender(nullptr, nullptr);
    }

    void receiver_withoutThatSlot_isLogged()
    {
        const Form form;
        Bus bus;
        form.viewer->setMessageReciever(&bus, SLOT(nothing()));
        const QList<LogLine> lines = MessageLog::take();
        QVERIFY(!lines.isEmpty());
        QVERIFY(lines.at(0).text.contains(QStringLiteral("nothing")));
    }
};

WIDGET_TEST_MAIN(PluginBaseFormViewerTest)
#include "tst_pluginbaseformviewer.moc"
