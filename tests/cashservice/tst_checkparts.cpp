// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "check/answer.h"
#include "check/card.h"
#include "check/decoding.h"
#include "check/formats.h"
#include "check/request.h"
#include "check/serviceurl.h"
#include "support/testcase.h"

#include <functional>

using namespace conformance;

namespace {
std::string response(const std::string &content)
{
    return "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"1\">" + content + "</Response>";
}

Request smallRequest()
{
    return {"ParkInfoPay",
            {{"RecordVersion", "2", {}}, {"NumRequest", "1", {}}},
            {"Request", {}, {{"TermId", "A&B", {}}, {"CardId", "", {}}, {"Payments", {}, {{"Uin", "<7>", {}}}}}}};
}
} // namespace

Q_DECLARE_METATYPE(std::function<bool(std::string)>)

/// What the check reads answers with and makes requests of.
class CheckPartsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void format_text_isJudged_data()
    {
        QTest::addColumn<std::function<bool(std::string)>>("judge");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("holds");
        const auto row = [](const char *name, bool (*judge)(const std::string &), const QByteArray &text, bool holds) {
            QTest::addRow("%s \"%s\"", name, text.left(40).constData())
                << std::function<bool(std::string)>(judge) << text << holds;
        };
        for (const char *text : {"0", "1", "-1", "15000", "9223372036854775807", "-9223372036854775808"})
            row("number", isWholeNumber, text, true);
        for (const char *text : {"", "-", "-0", "007", "+1", "1.00", "1,00", " 1", "1 ", "1e3", "9223372036854775808",
                                 "-9223372036854775809"})
            row("number", isWholeNumber, text, false);
        for (const char *text : {"0", "1", "2", "-1", "01", "2147483647"})
            row("flag", isFlag, text, true);
        for (const char *text : {"", "true", "1.0", "+1", "2147483648"})
            row("flag", isFlag, text, false);
        for (const char *text : {"0", "1", "-5", "2147483647"})
            row("code", isResultCode, text, true);
        for (const char *text : {"", "01", "one", "1 ", "2147483648"})
            row("code", isResultCode, text, false);
        for (const char *text :
             {"2019-05-14T09:30:00", "2019-05-14T09:30:00.5", "2019-05-14T09:30:00Z", "2019-05-14T09:30:00+03:00",
              "2019-05-14T09:30:00-14:00", "2020-02-29T00:00:00", "2000-02-29T23:59:59", "2019-12-31T00:00:00"})
            row("time", isTimeStamp, text, true);
        for (const char *text : {"",
                                 "14.05.2019 09:30",
                                 "2019-05-14",
                                 "2019-05-14 09:30:00",
                                 "2019-05-14T09:30",
                                 "2019-05-14T24:00:00",
                                 "2019-05-14T09:60:00",
                                 "2019-05-14T09:30:60",
                                 "2019-13-14T09:30:00",
                                 "2019-00-14T09:30:00",
                                 "2019-05-00T09:30:00",
                                 "2019-04-31T09:30:00",
                                 "2019-02-29T09:30:00",
                                 "2100-02-29T09:30:00",
                                 "0000-01-01T00:00:00",
                                 "2019-05-14T09:30:00 ",
                                 "2019-05-14T09:30:00.",
                                 "2019-05-14T09:30:00+3",
                                 "2019-05-14T09:30:00+14:30",
                                 "2019-05-14T09:30:00+15:00"})
            row("time", isTimeStamp, text, false);
        // Long enough to fill the stack of a regular expression.
        const QByteArray endless(1'000'000, '1');
        row("number", isWholeNumber, endless, false);
        row("flag", isFlag, endless, false);
        row("time", isTimeStamp, "2019-05-14T09:30:00." + endless, false);
    }

    void format_text_isJudged()
    {
        QFETCH(std::function<bool(std::string)>, judge);
        QFETCH(QByteArray, text);
        QTEST(judge(text.toStdString()), "holds");
    }

    void decoded_document_followsItsDeclaration_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("complaint");
        const auto declared = [](const char *encoding) {
            return QByteArray("<?xml version=\"1.0\" encoding=\"") + encoding + "\"?>";
        };
        const auto utf16 = [](const char *text) {
            QByteArray bytes;
            for (const char *c = text; *c != '\0'; ++c)
                bytes.append(*c).append('\0');
            return bytes;
        };
        const QString cyrillic = QStringLiteral("Касса");
        QTest::newRow("none declared") << cyrillic.toUtf8() << cyrillic << QString();
        QTest::newRow("UTF-8") << declared("utf-8") + cyrillic.toUtf8() << QString(declared("utf-8") + cyrillic)
                               << QString();
        QTest::newRow("windows-1251") << declared("windows-1251") + "\xCA\xE0"
                                      << QString(declared("windows-1251") + "Ка") << QString();
        QTest::newRow("mark of UTF-8") << QByteArray("\xEF\xBB\xBF<a/>") << "<a/>" << QString();
        QTest::newRow("mark of UTF-16") << "\xFF\xFE" + utf16("<a/>") << "<a/>" << QString();
        QTest::newRow("UTF-16 without a mark") << utf16("<a/>") << "<a/>" << QString();
        QTest::newRow("not what is declared")
            << declared("US-ASCII") + "a\xE0z" << QString(declared("US-ASCII") + "a?z") << "byte 42 is not US-ASCII";
        QTest::newRow("not UTF-8") << QByteArray("ab\xE0") << "ab?"
                                   << "byte 2 is not UTF-8";
        QTest::newRow("no encoding") << declared("UTF-9") + "a" << QString(declared("UTF-9") + "a")
                                     << "it declares \"UTF-9\", which is no encoding";
        QTest::newRow("empty") << QByteArray() << QString() << QString();
    }

    void decoded_document_followsItsDeclaration()
    {
        QFETCH(QByteArray, document);
        const Decoded result = decoded(document.toStdString());
        QTEST(QString::fromStdString(result.text), "text");
        QTEST(QString::fromStdString(result.complaint), "complaint");
    }

    void answer_document_isJudgedAsXml_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<bool>("isWellFormed");
        const auto row = [](const char *name, const std::string &document, bool isWellFormed) {
            QTest::newRow(name) << QByteArray::fromStdString(document) << isWellFormed;
        };
        row("plain", response("<A>1</A>"), true);
        row("entities", response("<A>&amp;&lt;&gt;&quot;&apos;&#38;&#x26;</A>"), true);
        row("ampersand in CDATA", response("<A><![CDATA[a & b]]></A>"), true);
        row("ampersand in a comment", response("<!-- a & b -->"), true);
        row("comment after the root", response("") + "<!-- -->", true);
        row("bare ampersand", response("<A>a & b</A>"), false);
        row("unknown entity", response("<A>&nbsp;</A>"), false);
        row("control character", response("<A>\x01</A>"), false);
        row("attribute twice", response("<A b=\"1\" b=\"2\"/>"), false);
        row("less-than sign in an attribute", response("<A b=\"<\"/>"), false);
        row("end of a section in a text", response("<A>]]></A>"), false);
        row("two hyphens in a comment", response("<!-- -- -->"), false);
        row("reference to no character", response("<A>&#0;</A>"), false);
        row("declaration behind a line break", "\n<?xml version=\"1.0\"?>" + response(""), false);
        row("element named by a digit", response("<1/>"), false);
        row("entity of its own", "<!DOCTYPE Response [<!ENTITY a \"b\">]>" + response("<A>&a;</A>"), true);
        row("declared in another encoding", "<?xml version=\"1.0\" encoding=\"windows-1251\"?>" + response("<A>?</A>"),
            true);
        row("two roots", response("") + response(""), false);
        row("cut off", response("").substr(0, 60), false);
        row("empty", "", false);
        row("no XML", "OK", false);
    }

    void answer_document_isJudgedAsXml()
    {
        QFETCH(QByteArray, document);
        QTEST(Answer(document.toStdString()).xmlComplaint.empty(), "isWellFormed");
    }

    void answer_goodOne_isRead()
    {
        const Answer answer(response("<A>1</A><B>x &amp; y</B><A>2</A><TotalCharge>150.00</TotalCharge>"));
        QVERIFY(answer.isResponse && answer.isSuccess() && !answer.isWrapped);
        QCOMPARE(answer.field("A").value_or(""), std::string("2"));
        QCOMPARE(answer.field("B").value_or(""), std::string("x & y"));
        QVERIFY(!answer.field("C"));
        QCOMPARE(answer.amount("TotalCharge"), 15000LL);
        QCOMPARE(answer.amount("AmountSum"), 0LL);
        QCOMPARE(answer.summary(), std::string("ResultCode 1"));
    }

    void answer_badOnes_areForgiven()
    {
        const Answer lowerCase("<response resultCode=\"1\"><A><B/></A></response>");
        QVERIFY(lowerCase.isResponse && lowerCase.isSuccess());
        QCOMPARE(lowerCase.name, std::string("response"));
        QVERIFY(!lowerCase.attribute("ResultCode"));
        QVERIFY(lowerCase.fields.front().holdsElements);
        const Answer wrapped("<s:Envelope><s:Body>" + response("<ErrorInfo>no</ErrorInfo>") + "</s:Body></s:Envelope>");
        QVERIFY(wrapped.isResponse && wrapped.isWrapped);
        QCOMPARE(wrapped.summary(), std::string("ResultCode 1, \"no\""));
        const Answer other("<html/>");
        QVERIFY(!other.isResponse && !other.isSuccess());
        QCOMPARE(other.summary(), std::string("no Response in the body"));
    }

    void request_parts_areWrittenAndChanged()
    {
        const Request request = smallRequest();
        QCOMPARE(request.xml(), std::string("<?xml version=\"1.0\"?>\n"
                                            "<Request RecordVersion=\"2\" NumRequest=\"1\">\n"
                                            "    <TermId>A&amp;B</TermId>\n"
                                            "    <CardId></CardId>\n"
                                            "    <Payments>\n"
                                            "        <Uin>&lt;7&gt;</Uin>\n"
                                            "    </Payments>\n"
                                            "</Request>\n"));
        const auto children = [](const Request &changed) {
            std::string names;
            for (const Node &child : changed.root.children)
                names += child.name + " ";
            return names;
        };
        QCOMPARE(with(request, "Uin", "8").root.children[2].children[0].text, std::string("8"));
        QCOMPARE(children(without(request, "CardId")), std::string("TermId Payments "));
        QCOMPARE(children(withTwice(request, "TermId")), std::string("TermId TermId CardId Payments "));
        QCOMPARE(children(withLater(request, "TermId")), std::string("CardId TermId Payments "));
        QCOMPARE(withAttribute(request, "NumRequest", "2").attributes[1].text, std::string("2"));
        QCOMPARE(withoutAttribute(request, "RecordVersion").attributes.size(), std::size_t(1));
        QVERIFY_EXCEPTION_THROWN(static_cast<void>(with(request, "Tax", "")), std::logic_error);
        QVERIFY_EXCEPTION_THROWN(static_cast<void>(withLater(request, "Uin")), std::logic_error);
    }

    void serviceUrl_text_isRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("origin");
        QTest::addColumn<QString>("path");
        QTest::newRow("usual") << "http://127.0.0.1:13006/api"
                               << "http://127.0.0.1:13006"
                               << "/api";
        QTest::newRow("slash at the end") << "http://cash:1/api/"
                                          << "http://cash:1"
                                          << "/api";
        QTest::newRow("no path") << "http://cash:65535"
                                 << "http://cash:65535"
                                 << "";
        QTest::newRow("no port") << "http://cash.example/a/b"
                                 << "http://cash.example:80"
                                 << "/a/b";
        QTest::newRow("IPv6") << "http://[::1]:13006/api"
                              << "http://[::1]:13006"
                              << "/api";
        for (const char *bad : {"", "here", "ftp://cash/api", "https://cash/api", "http://", "http:///api",
                                "http://cash:0/api", "http://cash:65536/api", "http://cash:port/api", "http://cash/a b",
                                "http://cash/api?x", "http://cash/'$(x)'", "http://u@cash/api"})
            QTest::newRow(bad) << bad << ""
                               << "";
    }

    void serviceUrl_text_isRead()
    {
        QFETCH(QString, text);
        const ServiceUrl url = readServiceUrl(text.toStdString()).value_or(ServiceUrl());
        QTEST(QString::fromStdString(url.origin), "origin");
        QTEST(QString::fromStdString(url.path), "path");
    }

    void card_text_isRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isCard");
        QTest::newRow("good") << "78563412:000123456" << true;
        QTest::newRow("colon in the number") << "ABCDEF01:1:2" << true;
        for (const char *bad : {"", "78563412", "78563412:", "7856341:1", "785634120:1", "7856341g:1", "abcdef01:1"})
            QTest::newRow(bad) << bad << false;
    }

    void card_text_isRead()
    {
        QFETCH(QString, text);
        const std::optional<Card> card = readCard(text.toStdString());
        QTEST(card.has_value(), "isCard");
        if (card)
            QCOMPARE(toString(*card), text.toStdString());
    }
};

TEST_MAIN(CheckPartsTest)
#include "tst_checkparts.moc"
