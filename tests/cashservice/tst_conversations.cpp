// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "src/secondparser.h"
#include "support/golden.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

/// What the service answers, byte for byte: each folder in data/conversations holds requests, NUMBER-OPERATION.xml, and
/// their answers, NUMBER-answer.xml, as one service without a past gives them at NOW.
class ConversationsTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static QByteArray ask(const RunningService &service, const Requests::Values &values)
    {
        return HttpClient::parkingCheck(service.port(), Requests::parkingCheck(values)).body;
    }

    static QByteArray pay(const RunningService &service, const Requests::Values &values)
    {
        return HttpClient::parkInfoPay(service.port(), Requests::parkInfoPay(values)).body;
    }

private Q_SLOTS:
    void conversation_ofEachKind_isTheGoldenOne_data()
    {
        QTest::addColumn<QString>("name");
        const QDir folder(QStringLiteral(TEST_DATA "/conversations"));
        for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            QTest::newRow(qPrintable(name)) << name;
    }

    void conversation_ofEachKind_isTheGoldenOne()
    {
        QFETCH(const QString, name);
        const QDir folder(QStringLiteral(TEST_DATA "/conversations/") + name);
        const RunningService service;
        const QStringList requests = folder.entryList({QStringLiteral("*-Park*.xml")}, QDir::Files, QDir::Name);
        QVERIFY(!requests.isEmpty());
        for (const QString &file : requests) {
            const QString number = file.section(QLatin1Char('-'), 0, 0);
            const QString operation = file.section(QLatin1Char('-'), 1).section(QLatin1Char('.'), 0, 0);
            const HttpClient::Answer answer =
                HttpClient::exchange(service.port(), "POST", "/api/" + operation.toUtf8(), read(folder.filePath(file)));
            QCOMPARE(answer.status, 200);
            QCOMPARE(HttpClient::header(answer.head, "content-type"), QByteArray("application/soap+xml"));
            COMPARE_GOLDEN(answer.body, QStringLiteral("conversations/%1/%2-answer.xml").arg(name, number));
            const SecondParser::Schema schema(QStringLiteral("response-%1.xsd").arg(operation.toLower()));
            QVERIFY(schema.isLoaded());
            QCOMPARE(schema.breaches(SecondParser::Document(answer.body)), QStringList());
        }
    }

    void seededCard_asked_answersItsCode_data()
    {
        QTest::addColumn<QByteArray>("uid");
        QTest::addColumn<QByteArray>("checkCode");
        QTest::addColumn<QByteArray>("payCode");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *uid, const char *check, const char *pay, const char *text) {
            QTest::newRow(uid) << QByteArray(uid) << QByteArray(check) << QByteArray(pay) << QString::fromUtf8(text);
        };
        row("12345678", "1", "1", "");
        row("10000000", "0", "0", "Неверный запрос: CardUid");
        row("10000002", "2", "2", "Карта не найдена");
        row("ABCDEF00", "2", "2", "Карта не найдена");
        row("10000003", "3", "3", "Парковка уже оплачена");
        row("10000004", "4", "4", "Карта заблокирована");
        row("10000005", "5", "5", "Сервис временно недоступен");
        row("10000006", "1", "6", "");
        row("10000007", "1", "1", "");
        row("10000009", "1", "1", "");
        QTest::newRow("no UID") << QByteArray() << QByteArray("2") << QByteArray("2")
                                << QStringLiteral("Карта не найдена");
    }

    void seededCard_asked_answersItsCode()
    {
        QFETCH(const QByteArray, uid);
        QFETCH(const QByteArray, checkCode);
        QFETCH(const QByteArray, payCode);
        QFETCH(const QString, text);
        const RunningService service;
        const auto number = static_cast<std::uint32_t>(uid.toUInt(nullptr, 16));
        const Requests::Values values =
            Requests::forCard(uid.isEmpty() ? uid : QByteArray::fromStdString(cash::wireUid(number)));
        const QByteArray checked = ask(service, values);
        QCOMPARE(resultCode(checked), checkCode);
        QCOMPARE(QString::fromUtf8(elementText(checked, "ErrorInfo")), text);
        QCOMPARE(resultCode(pay(service, values)), payCode);
    }

    void charge_overTime_growsByTheTariff()
    {
        RunningService service;
        QCOMPARE(elementText(ask(service, {}), "TotalCharge"), QByteArray("15000"));
        service.setNow(NOW + 30 * cash::MINUTE);
        QCOMPARE(elementText(ask(service, {}), "TotalCharge"), QByteArray("15000"));
        service.setNow(NOW + 30 * cash::MINUTE + 1);
        QCOMPARE(elementText(ask(service, {}), "TotalCharge"), QByteArray("20000"));
    }

    void card_paidInFull_owesAgainWhenItStaysLonger()
    {
        RunningService service;
        QCOMPARE(resultCode(pay(service, {})), QByteArray("1"));
        QCOMPARE(resultCode(ask(service, {})), QByteArray("3"));
        service.setNow(NOW + cash::HOUR);
        const QByteArray answer = ask(service, {});
        QCOMPARE(elementText(answer, "TotalCharge"), QByteArray("5000"));
        QCOMPARE(elementText(answer, "AmountSum"), QByteArray("15000"));
        QCOMPARE(elementText(answer, "LastChangeTime"), QByteArray("2024-03-07T14:05:09"));
    }

    void registration_repeated_isAnsweredTheSameAndRecordedOnce()
    {
        RunningService service;
        const QByteArray first = pay(service, {});
        service.setNow(NOW + cash::DAY);
        QCOMPARE(pay(service, {}), first);
        QCOMPARE(service.ledger().payments().size(), std::size_t(1));
        QVERIFY(service.ledger().conflicts().empty());
    }

    void registration_ofAnotherKey_isAnotherPayment_data()
    {
        QTest::addColumn<QByteArray>("termId");
        QTest::addColumn<QByteArray>("sessionId");
        QTest::addColumn<QByteArray>("uin");
        QTest::newRow("terminal") << QByteArray("0043") << QByteArray("004224140509067001") << QByteArray("1187");
        QTest::newRow("terminal with a blank")
            << QByteArray("0042 ") << QByteArray("004224140509067001") << QByteArray("1187");
        QTest::newRow("session") << QByteArray("0042") << QByteArray("004224140510067001") << QByteArray("1187");
        QTest::newRow("number") << QByteArray("0042") << QByteArray("004224140509067001") << QByteArray("1188");
    }

    void registration_ofAnotherKey_isAnotherPayment()
    {
        QFETCH(const QByteArray, termId);
        QFETCH(const QByteArray, sessionId);
        QFETCH(const QByteArray, uin);
        RunningService service;
        Requests::Values values;
        QCOMPARE(resultCode(pay(service, values)), QByteArray("1"));
        values.termId = termId;
        values.sessionId = sessionId;
        values.uin = uin;
        QCOMPARE(resultCode(pay(service, values)), QByteArray("1"));
        QCOMPARE(service.ledger().payments().size(), std::size_t(2));
        QVERIFY(service.ledger().conflicts().empty());
    }

    void registration_ofAnotherAmount_isRefusedAndBothAreKept()
    {
        RunningService service;
        Requests::Values values;
        const QByteArray first = pay(service, values);
        values.amount = "14000";
        const QByteArray refused = pay(service, values);
        QCOMPARE(resultCode(refused), QByteArray("6"));
        QCOMPARE(elementText(refused, "ErrorInfo"), QByteArray("Платёж уже зарегистрирован с другой суммой"));
        QCOMPARE(service.ledger().payments().size(), std::size_t(1));
        const std::vector<cash::LogRow> conflicts = service.ledger().conflicts();
        QCOMPARE(conflicts.size(), std::size_t(2));
        QCOMPARE(qint64(conflicts[0].amount), qint64(15000));
        QCOMPARE(conflicts[0].outcome, std::string("registered"));
        QCOMPARE(qint64(conflicts[1].amount), qint64(14000));
        QCOMPARE(conflicts[1].outcome, std::string("other amount"));
        values.amount = "15000";
        QCOMPARE(pay(service, values), first);
    }

    void payments_beyond64Bits_stayAtTheLimit()
    {
        RunningService service;
        Requests::Values values;
        values.amount = "9223372036854775807";
        QCOMPARE(resultCode(pay(service, values)), QByteArray("1"));
        values.uin = "1188";
        QCOMPARE(resultCode(pay(service, values)), QByteArray("1"));
        QCOMPARE(resultCode(ask(service, values)), QByteArray("3"));
    }

    void payment_negative_addsToWhatIsOwed()
    {
        RunningService service;
        Requests::Values values;
        values.amount = "-9223372036854775808";
        QCOMPARE(resultCode(pay(service, values)), QByteArray("1"));
        QCOMPARE(elementText(ask(service, values), "TotalCharge"), QByteArray("9223372036854775807"));
    }

    void seededCards_oweWhatTheirNotesSay_longAfterTheLaunch()
    {
        RunningService service;
        int owing = 0;
        for (const cash::Moment later : {0L, 1L, 29L * 60}) {
            service.setNow(NOW + later);
            for (const auto &[uid, card] : cash::seededCarPark(NOW).cards) {
                const QRegularExpressionMatch note =
                    QRegularExpression(QStringLiteral("owes (\\d+)\\.00")).match(QString::fromStdString(card.note));
                if (!note.hasMatch() || card.answerAfter.count() != 0)
                    continue;
                ++owing;
                QCOMPARE(elementText(ask(service, Requests::forCard(QByteArray::fromStdString(cash::wireUid(uid)))),
                                     "TotalCharge"),
                         note.captured(1).toLatin1() + "00");
            }
        }
        QCOMPARE(owing, 3 * 4);
    }

    /// As on a machine that has lost the time.
    void lastChange_ofAStayThatBeganBefore1970_isItsBeginning()
    {
        cash::Ledger ledger(":memory:");
        cash::Service service(cash::seededCarPark(0), ledger, cash::stoppedClock(0));
        const cash::Reply reply = service.answer(
            {cash::Operation::ParkingCheck, cash::CONTENT_TYPE, Requests::parkingCheck().toStdString()}, {});
        const QByteArray answer = QByteArray::fromStdString(reply.body);
        QCOMPARE(elementText(answer, "StartTime"), QByteArray("1970-01-01T00:30:00"));
        QCOMPARE(elementText(answer, "LastChangeTime"), QByteArray("1970-01-01T00:30:00"));
    }

    void texts_ofTheRequest_comeBackAsTheyWere()
    {
        RunningService service;
        const QByteArray request = Requests::parkInfoPay().replace(">north<", ">a&lt;b&gt;&amp;&#34; &#13; \xD1\x8F<");
        const QByteArray answer = HttpClient::parkInfoPay(service.port(), request).body;
        QVERIFY(answer.contains("<PartnerId>a&lt;b&gt;&amp;&quot; &#13; \xD1\x8F</PartnerId>"));
    }

    void contentType_other_isABreach_data()
    {
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<QByteArray>("code");
        const auto row = [](const char *contentType, const char *code) {
            QTest::addRow("\"%s\"", contentType) << QByteArray(contentType) << QByteArray(code);
        };
        row("application/soap+xml", "1");
        row("application/soap+xml; charset=utf-8", "1");
        row("application/soap+xml ; charset=utf-8", "1");
        row("Application/SOAP+XML", "1");
        row("application/soap+xmls", "0");
        row("application/soap +xml", "0");
        row("text/xml", "0");
        row("application/x-www-form-urlencoded", "0");
        row(";", "0");
        row("", "0");
    }

    void contentType_other_isABreach()
    {
        QFETCH(const QByteArray, contentType);
        QFETCH(const QByteArray, code);
        RunningService service;
        HttpClient client(service.port());
        client.send(HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck(), contentType));
        const HttpClient::Answer answer = client.read();
        QCOMPARE(answer.status, 200);
        QCOMPARE(resultCode(answer.body), code);
        if (code == "0")
            QVERIFY(elementText(answer.body, "ErrorInfo").startsWith("Неверный запрос: Content-Type"));
    }
};

TEST_MAIN(ConversationsTest)
#include "tst_conversations.moc"
