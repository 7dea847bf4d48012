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
};

TEST_MAIN(AnswerGoldenTest)
#include "tst_answergolden.moc"
