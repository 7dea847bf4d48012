// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scriptedreply.h"
#include "support/testcase.h"

#include <QAuthenticator>
#include <QMetaMethod>
#include <QNetworkProxy>

#include <cstdio>

/// Connected by name, as the handler and its host do it.
class NamedReceiver : public QObject
{
    Q_OBJECT

public:
    QStringList seen;

public Q_SLOTS:
    void onError(const QVariantMap &map) { seen.append(map.value(QStringLiteral("errorMessage")).toString()); }
    void onProgress(int percent) { seen.append(QString::number(percent)); }
    void onPay(const ParkInfoPayResponse &response) { seen.append(response.sessionId()); }
    void onCheck(const ParkingCheckResponse &response) { seen.append(response.sessionId()); }
};

/// The client's signals and slots, as the handler and the network stack connect them, and those that do little.
class ParkomatAccessManagerSlotsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void calcProgress_values_areWholePerCent_data()
    {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<QStringList>("seen");
        const qint64 largest = 92'233'720'368'547'758;
        QTest::newRow("a quarter") << qint64(50) << qint64(200) << QStringList(QStringLiteral("progress 25"));
        QTest::newRow("nothing yet") << qint64(0) << qint64(1) << QStringList(QStringLiteral("progress 0"));
        QTest::newRow("all") << qint64(7) << qint64(7) << QStringList(QStringLiteral("progress 100"));
        QTest::newRow("cut, not rounded") << qint64(2) << qint64(3) << QStringList(QStringLiteral("progress 66"));
        QTest::newRow("beyond the total") << qint64(3) << qint64(1) << QStringList(QStringLiteral("progress 300"));
        QTest::newRow("more than 32 bits") << largest << largest << QStringList(QStringLiteral("progress 100"));
        QTest::newRow("total of zero") << qint64(1) << qint64(0) << QStringList();
        QTest::newRow("total not known") << qint64(1) << qint64(-1) << QStringList();
        QTest::newRow("negative value") << qint64(-1) << qint64(10) << QStringList();
    }

    void calcProgress_values_areWholePerCent()
    {
        QFETCH(qint64, value);
        QFETCH(qint64, total);
        QFETCH(QStringList, seen);
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.calcProgress(value, total);
        QCOMPARE(probe.seen(), seen);
    }

    void sslErrors_errors_areLoggedAndIgnored_data()
    {
        QTest::addColumn<QList<QSslError>>("errors");
        QTest::newRow("none") << QList<QSslError>();
        QTest::newRow("three, one of them twice")
            << QList<QSslError>{QSslError(QSslError::SelfSignedCertificate), QSslError(QSslError::HostNameMismatch),
                                QSslError(QSslError::HostNameMismatch)};
    }

    void sslErrors_errors_areLoggedAndIgnored()
    {
        QFETCH(QList<QSslError>, errors);
        Trace trace;
        ParkomatAccessManager client;
        ScriptedReply reply(trace, QByteArray());
        client.sslErrors(&reply, errors);
        QCOMPARE(reply.ignored(), errors);
        const QList<LogLine> none = MessageLog::take();
        QVERIFY(none.isEmpty());
        QStringList steps = trace.take();
        QCOMPARE(steps.takeLast(), QStringLiteral("ignored %1").arg(errors.size()));
        QCOMPARE(steps.size(), errors.size());
        for (int i = 0; i < errors.size(); ++i) {
            QVERIFY2(steps.at(i).contains(QLatin1String("warning [default] src/parkomataccessmanager.cpp:")),
                     qPrintable(steps.at(i)));
            QVERIFY(steps.at(i).endsWith(QStringLiteral("    %1 %2")
                                             .arg(static_cast<int>(errors.at(i).error()))
                                             .arg(errors.at(i).errorString())));
        }
    }

    void proxyAuthenticationRequired_proxy_givesNameAndPassword()
    {
        const QNetworkProxy proxy(QNetworkProxy::HttpProxy, QStringLiteral("p"), 1, QStringLiteral("name"),
                                  QStringLiteral("secret"));
        ParkomatAccessManager client;
        QAuthenticator authenticator;
        client.proxyAuthenticationRequired(proxy, &authenticator);
        QCOMPARE(authenticator.user(), QStringLiteral("name"));
        QCOMPARE(authenticator.password(), QStringLiteral("secret"));
        client.proxyAuthenticationRequired(proxy, nullptr);
    }

    void idleSlots_anything_doNothing()
    {
        Trace trace;
        ParkomatAccessManager client;
        traceSignals(client, trace);
        QAuthenticator authenticator;
        ScriptedReply reply(trace, QByteArray());
        client.authenticationRequired(&reply, &authenticator);
        QVERIFY(authenticator.isNull());
        client.authenticationRequired(nullptr, nullptr);
        client.networkAccessibleChanged(QNetworkAccessManager::NotAccessible);
        QCOMPARE(trace.take(), QStringList());
    }

    void constructor_parent_ownsTheClientAndItsManager()
    {
        QObject parent;
        const auto *client = new ParkomatAccessManager(&parent);
        QCOMPARE(client->parent(), &parent);
        QCOMPARE(client->children(), QObjectList{managerOf(*client)});
        QVERIFY(managerOf(*client));
    }

    void constructor_manager_isConnectedToEachSlot_data()
    {
        QTest::addColumn<QByteArray>("signature");
        for (const char *signature :
             {"authenticationRequired(QNetworkReply*,QAuthenticator*)", "finished(QNetworkReply*)",
              "networkAccessibleChanged(QNetworkAccessManager::NetworkAccessibility)",
              "sslErrors(QNetworkReply*,QList<QSslError>)",
              "proxyAuthenticationRequired(QNetworkProxy,QAuthenticator*)"})
            QTest::newRow(signature) << QByteArray(signature);
    }

    void constructor_manager_isConnectedToEachSlot()
    {
        QFETCH(QByteArray, signature);
        const ParkomatAccessManager client;
        QVERIFY(QObject::disconnect(managerOf(client), "2" + signature, &client, "1" + signature));
        // All of them are gone with one call, so there was one.
        QVERIFY(!QObject::disconnect(managerOf(client), "2" + signature, &client, "1" + signature));
    }

    void manager_signals_reachTheSlots()
    {
        Trace trace;
        ParkomatAccessManager client;
        QVERIFY(QMetaObject::invokeMethod(managerOf(client), "finished", Q_ARG(QNetworkReply *, nullptr)));
        QCOMPARE(trace.take(), QStringList(QStringLiteral("critical: Reply is null object")));
        QAuthenticator authenticator;
        const QNetworkProxy proxy(QNetworkProxy::HttpProxy, QString(), 0, QStringLiteral("name"));
        QVERIFY(QMetaObject::invokeMethod(managerOf(client), "proxyAuthenticationRequired", Q_ARG(QNetworkProxy, proxy),
                                          Q_ARG(QAuthenticator *, &authenticator)));
        QCOMPARE(authenticator.user(), QStringLiteral("name"));
        // It has to be ignored before Qt goes on, so at once.
        ScriptedReply reply(trace, QByteArray());
        const QList<QSslError> errors = {QSslError(QSslError::SelfSignedCertificate)};
        QVERIFY(QMetaObject::invokeMethod(managerOf(client), "sslErrors", Q_ARG(QNetworkReply *, &reply),
                                          Q_ARG(QList<QSslError>, errors)));
        QCOMPARE(reply.ignored(), errors);
        (void)trace.take();
    }

    void metaObject_methods_areInTheContractsOrder()
    {
        QStringList found;
        const QMetaObject &meta = ParkomatAccessManager::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            found.append(
                QStringLiteral("%1 %2 %3")
                    .arg(method.methodType() == QMetaMethod::Signal ? QStringLiteral("signal") : QStringLiteral("slot"),
                         QString::fromLatin1(method.methodSignature()),
                         QString::fromLatin1(method.parameterNames().join(','))));
            QCOMPARE(method.access(), QMetaMethod::Public);
            QCOMPARE(method.returnType(), static_cast<int>(QMetaType::Void));
        }
        const QStringList expected = {
            QStringLiteral("signal error(QVariantMap) err"),
            QStringLiteral("signal progress(int) percent"),
            QStringLiteral("signal parkInfoPayResponse(ParkInfoPayResponse) response"),
            QStringLiteral("signal parkingCheckResponse(ParkingCheckResponse) response"),
            QStringLiteral("slot authenticationRequired(QNetworkReply*,QAuthenticator*) reply,authenticator"),
            QStringLiteral("slot finished(QNetworkReply*) reply"),
            QStringLiteral("slot networkAccessibleChanged(QNetworkAccessManager::NetworkAccessibility) accessibility"),
            QStringLiteral("slot sslErrors(QNetworkReply*,QList<QSslError>) reply,errors"),
            QStringLiteral("slot proxyAuthenticationRequired(QNetworkProxy,QAuthenticator*) proxy,authenticator"),
            QStringLiteral("slot calcProgress(qlonglong,qlonglong) value,total")};
        QCOMPARE(found, expected);
        QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    }

    void calcProgress_connectedByName_takesAReplysProgress()
    {
        Trace trace;
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        ScriptedReply reply(trace, QByteArray());
        QVERIFY(connect(&reply, SIGNAL(uploadProgress(qint64, qint64)), &client, SLOT(calcProgress(qint64, qint64))));
        Q_EMIT reply.uploadProgress(1, 4);
        QCOMPARE(probe.seen(), QStringList(QStringLiteral("progress 25")));
    }

    void metaTypes_client_registersThem()
    {
        // In a process where nothing else has done so.
        const auto child = ChildProcess::start("printsMetaTypes");
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(child->readAll(), QByteArray("before: QList<QSslError>=0\n"
                                              "before: ParkInfoPayResponse=0\n"
                                              "before: ParkingCheckResponse=0\n"
                                              "after: QList<QSslError>=1\n"
                                              "after: ParkInfoPayResponse=1\n"
                                              "after: ParkingCheckResponse=1\n"));
    }

    void signals_connectedByName_arrive_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("direct") << static_cast<int>(Qt::DirectConnection);
        QTest::newRow("queued") << static_cast<int>(Qt::QueuedConnection);
    }

    void signals_connectedByName_arrive()
    {
        QFETCH(int, type);
        const auto connection = static_cast<Qt::ConnectionType>(type);
        Trace trace;
        ParkomatAccessManager client;
        NamedReceiver receiver;
        QVERIFY(connect(&client, SIGNAL(error(QVariantMap)), &receiver, SLOT(onError(QVariantMap)), connection));
        QVERIFY(connect(&client, SIGNAL(progress(int)), &receiver, SLOT(onProgress(int)), connection));
        QVERIFY(connect(&client, SIGNAL(parkInfoPayResponse(ParkInfoPayResponse)), &receiver,
                        SLOT(onPay(ParkInfoPayResponse)), connection));
        QVERIFY(connect(&client, SIGNAL(parkingCheckResponse(ParkingCheckResponse)), &receiver,
                        SLOT(onCheck(ParkingCheckResponse)), connection));
        client.finished(new ScriptedReply(trace, Answers::CHECK));
        client.finished(new ScriptedReply(trace, Answers::PAY));
        client.finished(new ScriptedReply(trace, Answers::UNKNOWN_CARD));
        client.calcProgress(1, 2);
        QCOMPARE(receiver.seen.isEmpty(), connection == Qt::QueuedConnection);
        QCoreApplication::processEvents();
        QCOMPARE(receiver.seen, QStringList({QStringLiteral("s1"), QStringLiteral("s2"), QStringLiteral("no such card"),
                                             QStringLiteral("50")}));
        runDeferredDeletes();
        (void)trace.take();
    }
};

TEST_CHILD(printsMetaTypes)
{
    const auto print = [](const char *when) {
        for (const char *name : {"QList<QSslError>", "ParkInfoPayResponse", "ParkingCheckResponse"})
            std::printf("%s: %s=%d\n", when, name, QMetaType::isRegistered(QMetaType::type(name)) ? 1 : 0);
    };
    print("before");
    const ParkomatAccessManager client;
    print("after");
    return 0;
}

TEST_MAIN(ParkomatAccessManagerSlotsTest)
#include "tst_parkomataccessmanagerslots.moc"
