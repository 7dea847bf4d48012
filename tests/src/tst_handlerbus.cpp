// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatpluginhandler.h"
#include "support/handlerbench.h"

#include <QApplication>
#include <QSignalSpy>

namespace {
/// What a host hands over for the bus: where messages go to, and where they come from.
class Bus : public QObject
{
    Q_OBJECT

public:
    QStringList sent;

Q_SIGNALS:
    void arrived(const QString &type, const QVariantMap &message);
    void delivered(const QString &type, const QVariantMap &message);

public Q_SLOTS:
    void send(const QString &type, const QVariantMap & /*message*/) { sent.append(QStringLiteral("send ") + type); }
    void post(const QString &type, const QVariantMap & /*message*/) { sent.append(QStringLiteral("post ") + type); }
};

const QString BUS_MESSAGE = QStringLiteral("tarvSchoolCardPluginRequest");
const char RECEIVER_SLOT[] = SLOT(send(QString, QVariantMap));
const char SENDER_SIGNAL[] = SIGNAL(arrived(QString, QVariantMap));

/// Something of the form's for the bus.
void say(const HandlerBench &bench)
{
    Q_EMIT bench.form()->message(QStringLiteral("toTheBus"), {});
}
} // namespace

/// Which ends of the host's bus the plugin hands on to its form.
class HandlerBusTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void start_receiverAndSender_areTheForms()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        Bus bus;
        QVERIFY(handler.setMessageReciever(&bus, RECEIVER_SLOT));
        QVERIFY(handler.setMessageSender(&bus, SENDER_SIGNAL));
        bench.start();
        const QSignalSpy received(bench.form(), &PluginBaseFormViewer::messageReceived);
        say(bench);
        Q_EMIT bus.arrived(BUS_MESSAGE, {});
        QCOMPARE(bus.sent, QStringList(QStringLiteral("send toTheBus")));
        QCOMPARE(received.size(), 1);
    }

    void start_receiverAndSenderGone_isWithoutThem()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        auto bus = std::make_unique<Bus>();
        handler.setMessageReciever(bus.get(), RECEIVER_SLOT);
        handler.setMessageSender(bus.get(), SENDER_SIGNAL);
        bus.reset();
        bench.start();
        QVERIFY(bench.hasForm());
    }

    void start_setTwice_hasTheLaterOnesAlone()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        Bus earlier;
        Bus later;
        handler.setMessageReciever(&earlier, RECEIVER_SLOT);
        handler.setMessageSender(&earlier, SENDER_SIGNAL);
        QVERIFY(handler.setMessageReciever(&later, SLOT(post(QString, QVariantMap))));
        QVERIFY(handler.setMessageSender(&later, SIGNAL(delivered(QString, QVariantMap))));
        bench.start();
        const QSignalSpy received(bench.form(), &PluginBaseFormViewer::messageReceived);
        say(bench);
        QCOMPARE(earlier.sent, QStringList());
        QCOMPARE(later.sent, QStringList(QStringLiteral("post toTheBus")));
        Q_EMIT earlier.arrived(BUS_MESSAGE, {});
        Q_EMIT earlier.delivered(BUS_MESSAGE, {});
        Q_EMIT later.arrived(BUS_MESSAGE, {});
        QCOMPARE(received.size(), 0);
        Q_EMIT later.delivered(BUS_MESSAGE, {});
        QCOMPARE(received.size(), 1);
    }

    void start_setBackToNone_isWithoutThem()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        Bus bus;
        handler.setMessageReciever(&bus, RECEIVER_SLOT);
        handler.setMessageSender(&bus, SENDER_SIGNAL);
        QVERIFY(handler.setMessageReciever(nullptr, RECEIVER_SLOT));
        QVERIFY(handler.setMessageSender(nullptr, SENDER_SIGNAL));
        bench.start();
        const QSignalSpy received(bench.form(), &PluginBaseFormViewer::messageReceived);
        say(bench);
        Q_EMIT bus.arrived(BUS_MESSAGE, {});
        QCOMPARE(bus.sent, QStringList());
        QCOMPARE(received.size(), 0);
    }
};

WIDGET_TEST_MAIN(HandlerBusTest)
#include "tst_handlerbus.moc"
