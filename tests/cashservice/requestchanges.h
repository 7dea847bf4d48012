// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "request.h"
#include "requests.h"

#include <QList>
#include <QMetaType>
#include <QString>

/// Requests that are one change away from a good one, and what each change breaks.
namespace RequestChanges {
constexpr cash::Operation CHECK = cash::Operation::ParkingCheck;
constexpr cash::Operation PAY = cash::Operation::ParkInfoPay;

inline QByteArray good(cash::Operation operation)
{
    return operation == CHECK ? Requests::parkingCheck() : Requests::parkInfoPay();
}

const char REQUEST_TIME[] = "RequestTime>2024-03-07T14:05:09+03:00<";
const char PAYMENT_TIME[] = "DateTime>2024-03-07T14:06:41+03:00<";

struct Change
{
    QByteArray name;
    QByteArray from;
    QByteArray to;
    /// What the change breaks; empty where it breaks nothing.
    QString field;
};

inline QByteArray timeElement(const QByteArray &text)
{
    return text.left(text.indexOf('>') + 1);
}

inline QList<Change> timeChanges(const QByteArray &from)
{
    const QByteArray start = timeElement(from);
    const QString field = QString::fromLatin1(start.chopped(1));
    const QList<QPair<QByteArray, bool>> texts = {{"2024-03-07T14:05:09", true},
                                                  {"2024-07-07T14:05:09+01:00", true},
                                                  {"2024-03-07T14:05:09-09:30", true},
                                                  {"2024-03-07T14:05:09+14:00", true},
                                                  {"2024-02-29T23:59:59+03:00", true},
                                                  {"0001-01-01T00:00:00", true},
                                                  {" 2024-03-07T14:05:09+03:00\n", true},
                                                  {"2024-03-07T14:05:09+14:01", false},
                                                  {"2024-03-07T14:05:09+15:00", false},
                                                  {"2024-03-07T14:05:09+03:60", false},
                                                  {"2024-03-07T14:05:09+0300", false},
                                                  {"2024-03-07T14:05:09Z", false},
                                                  {"2024-03-07T14:05:09.5+03:00", false},
                                                  {"2024-03-07T14:05+03:00", false},
                                                  {"2024-03-07 14:05:09+03:00", false},
                                                  {"2024-03-07t14:05:09+03:00", false},
                                                  {"2024-03-07", false},
                                                  {"2023-02-29T14:05:09", false},
                                                  {"1900-02-29T14:05:09", false},
                                                  {"2024-04-31T14:05:09", false},
                                                  {"2024-13-07T14:05:09", false},
                                                  {"2024-00-07T14:05:09", false},
                                                  {"2024-03-00T14:05:09", false},
                                                  {"2024-03-07T24:00:00", false},
                                                  {"2024-03-07T14:60:09", false},
                                                  {"2024-03-07T14:05:60", false},
                                                  {"0000-03-07T14:05:09", false},
                                                  {"12024-03-07T14:05:09", false},
                                                  {"-2024-03-07T14:05:09", false},
                                                  {"07.03.2024 14:05:09", false},
                                                  {"+03:00", false},
                                                  {"", false}};
    QList<Change> changes;
    for (const auto &text : texts)
        changes.append({start + text.first, from, start + text.first + "<", text.second ? QString() : field});
    return changes;
}

inline QList<Change> sessionIdChanges()
{
    const QList<QPair<QByteArray, bool>> texts = {
        {"004224140509067001", true},   {"0424140509067001", false},         {"024140509067001", true},
        {"00024140509067001", true},    {"000024140509067001", true},        {"0000024140509067001", true},
        {"4224140509067001", false},    {"24140509067001", false},           {"терм24140509067001", true},
        {"тер24140509067001", false},   {"a b\nc24140509067001", true},      {"    24140509067001", true},
        {"00422414050906765536", true}, {"00422414050906799999", true},      {"004224140509067999999", false},
        {"004224140509067 01", false},  {"00422424050906700", false},        {"004224240509067001", false},
        {"004224146009067001", false},  {"004224140560067001", false},       {"004224140509370001", false},
        {"004224140509366001", true},   {"004224140509000001", true},        {"004224140509067001 ", false},
        {"0042241405090670a1", false},  {"0042241405090670\xD9\xA1", false}, {"", false}};
    QList<Change> changes;
    for (const auto &text : texts)
        changes.append({"SessionId>" + text.first, "SessionId>004224140509067001<", "SessionId>" + text.first + "<",
                        text.second ? QString() : QStringLiteral("SessionId")});
    return changes;
}

inline QList<Change> numberChanges(const QByteArray &name, const QByteArray &from)
{
    const QList<QPair<QByteArray, bool>> texts = {{"0", true},
                                                  {"1", true},
                                                  {"-1", true},
                                                  {" 15 ", true},
                                                  {"9223372036854775807", true},
                                                  {"-9223372036854775808", true},
                                                  {"9223372036854775808", false},
                                                  {"-9223372036854775809", false},
                                                  {"99999999999999999999999", false},
                                                  {"+1", false},
                                                  {"01", false},
                                                  {"-0", false},
                                                  {"-", false},
                                                  {"1 5", false},
                                                  {"150.00", false},
                                                  {"150,00", false},
                                                  {"1e3", false},
                                                  {"0x10", false},
                                                  {"x", false},
                                                  {"", false}};
    QList<Change> changes;
    for (const auto &text : texts)
        changes.append({name + '>' + text.first, name + '>' + from + '<', name + '>' + text.first + '<',
                        text.second ? QString() : QString::fromLatin1(name)});
    return changes;
}

/// In the header or around it: for both operations.
inline QList<Change> commonChanges()
{
    const auto field = [](const char *name) { return QString::fromLatin1(name); };
    return {
        {"nothing", "<Request", "<Request", QString()},
        {"declaration with an encoding", "?>", " encoding=\"utf-8\"?>", QString()},
        {"declaration that stands alone", "?>", " standalone=\"yes\"?>", QString()},
        {"declaration that does not stand alone", "?>", " encoding=\"UTF-8\" standalone='no' ?>", QString()},
        {"no declaration", "<?xml version=\"1.0\"?>\n", "", QString()},
        {"byte order mark", "<?xml", "\xEF\xBB\xBF<?xml", QString()},
        {"no line breaks", "\n", "", QString()},
        {"comments between elements", "    <CardId>", "<!-- - --><CardId>", QString()},
        {"comment inside a text", "<CardId>000", "<CardId>0<!-- > -->00", QString()},
        {"comment inside a checked text", "<CardUid>7856", "<CardUid>78<!---->56", QString()},
        {"character data section", "000123456", "<![CDATA[000123456]]>", QString()},
        {"character data that looks like a tag", "000123456", "<![CDATA[</CardId>]]>", QString()},
        {"references", "000123456", "&lt;&#48;&#x30;&amp;&quot;", QString()},
        {"attribute by reference", "Version=\"2\"", "Version=\"&#50;\"", QString()},
        {"single quotes", "Version=\"2\"", "Version='2'", QString()},
        {"instruction before the root", "<Request", "<?note?><Request", QString()},
        {"comment behind the root", "</Request>", "</Request><!-- end -->", QString()},
        {"partner empty", ">north<", "><", QString()},
        {"partner in Cyrillic", ">north<", ">\xD0\xA1\xD0\xB5\xD0\xB2\xD0\xB5\xD1\x80<", QString()},
        {"terminal of blanks", "TermId>0042<", "TermId>    <", QString()},
        {"terminal that the session is not of", "TermId>0042<", "TermId>0043<", QString()},
        {"UID of digits", "78563412<", "00000000<", QString()},
        {"UID of letters", "78563412<", "ABCDEFAB<", QString()},

        {"no document", "", "", QString()},
        {"root of another name", "Request", "request", field("Request")},
        {"root with a prefix", "<Request R", "<p:Request xmlns:p=\"urn:p\" R", field("XML")},
        {"root with a namespace", "<Request R", "<Request xmlns=\"urn:p\" R", field("xmlns")},
        {"record version 1", "RecordVersion=\"2\"", "RecordVersion=\"1\"", field("RecordVersion")},
        {"record version with a blank", "RecordVersion=\"2\"", "RecordVersion=\"2 \"", field("RecordVersion")},
        {"record version missing", "RecordVersion=\"2\" ", "", field("RecordVersion")},
        {"request number 2", "NumRequest=\"1\"", "NumRequest=\"2\"", field("NumRequest")},
        {"request number missing", " NumRequest=\"1\"", "", field("NumRequest")},
        {"operation unknown", "Operation=\"Park", "Operation=\"park", field("Operation")},
        {"attribute that nobody knows", " NumRequest", " Number=\"1\" NumRequest", field("Number")},
        {"attribute of a field", "<CardId>", "<CardId kind=\"1\">", field("kind")},
        {"text between fields", "</CardId>", "</CardId>x", field("Request")},
        {"empty section between fields", "</CardId>", "</CardId><![CDATA[]]>", field("Request")},
        {"element inside a field", "<CardId>000", "<CardId><b/>000", field("CardId")},
        {"element that nobody knows", "<CardId>", "<Card/><CardId>", field("Card")},
        {"element behind the last", "</Request>", "<More/></Request>", field("More")},
        {"field with a prefix", "<CardId>000123456</CardId>", "<p:CardId>1</p:CardId>", field("CardId")},
        {"partner missing", "    <PartnerId>north</PartnerId>\n", "", field("PartnerId")},
        {"parking missing", "    <ParkingId>12</ParkingId>\n", "", field("ParkingId")},
        {"terminal missing", "    <TermId>0042</TermId>\n", "", field("TermId")},
        {"session missing", "    <SessionId>004224140509067001</SessionId>\n", "", field("SessionId")},
        {"UID missing", "    <CardUid>78563412</CardUid>\n", "", field("CardUid")},
        {"card missing", "    <CardId>000123456</CardId>\n", "", field("CardId")},
        {"terminal twice", "<TermId>0042</TermId>", "<TermId>0042</TermId><TermId>0042</TermId>", field("TermId")},
        {"terminal before partner",
         "<PartnerId>north</PartnerId>\n    <ParkingId>12</ParkingId>\n    <TermId>0042</TermId>",
         "<TermId>0042</TermId><PartnerId>north</PartnerId><ParkingId>12</ParkingId>", field("TermId")},
        {"field in lower case", "CardId>", "cardid>", field("CardId")},
        {"UID in lower case", "78563412<", "abcdefab<", field("CardUid")},
        {"UID too short", "78563412<", "7856341<", field("CardUid")},
        {"UID too long", "78563412<", "785634120<", field("CardUid")},
        {"UID with a blank", "78563412<", "78563412 <", field("CardUid")},
        {"UID of a blank", "78563412<", " <", field("CardUid")},
        {"UID of no digits", "78563412<", "7856341G<", field("CardUid")},

        {"not closed", "</Request>", "", field("XML")},
        {"closed by another name", "</Request>", "</Requests>", field("XML")},
        {"text before the root", "<Request", "x<Request", field("XML")},
        {"text behind the root", "</Request>", "</Request>x", field("XML")},
        {"two roots", "</Request>", "</Request><Request/>", field("XML")},
        {"bare ampersand", "000123456", "0 & 1", field("XML")},
        {"unknown entity", "000123456", "&nbsp;", field("XML")},
        {"reference to nothing", "000123456", "&#0;", field("XML")},
        {"reference to a control character", "000123456", "&#x1;", field("XML")},
        {"reference without digits", "000123456", "&#;", field("XML")},
        {"reference that does not end", "000123456", "&#48", field("XML")},
        {"reference beyond the characters", "000123456", "&#x110000;", field("XML")},
        {"reference far beyond the characters", "000123456", "&#99999999999999;", field("XML")},
        {"reference to a surrogate", "000123456", "&#xD800;", field("XML")},
        {"control character", "000123456", "\x01", field("XML")},
        {"no UTF-8", "000123456", "\xC0\xAF", field("XML")},
        {"half a character", "000123456", "\xD0", field("XML")},
        {"surrogate in UTF-8", "000123456", "\xED\xA0\x80", field("XML")},
        {"no character", "000123456", "\xEF\xBF\xBF", field("XML")},
        {"end of a section in a text", "000123456", "]]>", field("XML")},
        {"two hyphens in a comment", "<CardId>", "<!-- -- --><CardId>", field("XML")},
        {"comment that does not end", "<CardId>", "<!-- <CardId>", field("XML")},
        {"section that does not end", "000123456", "<![CDATA[0", field("XML")},
        {"document type", "<Request", "<!DOCTYPE Request><Request", field("XML")},
        {"document type with an entity", "<Request", "<!DOCTYPE R [<!ENTITY e \"1\">]><Request", field("XML")},
        {"version 1.1", "version=\"1.0\"", "version=\"1.1\"", field("XML")},
        {"another encoding", "?>", " encoding=\"windows-1251\"?>", field("XML")},
        {"version twice", "?>", " version=\"1.0\"?>", field("XML")},
        {"encoding twice", "?>", " encoding=\"UTF-8\" encoding=\"UTF-8\"?>", field("XML")},
        {"encoding before the version", "<?xml", "<?xml encoding=\"UTF-8\"", field("XML")},
        {"encoding behind standalone", "?>", " standalone=\"yes\" encoding=\"UTF-8\"?>", field("XML")},
        {"standalone neither yes nor no", "?>", " standalone=\"maybe\"?>", field("XML")},
        {"attribute of the declaration that nobody knows", "?>", " mood=\"good\"?>", field("XML")},
        {"reference in the declaration", "?>", " encoding=\"UTF&#45;8\"?>", field("XML")},
        {"declaration behind a line break", "<?xml", "\n<?xml", field("XML")},
        {"declaration behind a comment", "<?xml", "<!-- --><?xml", field("XML")},
        {"value without quotes", "Version=\"2\"", "Version=2", field("XML")},
    };
}

inline QList<Change> checkChanges()
{
    const QString code = QStringLiteral("ResultCode");
    return {{"result code missing", " ResultCode=\"0\"", "", code},
            {"result code 1", "ResultCode=\"0\"", "ResultCode=\"1\"", code},
            {"result code empty", "ResultCode=\"0\"", "ResultCode=\"\"", code},
            {"the other operation", "\"ParkingCheck\"", "\"ParkInfoPay\"", QStringLiteral("Operation")},
            {"a payment", "</Request>", "<Payments/></Request>", QStringLiteral("Payments")}};
}

inline QList<Change> payChanges()
{
    const auto field = [](const char *name) { return QString::fromLatin1(name); };
    const QByteArray all = Requests::parkInfoPay();
    const int begin = all.indexOf("<Payment>");
    const QByteArray payment = all.mid(begin, all.indexOf("</Payment>") + 10 - begin);
    QList<Change> changes = {
        {"partial", ">full<", ">partial<", QString()},
        {"comments in the payment", "<Uin>", "<!-- --><Uin>", QString()},
        {"result code present", "\"ParkInfoPay\"", "\"ParkInfoPay\" ResultCode=\"0\"", field("ResultCode")},
        {"the other operation", "\"ParkInfoPay\"", "\"ParkingCheck\"", field("Operation")},
        {"payments empty", payment, "", field("Payment")},
        {"payments missing", "<Payments>\n        " + payment + "\n    </Payments>", "", field("Payments")},
        {"two payments", payment, payment + payment, field("Payment")},
        {"two blocks", "</Payments>", "</Payments><Payments/>", field("Payments")},
        {"payments with an attribute", "<Payments>", "<Payments count=\"1\">", field("count")},
        {"payment with an attribute", "<Payment>", "<Payment id=\"1\">", field("id")},
        {"text beside the payment", "</Payment>", "</Payment>x", field("Payments")},
        {"text in the payment", "<Uin>", "x<Uin>", field("Payment")},
        {"block before the header", "<PartnerId>", "<Payments/><PartnerId>", field("Payments")},
        {"number missing", "<Uin>1187</Uin>", "", field("Uin")},
        {"moment missing", "<DateTime>2024-03-07T14:06:41+03:00</DateTime>", "", field("DateTime")},
        {"amount missing", "<Amount>15000</Amount>", "", field("Amount")},
        {"type missing", "<Type>full</Type>", "", field("Type")},
        {"type empty", ">full<", "><", field("Type")},
        {"type in capitals", ">full<", ">FULL<", field("Type")},
        {"type with a blank", ">full<", ">full <", field("Type")},
        {"type other", ">full<", ">whole<", field("Type")},
        {"type behind its place", "<Amount>15000</Amount>\n            <Type>full</Type>",
         "<Type>full</Type><Amount>15000</Amount>", field("Type")},
        {"one more field", "<Type>full</Type>", "<Type>full</Type><Note/>", field("Note")},
    };
    changes += numberChanges("Uin", "1187");
    changes += numberChanges("Amount", "15000");
    return changes + timeChanges(PAYMENT_TIME);
}

inline QList<Change> changesOf(cash::Operation operation)
{
    QList<Change> changes = commonChanges() + timeChanges(REQUEST_TIME) + sessionIdChanges();
    return changes + (operation == CHECK ? checkChanges() : payChanges());
}

inline QByteArray changed(cash::Operation operation, const Change &change)
{
    if (change.from.isEmpty())
        return QByteArray();
    return good(operation).replace(change.from, change.to);
}
} // namespace RequestChanges

Q_DECLARE_METATYPE(RequestChanges::Change)
