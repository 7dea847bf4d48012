// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "schemabreaks.h"
#include "support/testcase.h"

namespace {
/// The documents between the fences in the protocol's description.
QList<QByteArray> documentedExamples()
{
    QFile file(QStringLiteral(PROTOCOL_SCHEMAS "/../protocol.md"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QRegularExpression fenced(QStringLiteral("```xml\n(.*?)```"), QRegularExpression::DotMatchesEverythingOption);
    QList<QByteArray> examples;
    auto match = fenced.globalMatch(QString::fromUtf8(file.readAll()));
    while (match.hasNext())
        examples.append(match.next().captured(1).toUtf8());
    return examples;
}

/// @param from a regular expression.
void broken(const QByteArray &rule, const char *kind, const QByteArray &from, const QByteArray &to,
            const QByteArray &breach)
{
    SchemaBreaks::add(rule, kind, QString::fromUtf8(from), to, breach);
}
} // namespace

/// The answers' schemas: that each of their rules is one, and that the protocol's examples hold.
class AnswerSchemaTest : public TestCase
{
    Q_OBJECT

private:
    static void brokenValue(const QByteArray &rule, const char *kind, const QByteArray &element,
                            const QByteArray &value)
    {
        broken(rule, kind, '<' + element + ">[^<]*<", '<' + element + '>' + value + '<', '\'' + element + '\'');
    }

    static void addBrokenEnvelopes(const char *kind)
    {
        const auto breaks = [kind](const char *rule, const char *from, const char *to, const char *breach) {
            broken(rule, kind, from, to, breach);
        };
        breaks("root of another name", "Response( |>)", "response\\1", "No matching global declaration");
        breaks("root in a namespace", "<Response ", "<Response xmlns=\"urn:x\" ", "No matching global declaration");
        breaks("operation missing", "Operation=\"\\w+\"", "", "'Operation' is required but missing");
        breaks("operation of the request", "Response\"", "\"", "'Operation'");
        breaks("result code missing", "ResultCode=\"1\"", "", "'ResultCode' is required but missing");
        breaks("result code empty", "ResultCode=\"1\"", "ResultCode=\"\"", "'ResultCode'");
        breaks("result code no number", "ResultCode=\"1\"", "ResultCode=\"OK\"", "'ResultCode'");
        breaks("result code with a plus sign", "ResultCode=\"1\"", "ResultCode=\"+1\"", "'ResultCode'");
        breaks("result code beyond 32 bits", "ResultCode=\"1\"", "ResultCode=\"2147483648\"", "'ResultCode'");
        breaks("attribute unknown", "ResultCode", "Mode=\"x\" ResultCode", "'Mode' is not allowed");
        breaks("text between the children", "<SessionId>", "x<SessionId>", "Character content");
        breaks("child unknown", "<SessionId>", "<Mode/><SessionId>", "'Mode': This element is not expected");
        breaks("child in lower case", "<ErrorInfo/>", "<errorInfo/>", "'errorInfo': This element is not expected");
        breaks("child twice", "<ErrorInfo/>", "<ErrorInfo/><ErrorInfo/>", "'ErrorInfo': This element is not expected");
        breaks("child with an element inside", "<ErrorInfo/>", "<ErrorInfo><b/></ErrorInfo>", "not allowed");
        addBrokenTimes(kind, "AnticipatedStopTime");
        addBrokenTimes(kind, "AnswerTime");
    }

    static void addBrokenTimes(const char *kind, const QByteArray &element)
    {
        const QList<QPair<const char *, const char *>> times = {{"empty", ""},
                                                                {"in German", "14.05.2019 09:30"},
                                                                {"without a time", "2019-05-14"},
                                                                {"without a date", "10:05:42"},
                                                                {"without a T", "2019-05-14 09:30:00"},
                                                                {"without seconds", "2019-05-14T09:30"},
                                                                {"with a fraction of nothing", "2019-05-14T09:30:00."},
                                                                {"with a comma", "2019-05-14T09:30:00,5"},
                                                                {"offset without a colon", "2019-05-14T09:30:00+0300"},
                                                                {"hour 24", "2019-05-14T24:00:00"},
                                                                {"month 13", "2019-13-14T09:30:00"},
                                                                {"31 June", "2019-06-31T09:30:00"}};
        for (const auto &[rule, time] : times)
            brokenValue(element + ' ' + rule, kind, element, time);
    }

    static void addBrokenValues()
    {
        const char *kind = "parkingcheck";
        for (const QByteArray element : {"StartTime", "LastChangeTime"})
            addBrokenTimes(kind, element);
        for (const QByteArray element : {"TotalCharge", "AmountSum"}) {
            for (const QByteArray wrong : {"", "150.00", "150,00", "+15000", "015000", "x", "9223372036854775808"})
                brokenValue(element + " \"" + wrong + '"', kind, element, wrong);
        }
        for (const QByteArray element : {"CanExtend", "CanStop"}) {
            for (const QByteArray wrong : {"", "true", "false", "yes", "+1", "2147483648"})
                brokenValue(element + " \"" + wrong + '"', kind, element, wrong);
        }
        broken("PartnerId present", kind, "<SessionId>", "<PartnerId/><SessionId>", "'PartnerId'");
        broken("TotalCharge present", "parkinfopay", "<SessionId>", "<TotalCharge>1</TotalCharge><SessionId>",
               "'TotalCharge'");
    }

private Q_SLOTS:
    void documentedExample_againstItsSchema_holds_data()
    {
        QTest::addColumn<QByteArray>("example");
        QTest::addColumn<QString>("schemaName");
        const QList<QByteArray> examples = documentedExamples();
        QCOMPARE(examples.size(), 5);
        const char *const schemas[] = {"request-parkingcheck.xsd", "request-parkinfopay.xsd",
                                       "response-parkingcheck.xsd", "response-parkinfopay.xsd",
                                       "response-parkingcheck.xsd"};
        for (int i = 0; i < examples.size(); ++i)
            QTest::addRow("%d: %s", i + 1, schemas[i]) << examples.at(i) << QString::fromLatin1(schemas[i]);
    }

    void documentedExample_againstItsSchema_holds()
    {
        QFETCH(const QByteArray, example);
        QFETCH(const QString, schemaName);
        const SecondParser::Schema schema(schemaName);
        QVERIFY(schema.isLoaded());
        QCOMPARE(schema.breaches(SecondParser::Document(example)), QStringList());
    }

    void schema_documentBreakingOneRule_doesNotHold_data()
    {
        SchemaBreaks::addColumns();
        addBrokenEnvelopes("parkingcheck");
        addBrokenEnvelopes("parkinfopay");
        addBrokenValues();
    }

    void schema_documentBreakingOneRule_doesNotHold()
    {
        QFETCH(const QString, kind);
        SchemaBreaks::verify(QStringLiteral("response-%1.xsd").arg(kind),
                             SchemaBreaks::inOneLine(QStringLiteral(TEST_DATA "/answers/good-%1.xml").arg(kind)));
    }
};

TEST_MAIN(AnswerSchemaTest)
#include "tst_answerschema.moc"
