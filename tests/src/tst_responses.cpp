// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "exampleanswers.h"
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QXmlStreamReader>

namespace {
using ExampleAnswers::MOMENT;
using ExampleAnswers::Properties;

QDateTime local(int hour, int minute, int second = 0)
{
    return QDateTime(QDate(2019, 5, 14), QTime(hour, minute, second), Qt::LocalTime);
}

QString document(const QString &operation, const QString &resultCode, const Properties &properties)
{
    QString text = QStringLiteral("<Response Operation=\"%1\" ResultCode=\"%2\">").arg(operation, resultCode);
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        text += QStringLiteral("<%1>%2</%1>").arg(it.key(), it.value());
    return text + QStringLiteral("</Response>");
}

const QString CHECK = QStringLiteral("ParkingCheckResponse");
const QString PAY = QStringLiteral("ParkInfoPayResponse");

bool isDefault(const ParkingCheckResponse &r)
{
    return r.resultCode() == -1 && r.errorInfo().isEmpty() && r.sessionId().isEmpty() &&
           r.externalSessionId().isEmpty() && r.parkingId().isEmpty() && r.startTime().isNull() &&
           r.anticipatedStopTime().isNull() && r.lastChangeTime().isNull() && r.totalCharge() == FixNumber() &&
           r.totalCharge().scale() == 100 && r.amountSum() == FixNumber() && r.amountSum().scale() == 100 &&
           !r.canExtend() && !r.canStop() && r.responseTime().isNull();
}

bool isDefault(const ParkInfoPayResponse &r)
{
    return r.resultCode() == -1 && r.errorInfo().isEmpty() && r.partnerId().isEmpty() && r.sessionId().isEmpty() &&
           r.externalSessionId().isEmpty() && r.anticipatedStopTime().isNull() && r.responseTime().isNull();
}

} // namespace

/// How the two typed answers of the cash service are read.
class ResponsesTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void check_default_isEmpty() { QVERIFY(isDefault(ParkingCheckResponse())); }

    void pay_default_isEmpty() { QVERIFY(isDefault(ParkInfoPayResponse())); }

    void check_properties_fillEveryField()
    {
        const ParkingCheckResponse response(1, ExampleAnswers::check());
        QCOMPARE(response.resultCode(), 1);
        QCOMPARE(response.errorInfo(), QStringLiteral("e"));
        QCOMPARE(response.sessionId(), QStringLiteral("s"));
        QCOMPARE(response.externalSessionId(), QStringLiteral("x"));
        QCOMPARE(response.parkingId(), QStringLiteral("12"));
        QCOMPARE(response.startTime(), local(9, 30));
        QCOMPARE(response.anticipatedStopTime(), local(11, 30));
        QCOMPARE(response.lastChangeTime(), local(9, 31));
        QCOMPARE(response.totalCharge().toString(), QStringLiteral("150.00"));
        QCOMPARE(response.amountSum().toString(), QStringLiteral("50.00"));
        QVERIFY(response.canExtend());
        QVERIFY(!response.canStop());
        QCOMPARE(response.responseTime(), local(10, 2, 11));
    }

    void pay_properties_fillEveryField()
    {
        const ParkInfoPayResponse response(1, ExampleAnswers::pay());
        QCOMPARE(response.resultCode(), 1);
        QCOMPARE(response.errorInfo(), QStringLiteral("e"));
        QCOMPARE(response.partnerId(), QStringLiteral("dravik"));
        QCOMPARE(response.sessionId(), QStringLiteral("s"));
        QCOMPARE(response.externalSessionId(), QStringLiteral("x"));
        QCOMPARE(response.anticipatedStopTime(), local(11, 30));
        QCOMPARE(response.responseTime(), local(10, 5, 42));
    }

    void parseProperties_missingOnes_emptyTheirFields()
    {
        ParkingCheckResponse check(1, ExampleAnswers::check());
        QVERIFY(check.parseProperties({}));
        QCOMPARE(check.resultCode(), 1);
        check.setResultCode(-1);
        QVERIFY(isDefault(check));

        ParkInfoPayResponse pay(1, ExampleAnswers::pay());
        QVERIFY(pay.parseProperties({}));
        QCOMPARE(pay.resultCode(), 1);
        pay.setResultCode(-1);
        QVERIFY(isDefault(pay));
    }

    void parseProperties_resultCode_decidesTheResult()
    {
        for (const int code : {-1, 0, 2, 3}) {
            QVERIFY(!ParkingCheckResponse(code, {}).parseProperties(ExampleAnswers::check()));
            QVERIFY(!ParkInfoPayResponse(code, {}).parseProperties(ExampleAnswers::pay()));
        }
        QVERIFY(ParkingCheckResponse(1, {}).parseProperties(ExampleAnswers::check()));
        QVERIFY(ParkInfoPayResponse(1, {}).parseProperties(ExampleAnswers::pay()));
    }

    void amount_text_isAWholeNumberOfHundredths_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("value");
        QTest::newRow("hundred and fifty") << "15000" << qint64(15000);
        QTest::newRow("less than one") << "5" << qint64(5);
        QTest::newRow("negative") << "-100" << qint64(-100);
        QTest::newRow("zero") << "0" << qint64(0);
        QTest::newRow("decimal point") << "150.00" << qint64(0);
        QTest::newRow("decimal comma") << "150,00" << qint64(0);
        QTest::newRow("group separator") << "15 000" << qint64(0);
        QTest::newRow("word") << "free" << qint64(0);
        QTest::newRow("hexadecimal") << "0x10" << qint64(0);
        QTest::newRow("exponent") << "1e3" << qint64(0);
        QTest::newRow("leading zeros") << "00150" << qint64(150);
        QTest::newRow("largest") << "9223372036854775807" << std::numeric_limits<qint64>::max();
        QTest::newRow("lowest") << "-9223372036854775808" << std::numeric_limits<qint64>::min();
        QTest::newRow("too large") << "9223372036854775808" << qint64(0);
        QTest::newRow("empty") << "" << qint64(0);
    }

    void amount_text_isAWholeNumberOfHundredths()
    {
        QFETCH(QString, text);
        QFETCH(qint64, value);
        const ParkingCheckResponse response(
            1, {{QStringLiteral("TotalCharge"), text}, {QStringLiteral("AmountSum"), text}});
        QCOMPARE(response.totalCharge().value(), value);
        QCOMPARE(response.totalCharge().scale(), 100);
        QCOMPARE(response.amountSum().value(), value);
        QCOMPARE(response.amountSum().scale(), 100);
    }

    void flag_text_isANumberOtherThanZero_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("flag");
        QTest::newRow("one") << "1" << true;
        QTest::newRow("zero") << "0" << false;
        QTest::newRow("two") << "2" << true;
        QTest::newRow("negative") << "-1" << true;
        QTest::newRow("the word true") << "true" << false;
        QTest::newRow("the word false") << "false" << false;
        QTest::newRow("fraction") << "1.0" << false;
        QTest::newRow("hexadecimal") << "0x1" << false;
        QTest::newRow("empty") << "" << false;
    }

    void flag_text_isANumberOtherThanZero()
    {
        QFETCH(QString, text);
        QFETCH(bool, flag);
        QCOMPARE(ParkingCheckResponse(1, {{QStringLiteral("CanExtend"), text}}).canExtend(), flag);
        QCOMPARE(ParkingCheckResponse(1, {{QStringLiteral("CanStop"), text}}).canStop(), flag);
    }

    void dateTime_text_isIso8601_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("moment");
        QTest::newRow("local time") << "2019-05-14T09:30:00" << local(9, 30);
        QTest::newRow("UTC") << "2019-05-14T09:30:00Z" << MOMENT;
        QTest::newRow("offset") << "2019-05-14T12:30:00+03:00" << MOMENT;
        QTest::newRow("fraction") << "2019-05-14T09:30:00.500Z" << MOMENT.addMSecs(500);
        QTest::newRow("another order") << "14.05.2019 09:30" << QDateTime();
        QTest::newRow("time alone") << "10:05:42" << QDateTime();
        QTest::newRow("month 13") << "2019-13-14T09:30:00" << QDateTime();
        QTest::newRow("word") << "now" << QDateTime();
        QTest::newRow("empty") << "" << QDateTime();
    }

    void dateTime_text_isIso8601()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, moment);
        const ParkingCheckResponse check(1, {{QStringLiteral("StartTime"), text},
                                             {QStringLiteral("AnticipatedStopTime"), text},
                                             {QStringLiteral("LastChangeTime"), text},
                                             {QStringLiteral("AnswerTime"), text}});
        const ParkInfoPayResponse pay(
            1, {{QStringLiteral("AnticipatedStopTime"), text}, {QStringLiteral("AnswerTime"), text}});
        for (const QDateTime &read : {check.startTime(), check.anticipatedStopTime(), check.lastChangeTime(),
                                      check.responseTime(), pay.anticipatedStopTime(), pay.responseTime()}) {
            QCOMPARE(read.isValid(), moment.isValid());
            QCOMPARE(read, moment);
        }
    }

    void text_blanksAround_areKept()
    {
        QCOMPARE(ParkingCheckResponse(1, {{QStringLiteral("SessionId"), QStringLiteral(" s ")}}).sessionId(),
                 QStringLiteral(" s "));
        QCOMPARE(ParkInfoPayResponse(1, {{QStringLiteral("PartnerId"), QStringLiteral(" p ")}}).partnerId(),
                 QStringLiteral(" p "));
    }

    void responseTime_property_isAnswerTimeAndNoOther()
    {
        const Properties properties = {{QStringLiteral("ResponseTime"), QStringLiteral("2019-05-14T09:30:00")}};
        QVERIFY(!ParkingCheckResponse(1, properties).responseTime().isValid());
        QVERIFY(!ParkInfoPayResponse(1, properties).responseTime().isValid());
    }

    void fromDocument_ownOperation_isRead()
    {
        const QString check = document(CHECK, QStringLiteral("1"), ExampleAnswers::check());
        QVERIFY(ParkingCheckResponse(check) == ParkingCheckResponse(1, ExampleAnswers::check()));
        QVERIFY(ParkingCheckResponse(check.toUtf8()) == ParkingCheckResponse(1, ExampleAnswers::check()));
        const QString pay = document(PAY.toUpper(), QStringLiteral("1"), ExampleAnswers::pay());
        QVERIFY(ParkInfoPayResponse(pay) == ParkInfoPayResponse(1, ExampleAnswers::pay()));
        QVERIFY(ParkInfoPayResponse(pay.toUtf8()) == ParkInfoPayResponse(1, ExampleAnswers::pay()));
    }

    void fromDocument_otherOperation_staysDefault()
    {
        const QString check = document(CHECK, QStringLiteral("1"), ExampleAnswers::check());
        const QString pay = document(PAY, QStringLiteral("1"), ExampleAnswers::pay());
        QVERIFY(isDefault(ParkingCheckResponse(pay)));
        QVERIFY(isDefault(ParkingCheckResponse(pay.toUtf8())));
        QVERIFY(isDefault(ParkInfoPayResponse(check)));
        QVERIFY(isDefault(ParkInfoPayResponse(check.toUtf8())));
        QVERIFY(isDefault(ParkingCheckResponse(QString())));
        QVERIFY(isDefault(ParkInfoPayResponse(QByteArray())));
        QVERIFY(isDefault(ParkInfoPayResponse(QByteArray("<response Operation='ParkInfoPayResponse'/>"))));
    }

    void fromDocument_errorAlone_hasCodeAndText()
    {
        const Properties error = {{QStringLiteral("ErrorInfo"), QStringLiteral("Парковка уже оплачена")}};
        ParkingCheckResponse response(document(CHECK, QStringLiteral("3"), error));
        QCOMPARE(response.resultCode(), 3);
        QCOMPARE(response.errorInfo(), QStringLiteral("Парковка уже оплачена"));
        response.setResultCode(-1);
        response.setErrorInfo(QString());
        QVERIFY(isDefault(response));
    }

    void fromDocument_noChildren_isASuccessByItsCode()
    {
        const QString pay = document(PAY.toLower(), QStringLiteral("1"), {});
        ParkInfoPayResponse response(pay);
        QCOMPARE(response.resultCode(), 1);
        QXmlStreamReader reader(pay);
        QVERIFY(response.parseXml(&reader));
    }

    void parseXml_result_isWhetherItIsASuccessOfTheOperation()
    {
        ParkingCheckResponse check;
        ParkInfoPayResponse pay;
        QVERIFY(!check.parseXml(nullptr));
        QVERIFY(!pay.parseXml(nullptr));
        const auto parse = [](auto &response, const QString &text) {
            QXmlStreamReader reader(text);
            return response.parseXml(&reader);
        };
        QVERIFY(parse(check, document(CHECK, QStringLiteral("1"), {})));
        QVERIFY(!parse(check, document(CHECK, QStringLiteral("2"), {})));
        QCOMPARE(check.resultCode(), 2);
        QVERIFY(!parse(check, document(PAY, QStringLiteral("1"), {})));
        QCOMPARE(check.resultCode(), 2);
        QVERIFY(parse(pay, document(PAY, QStringLiteral("1"), {})));
        QVERIFY(!parse(pay, document(CHECK, QStringLiteral("1"), {})));
    }
};

TEST_MAIN(ResponsesTest)
#include "tst_responses.moc"
