// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scriptedreply.h"
#include "support/testcase.h"

#include <QPointer>
#include <QTextCodec>
#include <QTranslator>

#include <malloc.h>

namespace {
const QByteArray ONE_LINE_CHECK = Answers::CHECK.mid(Answers::CHECK.indexOf("<Response"));
const QByteArray OTHER_OPERATION = QByteArrayLiteral("<Response Operation=\"CloseShift\" ResultCode=\"1\"/>");

/// A registration's answer that declares its encoding and is in it.
QByteArray inEncoding(const char *codec, int resultCode)
{
    const QString xml =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?><Response Operation=\"ParkInfoPayResponse\" "
                       "ResultCode=\"%2\"><SessionId>счёт</SessionId><ErrorInfo>карта</ErrorInfo></Response>")
            .arg(QLatin1String(codec))
            .arg(resultCode);
    return QTextCodec::codecForName(codec)->fromUnicode(xml);
}

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
} // namespace

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
        QTest::addColumn<QString>("transportText");
        QTest::addColumn<QStringList>("reported");
        const auto unknown = [](const QByteArray &body) {
            return bodyLines(body) + QStringList{QStringLiteral("error -1 Unknown response"),
                                                 QStringLiteral("warning: ") + QString::fromUtf8(body)};
        };
        // One of each group that Qt has: connections, time-outs, proxies, contents, protocols, servers.
        for (const int code : {1, 2, 4, 99, 105, 201, 204, 299, 399, 401})
            addTransportError(code, QStringLiteral("it broke"), QStringLiteral("it broke"));
        // What Qt says of a failure that has no text.
        addTransportError(2, QString(), QStringLiteral("Unknown error"));
        QTest::newRow("check") << ONE_LINE_CHECK << 0 << QString()
                               << bodyLines(ONE_LINE_CHECK) + QStringList{QStringLiteral("check s1")};
        QTest::newRow("pay") << Answers::PAY << 0 << QString()
                             << bodyLines(Answers::PAY) +
                                    QStringList{QStringLiteral("pay s2"), QStringLiteral("journal")};
        for (const int code : {0, 2, 5, -1, 2147483647}) {
            for (const char *operation : {"ParkingCheckResponse", "ParkInfoPayResponse"}) {
                const QByteArray body = "<Response Operation=\"" + QByteArray(operation) + "\" ResultCode=\"" +
                                        QByteArray::number(code) + "\"><ErrorInfo>why</ErrorInfo></Response>";
                QTest::addRow("%s with code %d", operation, code)
                    << body << 0 << QString()
                    << bodyLines(body) + QStringList{QStringLiteral("error %1 why").arg(code)};
            }
        }
        const QByteArray noCode = QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\"/>");
        QTest::newRow("no result code") << noCode << 0 << QString()
                                        << bodyLines(noCode) + QStringList{QStringLiteral("error 0 ")};
        for (const QByteArray &body : {QByteArray(), QByteArrayLiteral("Service Unavailable"),
                                       QByteArrayLiteral("<html><body>ok</body></html>"), OTHER_OPERATION})
            QTest::addRow("unknown: %s", body.constData()) << body << 0 << QString() << unknown(body);
    }

    static void addTransportError(int code, const QString &text, const QString &reported)
    {
        QTest::addRow("transport error %d, %s", code, qPrintable(reported))
            << QByteArray() << code << text
            << QStringList{QStringLiteral("error %1 %2").arg(code).arg(reported),
                           QStringLiteral("warning: error: %1\nerrorMessage: %2").arg(code).arg(reported)};
    }

    static ScriptedReply *fetchReply(Trace &trace, bool isComplete = true)
    {
        QFETCH(QByteArray, body);
        QFETCH(int, transportError);
        QFETCH(QString, transportText);
        if (transportError != 0)
            return new ScriptedReply(trace, static_cast<QNetworkReply::NetworkError>(transportError), transportText,
                                     isComplete);
        return new ScriptedReply(trace, body, isComplete);
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
        QFETCH(QStringList, reported);
        Trace trace;
        ParkomatAccessManager client;
        traceSignals(client, trace);
        client.finished(fetchReply(trace, false));
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

    void finished_statusWithoutAnError_isRead_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {0, 100, 204, 302, 401, 404, 500, 503})
            QTest::addRow("%d", status) << status;
    }

    void finished_statusWithoutAnError_isRead()
    {
        QFETCH(int, status);
        Trace trace;
        ParkomatAccessManager client;
        traceSignals(client, trace);
        auto *const reply = new ScriptedReply(trace, Answers::PAY);
        reply->setStatus(status);
        client.finished(reply);
        QCOMPARE(trace.take(),
                 bodyLines(Answers::PAY) +
                     QStringList({QStringLiteral("pay s2"), QStringLiteral("journal"), QStringLiteral("closed")}));
        runDeferredDeletes();
    }

    void finished_encoding_isTheDeclaredOne_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("seen");
        for (const char *codec : {"UTF-8", "windows-1251", "KOI8-R", "UTF-16"}) {
            const auto row = [codec](int code, const QString &seen) {
                QTest::addRow("%s, code %d", codec, code) << inEncoding(codec, code) << seen;
            };
            row(7, QStringLiteral("error 7 карта"));
            row(1, QStringLiteral("pay счёт"));
        }
        QByteArray otherwise = inEncoding("windows-1251", 7);
        QTest::newRow("declared as another")
            << otherwise.replace("windows-1251", "KOI8-R") << QStringLiteral("error 7 ЙЮПРЮ");
    }

    void finished_encoding_isTheDeclaredOne()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, seen);
        Trace trace;
        ParkomatAccessManager client;
        const ClientProbe probe(client);
        client.finished(new ScriptedReply(trace, body));
        QCOMPARE(probe.seen(), QStringList(seen));
        QCOMPARE(FreshJournal::isThere(), !seen.startsWith(QLatin1String("pay")));
        runDeferredDeletes();
        (void)trace.take();
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
};

TEST_MAIN(ParkomatAccessManagerTest)
#include "tst_parkomataccessmanager.moc"
