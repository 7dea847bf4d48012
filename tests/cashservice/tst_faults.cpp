// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "fault.h"
#include "httpclient.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"
#include "support/waiting.h"
#include "support/zone.h"

#include <QElapsedTimer>
#include <QTextCodec>

namespace {
QByteArray post(const RunningService &service, const QByteArray &operation, int *status = nullptr)
{
    const QByteArray body = operation == "ParkingCheck" ? Requests::parkingCheck() : Requests::parkInfoPay();
    const HttpClient::Answer answer = HttpClient::exchange(service.port(), "POST", "/api/" + operation, body);
    if (status != nullptr)
        *status = answer.status;
    return answer.body;
}

QByteArray clean(const QByteArray &operation)
{
    const RunningService service;
    return post(service, operation);
}
} // namespace

/// Everything that the service does wrong on purpose, and the rules that tell it to.
class FaultsTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    static void row(const char *rule, const char *operation, const char *from, const char *to)
    {
        QTest::newRow(rule) << QByteArray(rule) << QByteArray(operation) << QByteArray(from) << QByteArray(to);
    }

private Q_SLOTS:
    void fault_ofTheText_changesItAlone_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("operation");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        const char charge[] = "    <TotalCharge>15000</TotalCharge>\n";
        row("ParkingCheck:operation", "ParkingCheck", "ParkingCheckResponse", "ParkInfoPayResponse");
        row("ParkInfoPay:operation", "ParkInfoPay", "ParkInfoPayResponse", "ParkingCheckResponse");
        row("any:operation=Pong", "ParkInfoPay", "ParkInfoPayResponse", "Pong");
        row("any:missing=TotalCharge", "ParkingCheck", charge, "");
        row("any:missing=ResultCode", "ParkingCheck", " ResultCode=\"1\"", "");
        row("any:missing=Operation", "ParkingCheck", " Operation=\"ParkingCheckResponse\"", "");
        row("any:missing=PartnerId", "ParkInfoPay", "    <PartnerId>north</PartnerId>\n", "");
        row("any:doubled=TotalCharge,1", "ParkingCheck", "</Response>",
            "    <TotalCharge>1</TotalCharge>\n</Response>");
        row("any:doubled=TotalCharge", "ParkingCheck", "</Response>", "    <TotalCharge>?</TotalCharge>\n</Response>");
        row("any:malformed=StartTime", "ParkingCheck", "<StartTime>2024-03-07T11:35:09", "<StartTime>?");
        row("any:malformed=TotalCharge,150,00", "ParkingCheck", ">15000<", ">150,00<");
        row("any:malformed=ResultCode,one", "ParkInfoPay", "ResultCode=\"1\"", "ResultCode=\"one\"");
        row("any:malformed=AnswerTime,", "ParkInfoPay", "2024-03-07T14:05:09</AnswerTime>", "</AnswerTime>");
        row("any:delay=1ms", "ParkingCheck", "", "");
    }

    void fault_ofTheText_changesItAlone()
    {
        QFETCH(const QByteArray, rule);
        QFETCH(const QByteArray, operation);
        QFETCH(const QByteArray, from);
        QFETCH(const QByteArray, to);
        RunningService service;
        service.setFault(rule.toStdString());
        QByteArray expected = clean(operation);
        QVERIFY(expected.contains(from));
        if (!from.isEmpty())
            expected.replace(from, to);
        QCOMPARE(post(service, operation), expected);
    }

    void fault_ofTheResult_answersItAlone()
    {
        RunningService service;
        service.setFault("ParkingCheck:result=-7,Ой, нет");
        const QByteArray answer = post(service, "ParkingCheck");
        QCOMPARE(resultCode(answer), QByteArray("-7"));
        QCOMPARE(elementText(answer, "ErrorInfo"), QByteArray("Ой, нет"));
        QVERIFY(!answer.contains("TotalCharge"));
    }

    void fault_ofTheStatus_answersWithoutABody()
    {
        RunningService service;
        service.setFault("any:status=503");
        int status = 0;
        QCOMPARE(post(service, "ParkingCheck", &status), QByteArray());
        QCOMPARE(status, 503);
    }

    void fault_ofAnEmptyBody_isAGoodStatus()
    {
        RunningService service;
        service.setFault("any:empty");
        int status = 0;
        QCOMPARE(post(service, "ParkInfoPay", &status), QByteArray());
        QCOMPARE(status, 200);
        QCOMPARE(service.ledger().payments().size(), std::size_t(1));
    }

    void fault_ofTheCard_answersForAnother()
    {
        RunningService service;
        service.setFault("any:card=10000009");
        const QByteArray checked = post(service, "ParkingCheck");
        QCOMPARE(elementText(checked, "TotalCharge"), QByteArray("80000"));
        QCOMPARE(elementText(checked, "SessionId"), QByteArray("004224140509067001"));
        const QByteArray paid = post(service, "ParkInfoPay");
        QCOMPARE(elementText(paid, "ExternalSessionId"), elementText(checked, "ExternalSessionId"));
        QCOMPARE(service.ledger().payments().front().cardUid, std::string("78563412"));
    }

    void fault_ofACardThatIsRefused_answersItsCode_data()
    {
        QTest::addColumn<QByteArray>("uid");
        QTest::addColumn<QByteArray>("checkCode");
        QTest::addColumn<QByteArray>("payCode");
        QTest::addColumn<QByteArray>("text");
        const auto cardRow = [](const char *uid, const char *check, const char *pay, const char *text) {
            QTest::newRow(uid) << QByteArray(uid) << QByteArray(check) << QByteArray(pay) << QByteArray(text);
        };
        cardRow("ABCDEF01", "2", "2", "Карта не найдена");
        cardRow("10000000", "0", "0", "Неверный запрос: CardUid");
        cardRow("10000002", "2", "2", "Карта не найдена");
        cardRow("10000003", "3", "3", "Парковка уже оплачена");
        cardRow("10000004", "4", "4", "Карта заблокирована");
        cardRow("10000005", "5", "5", "Сервис временно недоступен");
        cardRow("10000006", "1", "6", "Платёж уже зарегистрирован с другой суммой");
    }

    void fault_ofACardThatIsRefused_answersItsCode()
    {
        QFETCH(const QByteArray, uid);
        QFETCH(const QByteArray, checkCode);
        QFETCH(const QByteArray, payCode);
        QFETCH(const QByteArray, text);
        RunningService service;
        service.setFault("any:card=" + uid.toStdString());
        QCOMPARE(resultCode(post(service, "ParkingCheck")), checkCode);
        const QByteArray paid = post(service, "ParkInfoPay");
        QCOMPARE(resultCode(paid), payCode);
        QCOMPARE(elementText(paid, "ErrorInfo"), text);
        // The payment is the customer's own all the same.
        QCOMPARE(service.ledger().payments().front().cardUid, std::string("78563412"));
    }

    void fault_ofTheCard_ofARequestThatIsNone_answersTheBreach_data()
    {
        QTest::addColumn<QByteArray>("operation");
        QTest::newRow("ParkingCheck") << QByteArray("ParkingCheck");
        QTest::newRow("ParkInfoPay") << QByteArray("ParkInfoPay");
    }

    void fault_ofTheCard_ofARequestThatIsNone_answersTheBreach()
    {
        QFETCH(const QByteArray, operation);
        RunningService service;
        service.setFault("any:card=12345678");
        const QByteArray answer = HttpClient::exchange(service.port(), "POST", "/api/" + operation, "garbage").body;
        QVERIFY(answer.contains("<Response Operation=\"" + operation + "Response\" ResultCode=\"0\">"));
        QVERIFY(elementText(answer, "ErrorInfo").startsWith("Неверный запрос: XML"));
    }

    void fault_ofTheEncoding_saysTheSame_data()
    {
        QTest::addColumn<QByteArray>("encoding");
        QTest::newRow("windows-1251") << QByteArray("windows-1251");
        QTest::newRow("utf-16") << QByteArray("utf-16");
    }

    void fault_ofTheEncoding_saysTheSame()
    {
        QFETCH(const QByteArray, encoding);
        RunningService service;
        service.setFault("any:result=3,Ёж и ёлка — всё");
        service.setFault("any:encoding=" + encoding.toStdString());
        const QByteArray answer = post(service, "ParkingCheck");
        const QString text = QTextCodec::codecForName(encoding)->toUnicode(answer);
        QVERIFY(
            text.startsWith(QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?>")
                                .arg(encoding == "utf-16" ? QStringLiteral("UTF-16") : QString::fromUtf8(encoding))));
        QVERIFY2(text.contains(QStringLiteral("<ErrorInfo>Ёж и ёлка %1 всё</ErrorInfo>")
                                   .arg(encoding == "utf-16" ? QStringLiteral("—") : QStringLiteral("&#8212;"))),
                 qPrintable(text));
    }

    void fault_ofSeveralRules_addsUp()
    {
        RunningService service;
        service.setFault("any:missing=TotalCharge");
        service.setFault("any:malformed=CanStop,true");
        const QByteArray answer = post(service, "ParkingCheck");
        QVERIFY(!answer.contains("TotalCharge"));
        QCOMPARE(elementText(answer, "CanStop"), QByteArray("true"));
    }

    void fault_ofARepeatedPayment_spoilsTheRecordedAnswer()
    {
        RunningService service;
        const QByteArray first = post(service, "ParkInfoPay");
        service.setFault("any:missing=PartnerId");
        QCOMPARE(post(service, "ParkInfoPay"), QByteArray(first).replace("    <PartnerId>north</PartnerId>\n", ""));
    }

    void fault_beforeOrAfter_decidesWhetherThePaymentIsRecorded_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<int>("recorded");
        for (const char *action : {"status=500", "empty", "operation", "result=5,x", "missing=PartnerId",
                                   "doubled=PartnerId", "malformed=PartnerId", "card=10000009", "encoding=utf-16"}) {
            QTest::addRow("before %s", action) << QByteArray("ParkInfoPay@before:") + action << 0;
            QTest::addRow("after %s", action) << QByteArray("ParkInfoPay@after:") + action << 1;
            QTest::addRow("unsaid %s", action) << QByteArray("ParkInfoPay:") + action << 1;
        }
        QTest::newRow("a delay only delays") << QByteArray("ParkInfoPay@before:delay=1ms") << 1;
    }

    void fault_beforeOrAfter_decidesWhetherThePaymentIsRecorded()
    {
        QFETCH(const QByteArray, rule);
        QFETCH(const int, recorded);
        RunningService faulty;
        faulty.setFault(rule.toStdString());
        post(faulty, "ParkInfoPay");
        QCOMPARE(int(faulty.ledger().payments().size()), recorded);
    }

    void fault_before_answersAsIfThePaymentWereRecorded()
    {
        RunningService service;
        service.setFault("ParkInfoPay@before:missing=PartnerId");
        QCOMPARE(post(service, "ParkInfoPay"), clean("ParkInfoPay").replace("    <PartnerId>north</PartnerId>\n", ""));
    }

    void fault_before_leavesAPaymentThatIsKnownAsItIs_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        const auto knownRow = [](const char *rule, const char *from, const char *to) {
            QTest::newRow(rule) << QByteArray(rule) << QByteArray(from) << QByteArray(to);
        };
        knownRow("ParkInfoPay@before:missing=PartnerId", "    <PartnerId>north</PartnerId>\n", "");
        knownRow("ParkInfoPay@before:malformed=PartnerId", ">north<", ">?<");
        knownRow("ParkInfoPay@before:doubled=PartnerId", "</Response>", "    <PartnerId>?</PartnerId>\n</Response>");
        knownRow("ParkInfoPay@before:operation", "ParkInfoPayResponse", "ParkingCheckResponse");
        knownRow("ParkInfoPay@before:encoding=windows-1251", "UTF-8", "windows-1251");
        knownRow("ParkInfoPay@before:delay=1ms", "", "");
    }

    void fault_before_leavesAPaymentThatIsKnownAsItIs()
    {
        QFETCH(const QByteArray, rule);
        QFETCH(const QByteArray, from);
        QFETCH(const QByteArray, to);
        RunningService service;
        QByteArray expected = post(service, "ParkInfoPay");
        QVERIFY(expected.contains(from));
        if (!from.isEmpty())
            expected.replace(from, to);
        service.setNow(NOW + cash::HOUR);
        service.setFault(rule.toStdString());
        QCOMPARE(post(service, "ParkInfoPay"), expected);
        QCOMPARE(service.ledger().payments().size(), std::size_t(1));
        QVERIFY(service.ledger().conflicts().empty());
        Requests::Values values;
        values.amount = "14000";
        const QByteArray refused = HttpClient::parkInfoPay(service.port(), Requests::parkInfoPay(values)).body;
        QCOMPARE(resultCode(refused), QByteArray("6"));
        QCOMPARE(service.ledger().conflicts().size(), std::size_t(2));
    }

    void fault_counted_strikesThoseRequests_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("struck");
        const auto countRow = [](const char *rule, const char *struck) {
            QTest::newRow(rule) << QByteArray(rule) << QByteArray(struck);
        };
        countRow("ParkingCheck:status=500", "11111");
        countRow("any:status=500", "11111");
        countRow("ParkInfoPay:status=500", "00000");
        countRow("ParkingCheck#1:status=500", "10000");
        countRow("ParkingCheck#3:status=500", "00100");
        countRow("ParkingCheck#2-3:status=500", "01100");
        countRow("ParkingCheck#4-:status=500", "00011");
    }

    void fault_counted_strikesThoseRequests()
    {
        QFETCH(const QByteArray, rule);
        QFETCH(const QByteArray, struck);
        RunningService service;
        service.setFault(rule.toStdString());
        QByteArray found;
        for (int i = 0; i < struck.size(); ++i) {
            int status = 0;
            post(service, "ParkingCheck", &status);
            found += status == 500 ? '1' : '0';
        }
        QCOMPARE(found, struck);
    }

    void delay_underWay_holdsUpNobodyElse_andEndsWithTheService()
    {
        RunningService service;
        service.setFault("ParkingCheck#1:delay=1h");
        HttpClient waiting(service.port());
        waiting.send(HttpClient::request("POST", "/api/ParkingCheck", Requests::parkingCheck()));
        WAIT_FOR(service.struck(), std::uint64_t(1));
        QCOMPARE(resultCode(post(service, "ParkingCheck")), QByteArray("1"));
        service.stop();
        QCOMPARE(waiting.read().status, 200);
    }

    void delay_after_letsThePaymentBeRecordedFirst()
    {
        RunningService service;
        service.setFault("ParkInfoPay@after:delay=1h");
        HttpClient waiting(service.port());
        waiting.send(HttpClient::request("POST", "/api/ParkInfoPay", Requests::parkInfoPay()));
        WAIT_FOR(service.ledger().payments().size(), std::size_t(1));
    }

    void delay_before_keepsThePaymentFromBeingRecorded()
    {
        RunningService service;
        service.setFault("ParkInfoPay@before:delay=1h");
        HttpClient waiting(service.port());
        waiting.send(HttpClient::request("POST", "/api/ParkInfoPay", Requests::parkInfoPay()));
        WAIT_FOR(service.struck(), std::uint64_t(1));
        QVERIFY(service.ledger().payments().empty());
        service.stop();
        QCOMPARE(service.ledger().payments().size(), std::size_t(1));
    }

    void delay_lasts_asLongAsItSays()
    {
        RunningService service;
        service.setFault("any:delay=120ms");
        QElapsedTimer timer;
        timer.start();
        post(service, "ParkingCheck");
        QVERIFY(timer.elapsed() >= 120);
    }

    void rule_wrong_saysWhatAndWhatElse_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("trouble");
        const auto wrong = [](const char *rule, const char *trouble) {
            QTest::newRow(rule) << QByteArray(rule) << QByteArray(trouble);
        };
        wrong("", "there is no colon; write OPERATION:ACTION, for example ParkingCheck:status=503");
        wrong("status=503", "there is no colon; write OPERATION:ACTION, for example ParkingCheck:status=503");
        wrong("Check:empty", "there is no operation \"Check\"; write ParkingCheck, ParkInfoPay or any");
        wrong(":empty", "there is no operation \"\"; write ParkingCheck, ParkInfoPay or any");
        wrong("any@during:empty", "there is no stage \"during\"; write before or after (the payment is recorded)");
        wrong("any#0:empty", "\"0\" counts no requests; write 2 for the second, 2-4, or 2- for all from it on");
        wrong("any#:empty", "\"\" counts no requests; write 2 for the second, 2-4, or 2- for all from it on");
        wrong("any#4-2:empty", "\"4-2\" counts no requests; write 2 for the second, 2-4, or 2- for all from it on");
        wrong("any#2-x:empty", "\"2-x\" counts no requests; write 2 for the second, 2-4, or 2- for all from it on");
        wrong("any:burn", "there is no fault \"burn\"; there are delay, status, empty, operation, result, missing, "
                          "doubled, malformed, card, encoding");
        wrong("any:delay", "delay: write how long: 500ms, 3s, 1m30s; at most 36500d");
        wrong("any:status=99", "status: write an HTTP status of 200 to 599");
        wrong("any:status=600", "status: write an HTTP status of 200 to 599");
        wrong("any:status=5xx", "status: write an HTTP status of 200 to 599");
        wrong("any:empty=1", "empty: it takes no value");
        wrong("any:result=ok", "result: write a whole number, and the text behind a comma");
        wrong("any:missing=Charge",
              "missing: \"Charge\" is no field of an answer; write one as it stands there, TotalCharge for one");
        wrong("any:doubled=ResultCode", "doubled: an attribute cannot be doubled; name an element");
        wrong("any:malformed",
              "malformed: \"\" is no field of an answer; write one as it stands there, TotalCharge for one");
        wrong("any:card=1", "card: write the card's UID, eight hexadecimal digits");
        wrong("any:encoding=koi8-r", "encoding: write windows-1251 or utf-16");
    }

    void rule_wrong_saysWhatAndWhatElse()
    {
        QFETCH(const QByteArray, rule);
        QFETCH(const QByteArray, trouble);
        QByteArray found;
        try {
            (void)cash::faultFromRule(rule.toStdString());
        } catch (const cash::FaultError &error) {
            found = error.what();
        }
        QCOMPARE(found, "fault \"" + rule + "\": " + trouble);
    }

    void help_faults_namesEachAction()
    {
        const QByteArray help = QByteArray::fromStdString(cash::faultHelp());
        for (const char *action : {"delay=", "status=", "empty", "operation[",
                                   "result=", "missing=", "doubled=", "malformed=", "card=", "encoding="})
            QVERIFY(help.contains(action));
    }
};

TEST_MAIN(FaultsTest)
#include "tst_faults.moc"
