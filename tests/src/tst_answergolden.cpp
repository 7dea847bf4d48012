// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "secondparser.h"
#include "support/golden.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <memory>

namespace {
const QString ANSWERS = QStringLiteral(TEST_DATA "/answers");

using Answer = std::unique_ptr<BaseParkomatResponse>;

QByteArray contents(const QString &name)
{
    QFile file(ANSWERS + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A field a line, texts as QDebug quotes them, moments with the kind of their zone.
class Rendering
{
public:
    void add(const char *name, const QString &text)
    {
        QString quoted;
        QDebug(&quoted).nospace() << text;
        addRaw(name, quoted);
    }
    void add(const char *name, const QDateTime &moment)
    {
        const char *const kinds[] = {"local", "UTC", "offset", "zone"};
        addRaw(name, moment.isValid() ? moment.toString(Qt::ISODateWithMs) + QLatin1Char(' ') +
                                            QLatin1String(kinds[moment.timeSpec()])
                                      : QStringLiteral("invalid"));
    }
    void add(const char *name, const FixNumber &amount) { addRaw(name, amount.toString()); }
    void add(const char *name, bool flag) { addRaw(name, flag ? QStringLiteral("true") : QStringLiteral("false")); }
    void add(const char *name, int number) { addRaw(name, QString::number(number)); }

    void addRaw(const char *name, const QString &text)
    {
        m_text += QLatin1String(name) + QStringLiteral(": ") + text + QLatin1Char('\n');
    }
    [[nodiscard]] QByteArray bytes() const { return m_text.toUtf8(); }

private:
    QString m_text;
};

void addCheck(Rendering &lines, const ParkingCheckResponse &check)
{
    lines.addRaw("kind", QStringLiteral("ParkingCheckResponse"));
    lines.add("result code", check.resultCode());
    lines.add("error info", check.errorInfo());
    lines.add("session id", check.sessionId());
    lines.add("external session id", check.externalSessionId());
    lines.add("parking id", check.parkingId());
    lines.add("start time", check.startTime());
    lines.add("anticipated stop time", check.anticipatedStopTime());
    lines.add("last change time", check.lastChangeTime());
    lines.add("total charge", check.totalCharge());
    lines.add("amount sum", check.amountSum());
    lines.add("can extend", check.canExtend());
    lines.add("can stop", check.canStop());
    lines.add("response time", check.responseTime());
}

void addPay(Rendering &lines, const ParkInfoPayResponse &pay)
{
    lines.addRaw("kind", QStringLiteral("ParkInfoPayResponse"));
    lines.add("result code", pay.resultCode());
    lines.add("error info", pay.errorInfo());
    lines.add("partner id", pay.partnerId());
    lines.add("session id", pay.sessionId());
    lines.add("external session id", pay.externalSessionId());
    lines.add("anticipated stop time", pay.anticipatedStopTime());
    lines.add("response time", pay.responseTime());
}

QByteArray rendered(const Answer &answer)
{
    Rendering lines;
    if (const auto *check = dynamic_cast<const ParkingCheckResponse *>(answer.get()))
        addCheck(lines, *check);
    else if (const auto *pay = dynamic_cast<const ParkInfoPayResponse *>(answer.get()))
        addPay(lines, *pay);
    else
        return "nothing\n";
    return lines.bytes();
}

/// The same from the values that the other parser read: they go into the answer by name, past our reader.
QByteArray renderedFrom(const SecondParser::Values &values)
{
    BaseParkomatResponse::Properties properties;
    QString operation;
    int resultCode = 0;
    for (const auto &[path, value] : values) {
        if (path == QLatin1String("Response@Operation"))
            operation = value.toLower();
        else if (path == QLatin1String("Response@ResultCode"))
            resultCode = value.toInt();
        else
            properties.insert(path.section(QLatin1Char('/'), -1), value);
    }
    if (operation == ParkingCheckResponse::OPERATION)
        return rendered(std::make_unique<ParkingCheckResponse>(resultCode, properties));
    return rendered(std::make_unique<ParkInfoPayResponse>(resultCode, properties));
}

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

QString schemaOf(const SecondParser::Document &document)
{
    for (const auto &[path, value] : document.values()) {
        if (path == QLatin1String("Response@Operation") &&
            value.compare(ParkInfoPayResponse::OPERATION, Qt::CaseInsensitive) == 0)
            return QStringLiteral("response-parkinfopay.xsd");
    }
    return QStringLiteral("response-parkingcheck.xsd");
}

bool holds(const QByteArray &body)
{
    const SecondParser::Document document(body);
    return document.isWellFormed() && SecondParser::Schema(schemaOf(document)).breaches(document).isEmpty();
}
} // namespace

/// Bodies as they come from a cash service, one a file, and what the plugin makes of them.
///
/// A file's name begins with what it stands for: "good" (holds against the schema), "tolerated" (does not, and is read
/// in full), "fault" (does not, and loses something), "rejected" (is no answer at all), "gap" (holds, and yet loses
/// something: a schema ignores blanks around a date, and we do not).
class AnswerGoldenTest : public TestCase
{
    Q_OBJECT

private:
    static void addFiles(const QStringList &patterns)
    {
        QTest::addColumn<QString>("name");
        const QStringList names = QDir(ANSWERS).entryList(patterns, QDir::Files, QDir::Name);
        QVERIFY(!names.isEmpty());
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << name;
    }

    /// The text that good answers come to be broken from.
    static QString goodAnswer(const QString &kind)
    {
        QString text = QString::fromUtf8(contents(QStringLiteral("good-%1.xml").arg(kind)));
        return text.remove(QRegularExpression(QStringLiteral("\n *")));
    }

    /// @param from a regular expression, for what @a to takes the place of in the good answer.
    static void broken(const QByteArray &rule, const char *kind, const QByteArray &from, const QByteArray &to,
                       const QByteArray &breach)
    {
        QTest::newRow((kind + QByteArray(": ") + rule).constData())
            << kind << QString::fromUtf8(from) << QString::fromUtf8(to) << QString::fromUtf8(breach);
    }

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
    void body_inEachFile_givesTheGoldenFields_data() { addFiles({QStringLiteral("*.xml")}); }

    void body_inEachFile_givesTheGoldenFields()
    {
        QFETCH(const QString, name);
        const Zone zone("Europe/Moscow");
        const QByteArray body = contents(name);
        const Answer answer(BaseParkomatResponse::parse(body));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QCOMPARE(rendered(answer) == "nothing\n", name.startsWith(QLatin1String("rejected-")));
        const QString golden = QString(name).replace(QStringLiteral(".xml"), QStringLiteral(".txt"));
        COMPARE_GOLDEN(rendered(answer), QStringLiteral("answers/") + golden);
    }

    void body_inEachFile_isReadByTheTypedClassesAlike_data() { addFiles({QStringLiteral("*.xml")}); }

    void body_inEachFile_isReadByTheTypedClassesAlike()
    {
        QFETCH(const QString, name);
        ignoreLog();
        const QByteArray body = contents(name);
        const Answer answer(BaseParkomatResponse::parse(body));
        const auto *check = dynamic_cast<const ParkingCheckResponse *>(answer.get());
        const auto *pay = dynamic_cast<const ParkInfoPayResponse *>(answer.get());
        QCOMPARE(ParkingCheckResponse(body), check != nullptr ? *check : ParkingCheckResponse());
        QCOMPARE(ParkInfoPayResponse(body), pay != nullptr ? *pay : ParkInfoPayResponse());
    }

    void goodBody_readByTheOtherParser_givesTheSameFields_data() { addFiles({QStringLiteral("good-*.xml")}); }

    void goodBody_readByTheOtherParser_givesTheSameFields()
    {
        QFETCH(const QString, name);
        ignoreLog();
        const QByteArray body = contents(name);
        const SecondParser::Document document(body);
        QVERIFY(document.isWellFormed());
        QCOMPARE(renderedFrom(document.values()), rendered(Answer(BaseParkomatResponse::parse(body))));
    }

    void goodBody_againstItsSchema_holds_data() { addFiles({QStringLiteral("good-*.xml")}); }

    void goodBody_againstItsSchema_holds()
    {
        QFETCH(const QString, name);
        const SecondParser::Document document(contents(name));
        const SecondParser::Schema schema(schemaOf(document));
        QVERIFY(schema.isLoaded());
        QCOMPARE(schema.breaches(document), QStringList());
    }

    void gapBody_againstItsSchema_holds_data() { addFiles({QStringLiteral("gap-*.xml")}); }

    void gapBody_againstItsSchema_holds()
    {
        QFETCH(const QString, name);
        QVERIFY(holds(contents(name)));
    }

    void otherBody_againstItsSchema_doesNotHold_data()
    {
        addFiles({QStringLiteral("tolerated-*.xml"), QStringLiteral("fault-*.xml"), QStringLiteral("rejected-*.xml")});
    }

    void otherBody_againstItsSchema_doesNotHold()
    {
        QFETCH(const QString, name);
        QVERIFY(!holds(contents(name)));
    }

    void goldenFields_eachOfThem_belongToABody()
    {
        QStringList names = QDir(ANSWERS).entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name);
        names.replaceInStrings(QStringLiteral(".txt"), QStringLiteral(".xml"));
        QCOMPARE(names, QDir(ANSWERS).entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name));
    }

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
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("breach");
        addBrokenEnvelopes("parkingcheck");
        addBrokenEnvelopes("parkinfopay");
        addBrokenValues();
    }

    void schema_documentBreakingOneRule_doesNotHold()
    {
        QFETCH(const QString, kind);
        QFETCH(const QString, from);
        QFETCH(const QString, to);
        QFETCH(const QString, breach);
        const QString good = goodAnswer(kind);
        const SecondParser::Schema schema(QStringLiteral("response-%1.xsd").arg(kind));
        QCOMPARE(schema.breaches(SecondParser::Document(good.toUtf8())), QStringList());

        const SecondParser::Document bad(QString(good).replace(QRegularExpression(from), to).toUtf8());
        QVERIFY(bad.isWellFormed());
        const QString found = schema.breaches(bad).join(QLatin1Char('\n'));
        QVERIFY2(found.contains(breach), qPrintable(found));
    }
};

TEST_MAIN(AnswerGoldenTest)
#include "tst_answergolden.moc"
