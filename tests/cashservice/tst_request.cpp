// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "requestchanges.h"
#include "src/secondparser.h"
#include "support/testcase.h"

#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>

using cash::Operation;
using namespace RequestChanges;

Q_DECLARE_METATYPE(Operation)

namespace {
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
} // namespace

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
