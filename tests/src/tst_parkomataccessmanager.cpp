// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientprobe.h"
#include "extension/cryptedsettingsstorage.h"
#include "parkomatdatastorage.h"
#include "support/testcase.h"

#include <QAuthenticator>
#include <QFile>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QPointer>
#include <QSignalSpy>
#include <QTranslator>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

#include <malloc.h>

Q_DECLARE_METATYPE(QUrlQuery)

namespace {
const QString RECORD = QStringLiteral("PARKOMAT/data");

/// All that happens while a reply is reported, in order: signals, log lines, what is done to the reply, the journal.
class Trace
{
public:
    Trace()
    {
        for (const QString &path : {ParkomatDataStorage::MAIN_FILE, ParkomatDataStorage::BACK_FILE}) {
            CryptedSettingsStorage file(path);
            ParkomatDataStorage().setData(&file, {});
        }
    }

    void add(const QString &what)
    {
        gather();
        m_steps.append(what);
    }

    [[nodiscard]] QStringList take()
    {
        gather();
        return std::exchange(m_steps, {});
    }

private:
    /// What has been logged since, and whether the journal advanced meanwhile: that takes a record away.
    void gather()
    {
        const QList<LogLine> lines = MessageLog::take();
        for (const LogLine &line : lines)
            m_steps.append(toStep(line));
        if (m_isJournalFresh && !CryptedSettingsStorage(ParkomatDataStorage::MAIN_FILE).contains(RECORD)) {
            m_isJournalFresh = false;
            m_steps.append(QStringLiteral("journal"));
        }
    }

    static QString toStep(const LogLine &line)
    {
        const QString level = line.level == QtCriticalMsg ? QStringLiteral("critical") : QStringLiteral("warning");
        if (line.category == QLatin1String("default") && line.file == QLatin1String("src/baseparkomatresponse.cpp"))
            return QStringLiteral("parser: ") + line.text;
        if (line.category == QLatin1String("default") && line.file == QLatin1String("src/parkomataccessmanager.cpp") &&
            line.function == QLatin1String("void ParkomatAccessManager::finished(QNetworkReply*)"))
            return level + QStringLiteral(": ") + line.text;
        return QStringLiteral("unexpected: ") + toString(line);
    }

    QStringList m_steps;
    bool m_isJournalFresh = true;
};

/// A reply that never saw a network and writes down what is done to it.
class ScriptedReply : public QNetworkReply
{
    Q_OBJECT

public:
    ScriptedReply(Trace &trace, const QByteArray &body, bool isComplete = true) : m_trace(trace), m_body(body)
    {
        open(QIODevice::ReadOnly);
        setFinished(isComplete);
    }

    ScriptedReply(Trace &trace, NetworkError code, const QString &text) : ScriptedReply(trace, Answers::CHECK)
    {
        setError(code, text);
        m_mayBeRead = false;
    }

    ~ScriptedReply() override { m_trace.add(QStringLiteral("deleted")); }

    void abort() override { m_trace.add(QStringLiteral("aborted")); }

    void close() override
    {
        m_trace.add(QStringLiteral("closed"));
        QNetworkReply::close();
    }

    [[nodiscard]] qint64 bytesAvailable() const override { return m_body.size() + QNetworkReply::bytesAvailable(); }
    [[nodiscard]] const QList<QSslError> &ignored() const { return m_ignored; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        if (!m_mayBeRead)
            m_trace.add(QStringLiteral("read"));
        const qint64 size = std::min<qint64>(maxSize, m_body.size());
        std::memcpy(data, m_body.constData(), static_cast<size_t>(size));
        m_body.remove(0, static_cast<int>(size));
        return size;
    }

    void ignoreSslErrorsImplementation(const QList<QSslError> &errors) override
    {
        m_trace.add(QStringLiteral("ignored %1").arg(errors.size()));
        m_ignored = errors;
    }

private:
    Trace &m_trace;
    QByteArray m_body;
    bool m_mayBeRead = true;
    QList<QSslError> m_ignored;
};

/// Puts a client's signals into a trace and may then do something more, as a listener would.
void traceSignals(ParkomatAccessManager &client, Trace &trace, const std::function<void()> &then = {})
{
    const auto add = [&trace, then](const QString &what) {
        trace.add(what);
        if (then)
            then();
    };
    QObject::connect(&client, &ParkomatAccessManager::error, [add](const QVariantMap &map) {
        add(QStringLiteral("error %1 %2")
                .arg(map[QStringLiteral("error")].toInt())
                .arg(map[QStringLiteral("errorMessage")].toString()));
    });
    QObject::connect(&client, &ParkomatAccessManager::parkInfoPayResponse, [add](const ParkInfoPayResponse &response) {
        add(QStringLiteral("pay ") + response.sessionId());
    });
    QObject::connect(
        &client, &ParkomatAccessManager::parkingCheckResponse,
        [add](const ParkingCheckResponse &response) { add(QStringLiteral("check ") + response.sessionId()); });
}

void runDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The log lines of a body of one line.
QStringList bodyLines(const QByteArray &body)
{
    const QString text = QString::fromUtf8(body);
    return {QStringLiteral("parser: ") + text, QStringLiteral("warning: ") + text, QStringLiteral("warning: ") + text};
}

const QByteArray ONE_LINE_CHECK = Answers::CHECK.mid(Answers::CHECK.indexOf("<Response"));
const QByteArray OTHER_OPERATION = QByteArrayLiteral("<Response Operation=\"CloseShift\" ResultCode=\"1\"/>");

/// Prefixes every text of the client's own context.
class MarkingTranslator : public QTranslator
{
public:
    [[nodiscard]] QString translate(const char *context, const char *text, const char *, int) const override
    {
        return qstrcmp(context, "ParkomatAccessManager") == 0 ? QStringLiteral("translated: ") + QLatin1String(text)
                                                              : QString();
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

QNetworkAccessManager *managerOf(const ParkomatAccessManager &client)
{
    return client.findChild<QNetworkAccessManager *>(QString(), Qt::FindDirectChildrenOnly);
}
} // namespace

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

/// What the client makes of replies, which are handed to its slots here; no network is involved.
class ParkomatAccessManagerTest : public TestCase
{
    Q_OBJECT

private:
    /// Adds the rows of every outcome: what a listener sees and what stands in the log behind it.
    static void addOutcomes()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("transportError");
        QTest::addColumn<QStringList>("reported");
        const auto unknown = [](const QByteArray &body) {
            return bodyLines(body) + QStringList{QStringLiteral("error -1 Unknown response"),
                                                 QStringLiteral("warning: ") + QString::fromUtf8(body)};
        };
        QTest::newRow("transport error") << QByteArray() << static_cast<int>(QNetworkReply::TimeoutError)
                                         << QStringList{QStringLiteral("error 4 it broke"),
                                                        QStringLiteral("warning: error: 4\nerrorMessage: it broke")};
        QTest::newRow("check") << ONE_LINE_CHECK << 0
                               << bodyLines(ONE_LINE_CHECK) + QStringList{QStringLiteral("check s1")};
        QTest::newRow("pay") << Answers::PAY << 0
                             << bodyLines(Answers::PAY) +
                                    QStringList{QStringLiteral("pay s2"), QStringLiteral("journal")};
        for (const int code : {0, 2, 5, -1, 2147483647}) {
            for (const char *operation : {"ParkingCheckResponse", "ParkInfoPayResponse"}) {
                const QByteArray body = "<Response Operation=\"" + QByteArray(operation) + "\" ResultCode=\"" +
                                        QByteArray::number(code) + "\"><ErrorInfo>why</ErrorInfo></Response>";
                QTest::addRow("%s with code %d", operation, code)
                    << body << 0 << bodyLines(body) + QStringList{QStringLiteral("error %1 why").arg(code)};
            }
        }
        const QByteArray noCode = QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\"/>");
        QTest::newRow("no result code") << noCode << 0 << bodyLines(noCode) + QStringList{QStringLiteral("error 0 ")};
        for (const QByteArray &body : {QByteArray(), QByteArrayLiteral("Service Unavailable"),
                                       QByteArrayLiteral("<html><body>ok</body></html>"), OTHER_OPERATION})
            QTest::addRow("unknown: %s", body.constData()) << body << 0 << unknown(body);
    }

    static ScriptedReply *fetchReply(Trace &trace)
    {
        QFETCH(QByteArray, body);
        QFETCH(int, transportError);
        if (transportError != 0)
            return new ScriptedReply(trace, static_cast<QNetworkReply::NetworkError>(transportError),
                                     QStringLiteral("it broke"));
        return new ScriptedReply(trace, body);
    }

private Q_SLOTS:
    void finished_reply_isReportedOnceThenClosedThenDeleted_data() { addOutcomes(); }

    void finished_reply_isReportedOnceThenClosedThenDeleted()
    {
        QFETCH(QStringList, reported);
        Trace trace;
        ParkomatAccessManager client;
        traceSignals(client, trace);
        client.finished(fetchReply(trace));
        QCOMPARE(trace.take(), reported + QStringList(QStringLiteral("closed")));
        runDeferredDeletes();
        QCOMPARE(trace.take(), QStringList(QStringLiteral("deleted")));
    }

    void finished_notFinished_isReportedAllTheSame_data() { addOutcomes(); }

    void finished_notFinished_isReportedAllTheSame()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, transportError);
        QFETCH(QStringList, reported);
        if (transportError != 0)
            return;
        Trace trace;
        ParkomatAccessManager client;
        traceSignals(client, trace);
        client.finished(new ScriptedReply(trace, body, false));
        QCOMPARE(trace.take(), QStringList(QStringLiteral("warning: The reply is not finished")) + reported +
                                   QStringList(QStringLiteral("closed")));
        runDeferredDeletes();
        QCOMPARE(trace.take(), QStringList(QStringLiteral("deleted")));
    }

    void finished_null_isLoggedOnly()
    {
        Trace trace;
        ParkomatAccessManager client;
        traceSignals(client, trace);
        client.finished(nullptr);
        QCOMPARE(trace.take(), QStringList(QStringLiteral("critical: Reply is null object")));
    }

    void finished_clientDeletedByListener_doesTheRest_data() { addOutcomes(); }

    void finished_clientDeletedByListener_doesTheRest()
    {
        QFETCH(QStringList, reported);
        Trace trace;
        auto *client = new ParkomatAccessManager;
        const QPointer<QNetworkAccessManager> manager(managerOf(*client));
        traceSignals(*client, trace, [client] { delete client; });
        client->finished(fetchReply(trace));
        QCOMPARE(trace.take(), reported + QStringList(QStringLiteral("closed")));
        // Qt is not done with it before the slot returns.
        QVERIFY(manager);
        runDeferredDeletes();
        QCOMPARE(trace.take(), QStringList(QStringLiteral("deleted")));
        QVERIFY(!manager);
    }

    void finished_replyDeletedByListener_doesTheRest_data() { addOutcomes(); }

    void finished_replyDeletedByListener_doesTheRest()
    {
        QFETCH(QStringList, reported);
        Trace trace;
        ParkomatAccessManager client;
        ScriptedReply *const reply = fetchReply(trace);
        traceSignals(client, trace, [reply] { delete reply; });
        client.finished(reply);
        QStringList steps = trace.take();
        QCOMPARE(steps.removeAll(QStringLiteral("deleted")), 1);
        QCOMPARE(steps, reported);
    }

    void finished_anotherInsideTheSignal_isReportedInBetween()
    {
        Trace trace;
        ParkomatAccessManager client;
        const QPointer<QNetworkAccessManager> manager(managerOf(client));
        auto *inner = new ScriptedReply(trace, Answers::PAY);
        traceSignals(client, trace, [&] {
            if (ScriptedReply *const reply = std::exchange(inner, nullptr))
                client.finished(reply);
        });
        client.finished(new ScriptedReply(trace, ONE_LINE_CHECK));
        QCOMPARE(trace.take(), bodyLines(ONE_LINE_CHECK) + QStringList(QStringLiteral("check s1")) +
                                   bodyLines(Answers::PAY) +
                                   QStringList({QStringLiteral("pay s2"), QStringLiteral("journal"),
                                                QStringLiteral("closed"), QStringLiteral("closed")}));
        QCOMPARE(manager->parent(), &client);
        runDeferredDeletes();
        QCOMPARE(trace.take(), QStringList({QStringLiteral("deleted"), QStringLiteral("deleted")}));
        QVERIFY(manager);
    }

    void finished_clientDeletedInsideTheInnerSignal_doesTheRest()
    {
        Trace trace;
        auto *client = new ParkomatAccessManager;
        const QPointer<QNetworkAccessManager> manager(managerOf(*client));
        auto *inner = new ScriptedReply(trace, Answers::UNKNOWN_CARD);
        traceSignals(*client, trace, [&] {
            if (ScriptedReply *const reply = std::exchange(inner, nullptr))
                client->finished(reply);
            else
                delete client;
        });
        client->finished(new ScriptedReply(trace, QNetworkReply::TimeoutError, QStringLiteral("it broke")));
        QCOMPARE(trace.take().mid(0, 1), QStringList(QStringLiteral("error 4 it broke")));
        QVERIFY(manager);
        runDeferredDeletes();
        QCOMPARE(trace.take(), QStringList({QStringLiteral("deleted"), QStringLiteral("deleted")}));
        QVERIFY(!manager);
    }

    void finished_body_isLoggedAsBytesAndAsLines_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("bytes");
        QTest::addColumn<QString>("lines");
        QTest::newRow("several lines") << QByteArrayLiteral("a\n\nb\n") << QStringLiteral("a\n\nb\n")
                                       << QStringLiteral("a\n\nb\n");
        QTest::newRow("zero byte") << QByteArrayLiteral("a\nb\0c\nd") << QStringLiteral("a\nb\\x00c\nd")
                                   << QStringLiteral("a\nb");
        QTest::newRow("not ASCII") << QByteArrayLiteral("\xD0\xBA\xD0\xB0\xD1\x80\xD1\x82\xD0\xB0")
                                   << QStringLiteral("карта") << QStringLiteral("карта");
    }

    void finished_body_isLoggedAsBytesAndAsLines()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, bytes);
        QFETCH(QString, lines);
        Trace trace;
        ParkomatAccessManager client;
        client.finished(new ScriptedReply(trace, body));
        const QString warning = QStringLiteral("warning: ");
        QCOMPARE(trace.take(), QStringList({QStringLiteral("parser: ") + lines, warning + bytes, warning + lines,
                                            warning + bytes, QStringLiteral("closed")}));
        runDeferredDeletes();
    }

    void finished_thousandsOfReplies_leavesNothingBehind()
    {
        Trace trace;
        ParkomatAccessManager client;
        const auto report = [&](int times) {
            for (int i = 0; i < times; ++i) {
                client.finished(new ScriptedReply(trace, ONE_LINE_CHECK));
                client.finished(new ScriptedReply(trace, Answers::UNKNOWN_CARD));
                runDeferredDeletes();
                (void)trace.take();
            }
        };
        // The journal advances, and the trace looks at it no more.
        client.finished(new ScriptedReply(trace, Answers::PAY));
        report(100);
        const size_t before = mallinfo2().uordblks;
        report(1'000);
        const size_t after = mallinfo2().uordblks;
        // Two thousand lost answers would be four times that.
        QVERIFY2(after < before + 128 * 1024, qPrintable(QString::number(after - before)));
    }

    void texts_translated_areOfTheClassesContext()
    {
        Trace trace;
        MarkingTranslator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        ParkomatAccessManager client;
        traceSignals(client, trace);
        client.finished(nullptr);
        client.finished(new ScriptedReply(trace, {}, false));
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(trace.take(),
                 QStringList({QStringLiteral("critical: translated: Reply is null object"),
                              QStringLiteral("warning: translated: The reply is not finished"),
                              QStringLiteral("parser: "), QStringLiteral("warning: "), QStringLiteral("warning: "),
                              QStringLiteral("error -1 translated: Unknown response"), QStringLiteral("warning: "),
                              QStringLiteral("closed")}));
        runDeferredDeletes();
    }

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

    void prepareRequest_settings_makeTheUrl_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QByteArray>("url");
        const auto row = [](const char *name, const char *host, int port, const char *path, const char *operation,
                            const char *url) {
            QTest::newRow(name) << QString::fromUtf8(host) << port << QString::fromUtf8(path)
                                << QString::fromUtf8(operation) << QByteArray(url);
        };
        row("relative path", "cash.example", 13006, "api", "ParkingCheck",
            "http://cash.example:13006/api/ParkingCheck");
        row("absolute path", "cash.example", 80, "/api", "ParkInfoPay", "http://cash.example:80/api/ParkInfoPay");
        row("several folders", "h", 1, "a/b/c", "X", "http://h:1/a/b/c/X");
        row("slash at the end", "h", 1, "/api/", "X", "http://h:1/api//X");
        row("two slashes in front", "h", 1, "//api", "X", "http://h:1//api/X");
        row("a slash alone", "h", 1, "/", "X", "http://h:1//X");
        row("empty path", "h", 1, "", "X", "http://h:1/X");
        row("dots", "h", 1, "/a/../b/./c", "X", "http://h:1/a/../b/./c/X");
        row("not ASCII", "h", 1, "касса", "X", "http://h:1/%D0%BA%D0%B0%D1%81%D1%81%D0%B0/X");
        row("blanks", "h", 1, " a b", "X", "http://h:1/%20a%20b/X");
        row("question mark", "h", 1, "/a?b", "X", "http://h:1/a%3Fb/X");
        row("hash", "h", 1, "/a#b", "X", "http://h:1/a%23b/X");
        row("per cent is itself", "h", 1, "/a%2Fb", "X", "http://h:1/a%252Fb/X");
        row("operation as it is", "h", 1, "/a", "b/c d", "http://h:1/a/b/c%20d");
        row("empty operation", "h", 1, "/a", "", "http://h:1/a/");
        row("IPv4 address", "10.0.0.7", 1, "/a", "X", "http://10.0.0.7:1/a/X");
        row("IPv6 address", "::1", 1, "/a", "X", "http://[::1]:1/a/X");
        row("IPv6 address in brackets", "[::1]", 1, "/a", "X", "http://[::1]:1/a/X");
        row("host not ASCII", "касса.рф", 1, "/a", "X", "http://xn--80aa2a3aa.xn--p1ai:1/a/X");
        row("port 0", "h", 0, "/a", "X", "http://h:0/a/X");
        row("largest port", "h", 65535, "/a", "X", "http://h:65535/a/X");
        row("port beyond 16 bits", "h", 70000, "/a", "X", "http://h:4464/a/X");
        row("empty host", "", 1, "/a", "X", "http://:1/a/X");
        row("no host's characters", "a b", 1, "/a", "X", "http://:1/a/X");
    }

    void prepareRequest_settings_makeTheUrl()
    {
        QFETCH(QString, host);
        QFETCH(int, port);
        QFETCH(QString, path);
        QFETCH(QString, operation);
        QFETCH(QByteArray, url);
        ParkomatSettings settings;
        settings.setCashServiceHost(host);
        settings.setCashServicePort(static_cast<unsigned short>(port));
        settings.setCashServicePath(path);
        const ParkomatAccessManager client;
        const QNetworkRequest request = client.prepareRequest(operation, QUrlQuery());
        QCOMPARE(request.url().toEncoded(), url);
        QCOMPARE(request.header(QNetworkRequest::ContentTypeHeader).toByteArray(), QByteArray("application/soap+xml"));
        QCOMPARE(request.rawHeaderList(), QList<QByteArray>{"Content-Type"});
    }

    void prepareRequest_nothingSet_isTheDefaultService()
    {
        const ParkomatAccessManager client;
        QCOMPARE(client.prepareRequest(ParkomatSettings::PARKING_CHECK, QUrlQuery()).url().toEncoded(),
                 QByteArray("http://localhost:13006/api/ParkingCheck"));
    }

    void prepareRequest_settingsChanged_seesThem()
    {
        const ParkomatAccessManager client;
        useService(1);
        QCOMPARE(client.prepareRequest(QStringLiteral("X"), QUrlQuery()).url().port(), 1);
        useService(2);
        QCOMPARE(client.prepareRequest(QStringLiteral("X"), QUrlQuery()).url().port(), 2);
    }

    void prepareRequest_query_isAppendedUnlessEmpty_data()
    {
        QTest::addColumn<QUrlQuery>("query");
        QTest::addColumn<bool>("hasQuery");
        QTest::addColumn<QByteArray>("encoded");
        QTest::newRow("none") << QUrlQuery() << false << QByteArray();
        QTest::newRow("one") << QUrlQuery(QStringLiteral("a=b")) << true << QByteArray("a=b");
        QTest::newRow("two") << QUrlQuery(QStringLiteral("a=b&c=d e")) << true << QByteArray("a=b&c=d%20e");
        QTest::newRow("a name alone") << QUrlQuery(QStringLiteral("a")) << true << QByteArray("a");
    }

    void prepareRequest_query_isAppendedUnlessEmpty()
    {
        QFETCH(QUrlQuery, query);
        QFETCH(bool, hasQuery);
        QFETCH(QByteArray, encoded);
        const ParkomatAccessManager client;
        const QUrl url = client.prepareRequest(QStringLiteral("X"), query).url();
        QCOMPARE(url.hasQuery(), hasQuery);
        QCOMPARE(url.query(QUrl::FullyEncoded).toUtf8(), encoded);
        QCOMPARE(url.path(), QStringLiteral("/api/X"));
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

TEST_MAIN(ParkomatAccessManagerTest)
#include "tst_parkomataccessmanager.moc"
