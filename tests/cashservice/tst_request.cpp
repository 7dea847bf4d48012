// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "request.h"
#include "requests.h"
#include "src/secondparser.h"
#include "support/testcase.h"

#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>

using cash::Operation;

Q_DECLARE_METATYPE(Operation)

namespace {
constexpr Operation CHECK = Operation::ParkingCheck;
constexpr Operation PAY = Operation::ParkInfoPay;

/// The field that breaks the protocol; empty where none does.
QString breachOf(Operation operation, const QByteArray &document)
{
    const auto read = cash::readRequest(operation, {document.constData(), static_cast<std::size_t>(document.size())});
    const auto *const breach = std::get_if<cash::Breach>(&read);
    return breach == nullptr ? QString() : QString::fromStdString(breach->field);
}

std::string reasonOf(Operation operation, const QByteArray &document)
{
    const auto read = cash::readRequest(operation, document.toStdString());
    const auto *const breach = std::get_if<cash::Breach>(&read);
    return breach == nullptr ? std::string() : breach->reason;
}

QByteArray good(Operation operation)
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

QByteArray timeElement(const QByteArray &text)
{
    return text.left(text.indexOf('>') + 1);
}

QList<Change> timeChanges(const QByteArray &from)
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

QList<Change> sessionIdChanges()
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

QList<Change> numberChanges(const QByteArray &name, const QByteArray &from)
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
QList<Change> commonChanges()
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

QList<Change> checkChanges()
{
    const QString code = QStringLiteral("ResultCode");
    return {{"result code missing", " ResultCode=\"0\"", "", code},
            {"result code 1", "ResultCode=\"0\"", "ResultCode=\"1\"", code},
            {"result code empty", "ResultCode=\"0\"", "ResultCode=\"\"", code},
            {"the other operation", "\"ParkingCheck\"", "\"ParkInfoPay\"", QStringLiteral("Operation")},
            {"a payment", "</Request>", "<Payments/></Request>", QStringLiteral("Payments")}};
}

QList<Change> payChanges()
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

QList<Change> changesOf(Operation operation)
{
    QList<Change> changes = commonChanges() + timeChanges(REQUEST_TIME) + sessionIdChanges();
    return changes + (operation == CHECK ? checkChanges() : payChanges());
}

QByteArray changed(Operation operation, const Change &change)
{
    if (change.from.isEmpty())
        return QByteArray();
    return good(operation).replace(change.from, change.to);
}
} // namespace

Q_DECLARE_METATYPE(Change)

/// The rules for requests: each one by itself, and all against the schemas.
class RequestTest : public TestCase
{
    Q_OBJECT

private:
    const SecondParser::Schema m_checkSchema{QStringLiteral("request-parkingcheck.xsd")};
    const SecondParser::Schema m_paySchema{QStringLiteral("request-parkinfopay.xsd")};

    [[nodiscard]] bool holdsAgainstSchema(Operation operation, const QByteArray &document) const
    {
        const SecondParser::Document parsed(document);
        const SecondParser::Schema &schema = operation == CHECK ? m_checkSchema : m_paySchema;
        return parsed.isWellFormed() && schema.breaches(parsed).isEmpty();
    }

    static void addChanges()
    {
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<Change>("change");
        for (const Operation operation : cash::OPERATIONS) {
            for (const Change &change : changesOf(operation))
                QTest::newRow(cash::operationName(operation).c_str() + QByteArray(" ") + change.name.simplified())
                    << operation << change;
        }
    }

    /// A document that is one or two of the changes away from a good one.
    static QByteArray generated(Operation operation, QRandomGenerator &random)
    {
        const QList<Change> changes = changesOf(operation);
        QByteArray document = good(operation);
        for (int i = random.bounded(1, 4); i > 0; --i) {
            const Change &change = changes.at(random.bounded(changes.size()));
            if (!change.from.isEmpty())
                document.replace(change.from, change.to);
        }
        return document;
    }

    /// One byte put in, taken out or put in place of another.
    static QByteArray scratched(QByteArray document, QRandomGenerator &random)
    {
        static const QByteArray bytes = "<>/=\"'&;#!-[]?x0 9AFT:+.\n\t\xD0\x80";
        const int position = random.bounded(document.size());
        const char byte = bytes.at(random.bounded(bytes.size()));
        switch (random.bounded(3)) {
        case 0:
            return document.insert(position, byte);
        case 1:
            return document.remove(position, 1);
        default:
            document[position] = byte;
            return document;
        }
    }

    /// What the schemas cannot say or say otherwise on purpose, taken out of a document so that the rest can be
    /// compared: an empty UID is answered as an unknown card.
    static QByteArray withoutKnownDifferences(QByteArray document)
    {
        return document.replace("<CardUid></CardUid>", "<CardUid>00000000</CardUid>")
            .replace("<CardUid/>", "<CardUid>00000000</CardUid>");
    }

    static bool isStricterThanTheSchema(const QByteArray &document)
    {
        // Document types, namespaces that are declared and not used, and versions of XML that nobody sends.
        return document.contains("<!DOCTYPE") || document.contains("xmlns") || document.contains("windows-1251") ||
               (document.contains("<?xml v") && !document.contains("<?xml version=\"1.0\""));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_checkSchema.isLoaded());
        QVERIFY(m_paySchema.isLoaded());
    }

    void request_changed_breaksAtTheField_data() { addChanges(); }

    void request_changed_breaksAtTheField()
    {
        QFETCH(const Operation, operation);
        QFETCH(const Change, change);
        const QByteArray document = changed(operation, change);
        if (change.from.isEmpty()) {
            QCOMPARE(breachOf(operation, document), QStringLiteral("Request"));
            return;
        }
        QVERIFY(change.from == change.to || document != good(operation));
        QCOMPARE(breachOf(operation, document), change.field);
    }

    void request_changed_isJudgedAsTheSchemaDoes_data() { addChanges(); }

    void request_changed_isJudgedAsTheSchemaDoes()
    {
        QFETCH(const Operation, operation);
        QFETCH(const Change, change);
        const QByteArray document = changed(operation, change);
        if (isStricterThanTheSchema(document))
            QVERIFY(!breachOf(operation, document).isEmpty());
        else
            QCOMPARE(breachOf(operation, document).isEmpty(), holdsAgainstSchema(operation, document));
    }

    void request_withoutUid_isNoBreach()
    {
        for (const Operation operation : cash::OPERATIONS) {
            const QByteArray document = good(operation).replace("78563412", "");
            QCOMPARE(breachOf(operation, document), QString());
            QVERIFY(!holdsAgainstSchema(operation, document));
        }
    }

    void attributes_inAnotherOrder_areABreachThatSchemasCannotSee()
    {
        const QByteArray document =
            good(CHECK).replace("RecordVersion=\"2\" NumRequest=\"1\"", "NumRequest=\"1\" RecordVersion=\"2\"");
        QCOMPARE(breachOf(CHECK, document), QStringLiteral("NumRequest"));
        QVERIFY(holdsAgainstSchema(CHECK, document));
    }

    void requests_generated_areJudgedAsTheSchemasDo()
    {
        QRandomGenerator random(20240307);
        int held = 0;
        int broke = 0;
        for (int i = 0; i < 6'000; ++i) {
            const Operation operation = i % 2 == 0 ? CHECK : PAY;
            const QByteArray document = withoutKnownDifferences(generated(operation, random));
            if (isStricterThanTheSchema(document))
                continue;
            const bool holds = holdsAgainstSchema(operation, document);
            QVERIFY2(breachOf(operation, document).isEmpty() == holds, document.constData());
            ++(holds ? held : broke);
        }
        QVERIFY2(held > 500 && broke > 500, qPrintable(QStringLiteral("%1 held, %2 broke").arg(held).arg(broke)));
    }

    void requests_scratched_areTakenOnlyIfTheSchemasHold()
    {
        QRandomGenerator random(140509);
        int held = 0;
        for (int i = 0; i < 20'000; ++i) {
            const Operation operation = i % 2 == 0 ? CHECK : PAY;
            const QByteArray document = withoutKnownDifferences(scratched(good(operation), random));
            if (isStricterThanTheSchema(document) || document.contains("CardUid></CardUid>"))
                continue;
            const QString breach = breachOf(operation, document);
            QVERIFY2(breach.isEmpty() == holdsAgainstSchema(operation, document),
                     (breach.toUtf8() + '\n' + document).constData());
            held += breach.isEmpty() ? 1 : 0;
        }
        QVERIFY(held > 1'000);
    }

    void request_ofThePlugin_isTaken_data()
    {
        QTest::addColumn<QString>("path");
        QDirIterator files(QStringLiteral(TEST_DATA "/../../src/data/requests"), {QStringLiteral("*.xml")});
        while (files.hasNext()) {
            const QString path = files.next();
            QTest::newRow(qPrintable(files.fileName())) << path;
        }
    }

    void request_ofThePlugin_isTaken()
    {
        QFETCH(const QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray document = file.readAll();
        const Operation operation = document.contains("\"ParkingCheck\"") ? CHECK : PAY;
        // A purchase without a moment is the one thing that the plugin sends and the protocol does not have.
        const bool hasMoment = !document.contains("<DateTime></DateTime>") && !document.contains("<DateTime>+03:00<");
        QCOMPARE(breachOf(operation, document), hasMoment ? QString() : QStringLiteral("DateTime"));
    }

    void number_beyond64Bits_isToldTheRange_data()
    {
        QTest::addColumn<QByteArray>("number");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("one above") << QByteArray("9223372036854775808") << true;
        QTest::newRow("one below") << QByteArray("-9223372036854775809") << true;
        QTest::newRow("far above") << QByteArray("99999999999999999999999") << true;
        QTest::newRow("far above, with a point") << QByteArray("99999999999999999999999.0") << false;
        QTest::newRow("no number") << QByteArray("x") << false;
        QTest::newRow("leading zero") << QByteArray("01") << false;
    }

    void number_beyond64Bits_isToldTheRange()
    {
        QFETCH(const QByteArray, number);
        QFETCH(const bool, isTold);
        for (const auto &[name, from] : {std::pair("Uin", "1187"), std::pair("Amount", "15000")}) {
            const QByteArray begin = QByteArray("<") + name + ">";
            const QByteArray document = good(PAY).replace(begin + from, begin + number);
            QCOMPARE(reasonOf(PAY, document),
                     std::string(isTold ? "ожидается число от -2^63 до 2^63-1"
                                        : "ожидается целое число без знака плюс и ведущих нулей"));
        }
    }

    void request_good_isReadFieldByField()
    {
        const QByteArray document = Requests::parkInfoPay();
        const auto read = cash::readRequest(PAY, document.toStdString());
        QVERIFY(std::holds_alternative<cash::Request>(read));
        const auto &request = std::get<cash::Request>(read);
        QCOMPARE(request.partnerId, std::string("north"));
        QCOMPARE(request.parkingId, std::string("12"));
        QCOMPARE(request.termId, std::string("0042"));
        QCOMPARE(request.sessionId, std::string("004224140509067001"));
        QCOMPARE(request.cardUid, std::string("78563412"));
        QCOMPARE(request.cardId, std::string("000123456"));
        QCOMPARE(request.requestTime, std::string("2024-03-07T14:05:09+03:00"));
        QCOMPARE(qint64(request.uin), qint64(1187));
        QCOMPARE(request.paidAt, std::string("2024-03-07T14:06:41+03:00"));
        QCOMPARE(qint64(request.amount), qint64(15000));
        QCOMPARE(request.type, std::string("full"));
    }
};

TEST_MAIN(RequestTest)
#include "tst_request.moc"
