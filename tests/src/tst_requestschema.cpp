// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "schemabreaks.h"
#include "support/testcase.h"

namespace {
/// @param kind "parkingcheck" or "parkinfopay".
QString goodRequest(const QString &kind)
{
    return SchemaBreaks::inOneLine(QStringLiteral(TEST_DATA "/requests/%1-moscow.xml").arg(kind));
}

/// @param from a text, and @a to takes its place. "%PAYMENT%" is all that the good request has in its payments,
/// "%OPERATION%" its operation.
void broken(const QByteArray &rule, const char *kind, QByteArray from, QByteArray to, const QByteArray &breach)
{
    const QByteArray good = goodRequest(QString::fromLatin1(kind)).toUtf8();
    const int payments = good.indexOf("<Payments>") + int(qstrlen("<Payments>"));
    const QByteArray payment = good.mid(payments, good.indexOf("</Payments>") - payments);
    for (QByteArray *text : {&from, &to}) {
        text->replace("%PAYMENT%", payment);
        text->replace("%OPERATION%", good.split('"').value(7));
    }
    SchemaBreaks::add(rule, kind, QRegularExpression::escape(QString::fromUtf8(from)), to, breach);
}

/// broken() for rows that are all of one kind.
auto breaking(const char *kind)
{
    return [kind](const char *rule, const char *from, const char *to, const char *breach) {
        broken(rule, kind, from, to, breach);
    };
}
} // namespace

/// The requests' schemas: that each of their rules is one.
class RequestSchemaTest : public TestCase
{
    Q_OBJECT

private:
    static void addBrokenHeaders(const char *schema)
    {
        const auto breaks = breaking(schema);
        breaks("root of another name", "Request", "Requests", "'Requests': No matching global declaration");
        breaks("root in a namespace", "<Request ", "<Request xmlns='urn:x' ", "No matching global declaration");
        breaks("RecordVersion missing", " RecordVersion=\"2\"", "", "'RecordVersion' is required but missing");
        breaks("RecordVersion other", "RecordVersion=\"2\"", "RecordVersion=\"3\"", "'RecordVersion': The value '3'");
        breaks("NumRequest missing", " NumRequest=\"1\"", "", "'NumRequest' is required but missing");
        breaks("NumRequest other", "NumRequest=\"1\"", "NumRequest=\"2\"", "'NumRequest': The value '2'");
        breaks("Operation missing", " Operation=\"%OPERATION%\"", "", "'Operation' is required but missing");
        breaks("Operation in lower case", "\"Park", "\"park", "'Operation': The value 'park");
        breaks("attribute unknown", "<Request ", "<Request Mode=\"x\" ", "'Mode' is not allowed");
        breaks("text between the elements", "<PartnerId>", "x<PartnerId>", "Character content");
        breaks("element unknown", "<PartnerId>", "<Mode/><PartnerId>", "'Mode': This element is not expected");
        breaks("PartnerId missing", "<PartnerId>north</PartnerId>", "", "Expected is ( PartnerId )");
        breaks("PartnerId twice", "<PartnerId>", "<PartnerId/><PartnerId>", "Expected is ( ParkingId )");
        breaks("PartnerId with an element inside", ">north<", "><b/><", "Element content is not allowed");
        breaks("ParkingId missing", "<ParkingId>12</ParkingId>", "", "Expected is ( ParkingId )");
        breaks("ParkingId before PartnerId", "<PartnerId>", "<ParkingId>1</ParkingId><PartnerId>",
               "Expected is ( PartnerId )");
        breaks("TermId missing", "<TermId>0042</TermId>", "", "Expected is ( TermId )");
        breaks("SessionId missing", "<SessionId>004224140509067001</SessionId>", "", "Expected is ( SessionId )");
        breaks("SessionId empty", "004224140509067001", "", "'SessionId'");
        breaks("SessionId too short", "004224140509067001", "24140509067001", "'SessionId'");
        breaks("SessionId with a short term id", "004224140509067001", "4224140509067001", "'SessionId'");
        breaks("SessionId with a letter at its end", "004224140509067001", "00422414050906700A", "'SessionId'");
        breaks("SessionId at hour 24", "004224140509067001", "004224240509067001", "'SessionId'");
        breaks("SessionId at minute 60", "004224140509067001", "004224146009067001", "'SessionId'");
        breaks("SessionId at second 60", "004224140509067001", "004224140560067001", "'SessionId'");
        breaks("SessionId on day 370", "004224140509067001", "004224140509370001", "'SessionId'");
        breaks("SessionId with a line break behind", "004224140509067001", "004224140509067001&#10;", "'SessionId'");
        breaks("CardUid missing", "<CardUid>78563412</CardUid>", "", "Expected is ( CardUid )");
        breaks("CardUid empty", "78563412", "", "'CardUid'");
        breaks("CardUid of seven digits", "78563412", "7856341", "'CardUid'");
        breaks("CardUid of nine digits", "78563412", "785634120", "'CardUid'");
        breaks("CardUid in lower case", "78563412", "7856341f", "'CardUid'");
        breaks("CardUid no hexadecimal", "78563412", "7856341G", "'CardUid'");
        breaks("CardUid with a blank", "78563412", " 78563412", "'CardUid'");
        breaks("CardId missing", "<CardId>000123456</CardId>", "", "Expected is ( CardId )");
        breaks("RequestTime missing", "<RequestTime>2024-03-07T14:05:09+03:00</RequestTime>", "", "RequestTime )");
        addBrokenTimes(schema, "RequestTime", "2024-03-07T14:05:09+03:00");
    }

    static void addBrokenTimes(const char *schema, const char *element, const char *time)
    {
        const QList<QPair<const char *, const char *>> times = {
            {"empty", ""},
            {"offset alone", "+03:00"},
            {"without a time", "2024-03-07"},
            {"without a T", "2024-03-07 14:05:09+03:00"},
            {"without seconds", "2024-03-07T14:05+03:00"},
            {"with a fraction", "2024-03-07T14:05:09.5+03:00"},
            {"in UTC by letter", "2024-03-07T14:05:09Z"},
            {"offset without a colon", "2024-03-07T14:05:09+0300"},
            {"offset by name", "2024-03-07T14:05:09UTC+03:00"},
            {"month 13", "2024-13-07T14:05:09+03:00"},
            {"29 February of a common year", "2023-02-29T14:05:09+03:00"},
            {"hour 24", "2024-03-07T24:00:00+03:00"},
            {"minute 60", "2024-03-07T14:60:09+03:00"},
            {"offset of 15 hours", "2024-03-07T14:05:09+15:00"},
            {"year of five digits", "12024-03-07T14:05:09+03:00"},
            {"in German", "07.03.2024 14:05:09"}};
        const QByteArray tag = element;
        for (const auto &wrong : times)
            broken(tag + ' ' + wrong.first, schema, '<' + tag + '>' + time, '<' + tag + '>' + wrong.second,
                   '\'' + tag + '\'');
    }

    static void addBrokenPayments(const char *schema)
    {
        const auto breaks = breaking(schema);
        breaks("ResultCode present", " Operation", " ResultCode=\"0\" Operation", "'ResultCode' is not allowed");
        breaks("Payments missing", "<Payments>%PAYMENT%</Payments>", "", "Expected is ( Payments )");
        breaks("Payments empty", "%PAYMENT%", "", "Expected is ( Payment )");
        breaks("Payment twice", "%PAYMENT%", "%PAYMENT%%PAYMENT%", "'Payment': This element is not expected");
        breaks("Payments with an attribute", "<Payments>", "<Payments Count=\"1\">", "'Count' is not allowed");
        breaks("Payment before the header", "<PartnerId>", "<Payments/><PartnerId>", "Expected is ( PartnerId )");
        breaks("Uin missing", "<Uin>1187</Uin>", "", "Expected is ( Uin )");
        breaks("Uin empty", ">1187<", "><", "'Uin'");
        breaks("Uin no number", ">1187<", ">x<", "'Uin'");
        breaks("Uin with a leading zero", ">1187<", ">01187<", "'Uin'");
        breaks("Uin beyond 64 bits", ">1187<", ">9223372036854775808<", "'Uin'");
        breaks("DateTime missing", "<DateTime>2024-03-07T14:06:41+03:00</DateTime>", "", "Expected is ( DateTime )");
        addBrokenTimes(schema, "DateTime", "2024-03-07T14:06:41+03:00");
        breaks("Amount missing", "<Amount>15000</Amount>", "", "Expected is ( Amount )");
        breaks("Amount empty", ">15000<", "><", "'Amount'");
        breaks("Amount with decimals", ">15000<", ">150.00<", "'Amount'");
        breaks("Amount with a plus sign", ">15000<", ">+15000<", "'Amount'");
        breaks("Amount minus zero", ">15000<", ">-0<", "'Amount'");
        breaks("Amount beyond 64 bits", ">15000<", ">-9223372036854775809<", "'Amount'");
        breaks("Type missing", "<Type>full</Type>", "", "Expected is ( Type )");
        breaks("Type empty", ">full<", "><", "'Type'");
        breaks("Type in upper case", ">full<", ">FULL<", "'Type'");
        breaks("Type with a blank", ">full<", ">full <", "'Type'");
        breaks("Type other", ">full<", ">whole<", "'Type'");
    }

private Q_SLOTS:
    void schema_documentBreakingOneRule_doesNotHold_data()
    {
        SchemaBreaks::addColumns();
        addBrokenHeaders("parkingcheck");
        broken("ResultCode missing", "parkingcheck", " ResultCode=\"0\"", "", "'ResultCode' is required but missing");
        broken("ResultCode other", "parkingcheck", "ResultCode=\"0\"", "ResultCode=\"1\"",
               "'ResultCode': The value '1'");
        broken("Payments present", "parkingcheck", "</Request>", "<Payments/></Request>", "'Payments': This element");
        addBrokenHeaders("parkinfopay");
        addBrokenPayments("parkinfopay");
    }

    void schema_documentBreakingOneRule_doesNotHold()
    {
        QFETCH(const QString, kind);
        SchemaBreaks::verify(QStringLiteral("request-%1.xsd").arg(kind), goodRequest(kind));
    }
};

TEST_MAIN(RequestSchemaTest)
#include "tst_requestschema.moc"
