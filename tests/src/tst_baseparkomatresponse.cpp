// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "baseparkomatresponse.h"
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "support/testcase.h"

#include <QXmlStreamReader>

#include <array>
#include <memory>
#include <thread>
#include <utility>

namespace {
/// An answer of no operation, for what is the base's own.
class PlainResponse : public BaseParkomatResponse
{
public:
    using BaseParkomatResponse::BaseParkomatResponse;

    bool parseProperties(const Properties &) override { return resultCode() == SUCCESS; }
};

using Answer = std::unique_ptr<BaseParkomatResponse>;

Answer parsed(const QString &text)
{
    return Answer(BaseParkomatResponse::parse(text));
}

QString check(const QString &children, const QString &resultCode = QStringLiteral("1"))
{
    return QStringLiteral("<Response Operation=\"ParkingCheckResponse\" ResultCode=\"%1\">%2</Response>")
        .arg(resultCode, children);
}

QString kind(const BaseParkomatResponse *answer)
{
    if (dynamic_cast<const ParkingCheckResponse *>(answer) != nullptr)
        return QStringLiteral("check");
    if (dynamic_cast<const ParkInfoPayResponse *>(answer) != nullptr)
        return QStringLiteral("pay");
    return QStringLiteral("nothing");
}
} // namespace

/// The envelope of every answer and how it becomes an object.
class BaseParkomatResponseTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void constructor_default_hasResultCodeMinusOne()
    {
        const PlainResponse response;
        QCOMPARE(response.resultCode(), -1);
        QCOMPARE(response.errorInfo(), QString());
        const PlainResponse withCode(3);
        QCOMPARE(withCode.resultCode(), 3);
        QCOMPARE(withCode.errorInfo(), QString());
    }

    void destructor_isVirtual() { QVERIFY(std::has_virtual_destructor_v<BaseParkomatResponse>); }

    void equality_goesByResultCodeAlone()
    {
        PlainResponse one(3);
        PlainResponse two(3);
        two.setErrorInfo(QStringLiteral("text"));
        QVERIFY(one == two);
        QVERIFY(!(one != two));
        two.setResultCode(4);
        QVERIFY(one != two);
        QVERIFY(!(one == two));
    }

    void copy_keepsBoth()
    {
        PlainResponse one(3);
        one.setErrorInfo(QStringLiteral("text"));
        const PlainResponse copy(one);
        QCOMPARE(copy.resultCode(), 3);
        QCOMPARE(copy.errorInfo(), QStringLiteral("text"));
        PlainResponse assigned;
        assigned = one;
        QCOMPARE(assigned.resultCode(), 3);
        QCOMPARE(assigned.errorInfo(), QStringLiteral("text"));
        QCOMPARE(one.errorInfo(), QStringLiteral("text"));
    }

    void moveConstruction_source_losesItsErrorText()
    {
        PlainResponse source(3);
        source.setErrorInfo(QStringLiteral("text"));
        const PlainResponse target(std::move(source));
        QCOMPARE(target.resultCode(), 3);
        QCOMPARE(target.errorInfo(), QStringLiteral("text"));
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from answer holds is part of its contract.
        QCOMPARE(source.resultCode(), 3);
        QCOMPARE(source.errorInfo(), QString());
        // NOLINTEND(bugprone-use-after-move)
    }

    void moveAssignment_errorTexts_areExchanged()
    {
        PlainResponse source(3);
        source.setErrorInfo(QStringLiteral("source"));
        PlainResponse target(4);
        target.setErrorInfo(QStringLiteral("target"));
        target = std::move(source);
        QCOMPARE(target.resultCode(), 3);
        QCOMPARE(target.errorInfo(), QStringLiteral("source"));
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from answer holds is part of its contract.
        QCOMPARE(source.resultCode(), 3);
        QCOMPARE(source.errorInfo(), QStringLiteral("target"));
        // NOLINTEND(bugprone-use-after-move)
    }

    void assignment_toItself_changesNothing()
    {
        PlainResponse answer(3);
        answer.setErrorInfo(QStringLiteral("text"));
        PlainResponse &same = answer;
        answer = same;
        answer = std::move(same);
        QCOMPARE(answer.resultCode(), 3);
        QCOMPARE(answer.errorInfo(), QStringLiteral("text"));
    }

    void parse_body_isDispatchedByItsOperation_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<QString>("answer");
        const auto root = [](const QString &attributes) { return QStringLiteral("<Response %1/>").arg(attributes); };
        QTest::newRow("check") << root(QStringLiteral("Operation='ParkingCheckResponse' ResultCode='1'")) << "check";
        QTest::newRow("pay") << root(QStringLiteral("Operation='ParkInfoPayResponse' ResultCode='1'")) << "pay";
        QTest::newRow("capitals") << root(QStringLiteral("Operation='PARKINGCHECKRESPONSE' ResultCode='1'")) << "check";
        QTest::newRow("small letters") << root(QStringLiteral("Operation='parkinfopayresponse'")) << "pay";
        QTest::newRow("name of the request") << root(QStringLiteral("Operation='ParkingCheck'")) << "nothing";
        QTest::newRow("blanks around the name")
            << root(QStringLiteral("Operation=' ParkingCheckResponse '")) << "nothing";
        QTest::newRow("no operation") << root(QStringLiteral("ResultCode='1'")) << "nothing";
        QTest::newRow("operation with a prefix")
            << root(QStringLiteral("xmlns:a='urn:a' a:Operation='ParkingCheckResponse'")) << "nothing";
        QTest::newRow("small attribute name") << root(QStringLiteral("operation='ParkingCheckResponse'")) << "nothing";
        QTest::newRow("root with a prefix")
            << QStringLiteral("<a:Response xmlns:a='urn:a' Operation='ParkingCheckResponse'/>") << "check";
        QTest::newRow("default namespace")
            << QStringLiteral("<Response xmlns='urn:a' Operation='ParkingCheckResponse'/>") << "check";
        QTest::newRow("root in small letters")
            << QStringLiteral("<response Operation='ParkingCheckResponse'/>") << "nothing";
        QTest::newRow("SOAP envelope") << QStringLiteral("<s:Envelope xmlns:s='urn:s'><s:Body><Response "
                                                         "Operation='ParkingCheckResponse'/></s:Body></s:Envelope>")
                                       << "nothing";
        QTest::newRow("comment and declaration before the root")
            << QStringLiteral("<?xml version='1.0'?><!-- c --><?p i?>"
                              "<Response Operation='ParkingCheckResponse'/>")
            << "check";
        QTest::newRow("garbage behind the root")
            << QStringLiteral("<Response Operation='ParkingCheckResponse'></Response>garbage<") << "check";
        QTest::newRow("breaks off behind the start tag")
            << QStringLiteral("<Response Operation='ParkingCheckResponse'>") << "check";
        QTest::newRow("breaks off in the start tag")
            << QStringLiteral("<Response Operation='ParkingCheckResponse'") << "nothing";
        QTest::newRow("empty") << QString() << "nothing";
        QTest::newRow("blanks") << QStringLiteral(" \n ") << "nothing";
        QTest::newRow("no XML") << QStringLiteral("502 Bad Gateway") << "nothing";
    }

    void parse_body_isDispatchedByItsOperation()
    {
        QFETCH(QString, body);
        QFETCH(QString, answer);
        QCOMPARE(kind(parsed(body).get()), answer);
        QCOMPARE(kind(Answer(BaseParkomatResponse::parse(body.toUtf8())).get()), answer);
        MessageLog::drop();
        QXmlStreamReader reader(body);
        QCOMPARE(kind(Answer(BaseParkomatResponse::parse(&reader)).get()), answer);
    }

    void parse_resultCode_isADecimalNumberOrZero_data()
    {
        QTest::addColumn<QString>("attribute");
        QTest::addColumn<int>("code");
        QTest::newRow("success") << "ResultCode='1'" << 1;
        QTest::newRow("negative") << "ResultCode='-5'" << -5;
        QTest::newRow("missing") << "" << 0;
        QTest::newRow("empty") << "ResultCode=''" << 0;
        QTest::newRow("word") << "ResultCode='abc'" << 0;
        QTest::newRow("fraction") << "ResultCode='1.0'" << 0;
        QTest::newRow("hexadecimal") << "ResultCode='0x1'" << 0;
        QTest::newRow("largest") << "ResultCode='2147483647'" << 2147483647;
        QTest::newRow("too large") << "ResultCode='2147483648'" << 0;
        QTest::newRow("with a prefix") << "xmlns:a='urn:a' a:ResultCode='1'" << 0;
    }

    void parse_resultCode_isADecimalNumberOrZero()
    {
        QFETCH(QString, attribute);
        QFETCH(int, code);
        const Answer answer = parsed(QStringLiteral("<Response Operation='ParkingCheckResponse' %1/>").arg(attribute));
        MessageLog::drop();
        QVERIFY(answer);
        QCOMPARE(answer->resultCode(), code);
    }

    void parse_children_becomeProperties_data()
    {
        QTest::addColumn<QString>("children");
        QTest::addColumn<QString>("sessionId");
        QTest::addColumn<QString>("errorInfo");
        QTest::newRow("any order") << "<ErrorInfo>e</ErrorInfo><SessionId>s</SessionId>"
                                   << "s"
                                   << "e";
        QTest::newRow("blanks are kept") << "<SessionId> s\n</SessionId>"
                                         << " s\n"
                                         << "";
        QTest::newRow("later one wins") << "<SessionId>1</SessionId><SessionId>2</SessionId>"
                                        << "2"
                                        << "";
        QTest::newRow("names are case-sensitive") << "<sessionid>s</sessionid>"
                                                  << ""
                                                  << "";
        QTest::newRow("prefix does not count") << "<a:SessionId xmlns:a='urn:a'>s</a:SessionId>"
                                               << "s"
                                               << "";
        QTest::newRow("text between is ignored") << "x<SessionId>s</SessionId>y<ErrorInfo>e</ErrorInfo>z"
                                                 << "s"
                                                 << "e";
        QTest::newRow("comments and instructions are ignored")
            << "<!-- c --><SessionId>s<!-- c -->t<?p i?></SessionId><?p i?>"
            << "st"
            << "";
        QTest::newRow("entities and CDATA are text")
            << "<SessionId>&lt;&amp;&#x416;<![CDATA[<b>&amp;]]></SessionId>" << QStringLiteral("<&Ж<b>&amp;") << "";
        QTest::newRow("unknown children are ignored") << "<Extra>x</Extra><SessionId>s</SessionId>"
                                                      << "s"
                                                      << "";
        QTest::newRow("nested element ends the gathering")
            << "<SessionId>s</SessionId><X>1<Y>2</Y></X><ErrorInfo>e</ErrorInfo>"
            << "s"
            << "";
        QTest::newRow("undefined entity ends the gathering")
            << "<SessionId>s</SessionId><X>&undefined;</X><ErrorInfo>e</ErrorInfo>"
            << "s"
            << "";
        QTest::newRow("wrong end tag ends the gathering") << "<SessionId>s</SessionId></X><ErrorInfo>e</ErrorInfo>"
                                                          << "s"
                                                          << "";
    }

    void parse_children_becomeProperties()
    {
        QFETCH(QString, children);
        QFETCH(QString, sessionId);
        QFETCH(QString, errorInfo);
        const Answer answer = parsed(check(children));
        MessageLog::drop();
        QCOMPARE(kind(answer.get()), QStringLiteral("check"));
        QCOMPARE(dynamic_cast<ParkingCheckResponse &>(*answer).sessionId(), sessionId);
        QCOMPARE(answer->errorInfo(), errorInfo);
    }

    void parse_brokenOffAnywhere_keepsWholePropertiesOnly()
    {
        const QString body = check(QStringLiteral("<SessionId>123</SessionId><ParkingId>456</ParkingId>"
                                                  "<ErrorInfo>789</ErrorInfo><TotalCharge>15000</TotalCharge>"));
        const int rootEnd = body.indexOf(QLatin1Char('>')) + 1;
        for (int size = 0; size <= body.size(); ++size) {
            const Answer answer = parsed(body.left(size));
            MessageLog::drop();
            QCOMPARE(answer != nullptr, size >= rootEnd);
            if (!answer)
                continue;
            const auto &response = dynamic_cast<ParkingCheckResponse &>(*answer);
            const auto isWhole = [&](const char *endTag) {
                const QString tag = QLatin1String(endTag);
                return size >= body.indexOf(tag) + tag.size();
            };
            QCOMPARE(response.resultCode(), 1);
            QCOMPARE(response.sessionId(), isWhole("</SessionId>") ? QStringLiteral("123") : QString());
            QCOMPARE(response.parkingId(), isWhole("</ParkingId>") ? QStringLiteral("456") : QString());
            QCOMPARE(response.errorInfo(), isWhole("</ErrorInfo>") ? QStringLiteral("789") : QString());
            QCOMPARE(response.totalCharge().value(), isWhole("</TotalCharge>") ? qint64(15000) : qint64(0));
        }
    }

    void parse_bytes_areDecodedByTheirDeclaration()
    {
        const QByteArray body = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>"
                                "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"2\">"
                                "<ErrorInfo>\xca\xe0\xf0\xf2\xe0</ErrorInfo></Response>";
        const Answer answer(BaseParkomatResponse::parse(body));
        MessageLog::drop();
        QVERIFY(answer);
        QCOMPARE(answer->errorInfo(), QStringLiteral("Карта"));
    }

    void parse_noReader_isNothing()
    {
        QVERIFY(BaseParkomatResponse::parse(static_cast<QXmlStreamReader *>(nullptr)) == nullptr);
    }

    void parse_reader_isReadToTheRootsEndOnly()
    {
        QXmlStreamReader reader(check(QString()) + QStringLiteral("<"));
        const Answer answer(BaseParkomatResponse::parse(&reader));
        QVERIFY(answer);
        QVERIFY(!reader.hasError());
        QVERIFY(reader.isEndElement());
        QCOMPARE(reader.name().toString(), QStringLiteral("Response"));
    }

    void parse_hugeText_isTakenWhole()
    {
        const QString text(1024 * 1024, QLatin1Char('x'));
        const Answer answer = parsed(check(QStringLiteral("<SessionId>%1</SessionId>").arg(text)));
        MessageLog::drop();
        QCOMPARE(dynamic_cast<ParkingCheckResponse &>(*answer).sessionId(), text);
    }

    void parse_entityBomb_doesNotGrow()
    {
        QString entities = QStringLiteral("<!ENTITY e0 'xxxxxxxxxx'>");
        for (int i = 1; i < 12; ++i) {
            const QString before = QStringLiteral("&e%1;").arg(i - 1);
            entities += QStringLiteral("<!ENTITY e%1 '%2'>").arg(i).arg(before.repeated(10));
        }
        const Answer answer = parsed(QStringLiteral("<!DOCTYPE Response [%1]>").arg(entities) +
                                     check(QStringLiteral("<SessionId>s</SessionId><ParkingId>&e11;</ParkingId>")));
        MessageLog::drop();
        const auto &response = dynamic_cast<ParkingCheckResponse &>(*answer);
        QCOMPARE(response.sessionId(), QStringLiteral("s"));
        QCOMPARE(response.parkingId(), QString());
    }

    void parse_severalThreads_eachReadsItsOwn()
    {
        std::array<bool, 4> isRight = {};
        std::array<std::thread, 4> threads;
        for (std::size_t i = 0; i < threads.size(); ++i) {
            threads.at(i) = std::thread([&isRight, i] {
                bool isEachRight = true;
                for (int call = 0; call < 100; ++call) {
                    const QString id = QStringLiteral("%1-%2").arg(i).arg(call);
                    const Answer answer = parsed(check(QStringLiteral("<SessionId>%1</SessionId>").arg(id)));
                    const auto *response = dynamic_cast<const ParkingCheckResponse *>(answer.get());
                    isEachRight = isEachRight && response != nullptr && response->sessionId() == id;
                }
                isRight.at(i) = isEachRight;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        MessageLog::drop();
        for (const bool isThreadRight : isRight)
            QVERIFY(isThreadRight);
    }

    void log_body_isWrittenWholeLineByLine_data()
    {
        QTest::addColumn<bool>("isText");
        QTest::addColumn<QString>("function");
        QTest::newRow("text") << true << "static BaseParkomatResponse* BaseParkomatResponse::parse(const QString&)";
        QTest::newRow("bytes") << false
                               << "static BaseParkomatResponse* BaseParkomatResponse::parse(const QByteArray&)";
    }

    void log_body_isWrittenWholeLineByLine()
    {
        QFETCH(bool, isText);
        QFETCH(QString, function);
        const QString body = QStringLiteral("no XML, Ж\n\nbut three \"lines\"  of text\n");
        QVERIFY((isText ? BaseParkomatResponse::parse(body) : BaseParkomatResponse::parse(body.toUtf8())) == nullptr);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("default"));
        QCOMPARE(lines.at(0).file, QStringLiteral("src/baseparkomatresponse.cpp"));
        QVERIFY(lines.at(0).line > 0);
        QCOMPARE(lines.at(0).function, function);
        QCOMPARE(lines.at(0).text, body);
    }

    void log_linesOfTwoPlaces_haveTheirOwnNumbers()
    {
        QVERIFY(BaseParkomatResponse::parse(QString()) == nullptr);
        QVERIFY(BaseParkomatResponse::parse(QByteArray()) == nullptr);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.at(0).line != lines.at(1).line);
    }

    void log_bytes_endAtTheFirstZeroByte()
    {
        QVERIFY(BaseParkomatResponse::parse(QByteArray("ab\0cd", 5)) == nullptr);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).text, QStringLiteral("ab"));
    }
};

TEST_MAIN(BaseParkomatResponseTest)
#include "tst_baseparkomatresponse.moc"
