// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <QXmlStreamReader>

#include <functional>
#include <utility>

namespace {
using Properties = BaseParkomatResponse::Properties;

const QDateTime MOMENT(QDate(2019, 5, 14), QTime(9, 30, 0), Qt::UTC);

Properties checkProperties()
{
    return {{QStringLiteral("SessionId"), QStringLiteral("s")},
            {QStringLiteral("ExternalSessionId"), QStringLiteral("x")},
            {QStringLiteral("ParkingId"), QStringLiteral("12")},
            {QStringLiteral("StartTime"), QStringLiteral("2019-05-14T09:30:00")},
            {QStringLiteral("AnticipatedStopTime"), QStringLiteral("2019-05-14T11:30:00")},
            {QStringLiteral("LastChangeTime"), QStringLiteral("2019-05-14T09:31:00")},
            {QStringLiteral("TotalCharge"), QStringLiteral("15000")},
            {QStringLiteral("AmountSum"), QStringLiteral("5000")},
            {QStringLiteral("CanExtend"), QStringLiteral("1")},
            {QStringLiteral("CanStop"), QStringLiteral("0")},
            {QStringLiteral("AnswerTime"), QStringLiteral("2019-05-14T10:02:11")},
            {QStringLiteral("ErrorInfo"), QStringLiteral("e")}};
}

Properties payProperties()
{
    return {{QStringLiteral("PartnerId"), QStringLiteral("dravik")},
            {QStringLiteral("SessionId"), QStringLiteral("s")},
            {QStringLiteral("ExternalSessionId"), QStringLiteral("x")},
            {QStringLiteral("AnticipatedStopTime"), QStringLiteral("2019-05-14T11:30:00")},
            {QStringLiteral("AnswerTime"), QStringLiteral("2019-05-14T10:05:42")},
            {QStringLiteral("ErrorInfo"), QStringLiteral("e")}};
}

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

/// What moving leaves of an answer.
ParkingCheckResponse withoutTextsAndTimes(ParkingCheckResponse answer)
{
    answer.setSessionId(QString());
    answer.setExternalSessionId(QString());
    answer.setParkingId(QString());
    answer.setStartTime(QDateTime());
    answer.setAnticipatedStopTime(QDateTime());
    answer.setLastChangeTime(QDateTime());
    answer.setResponseTime(QDateTime());
    return answer;
}

ParkInfoPayResponse withoutTextsAndTimes(ParkInfoPayResponse answer)
{
    answer.setPartnerId(QString());
    answer.setSessionId(QString());
    answer.setExternalSessionId(QString());
    answer.setAnticipatedStopTime(QDateTime());
    answer.setResponseTime(QDateTime());
    return answer;
}

/// By every field, the error text included.
template <typename Response>
bool isSame(const Response &left, const Response &right)
{
    return left == right && left.errorInfo() == right.errorInfo();
}
} // namespace

/// Sends answers as the client does, and keeps those that arrive.
class AnswerPost : public QObject
{
    Q_OBJECT

public:
    QList<ParkingCheckResponse> checks;
    QList<ParkInfoPayResponse> pays;

public Q_SLOTS:
    void keepCheck(const ParkingCheckResponse &answer) { checks.append(answer); }
    void keepPay(const ParkInfoPayResponse &answer) { pays.append(answer); }

Q_SIGNALS:
    void parkingCheckResponse(ParkingCheckResponse response);
    void parkInfoPayResponse(ParkInfoPayResponse response);
};

/// The two typed answers of the cash service.
class ResponsesTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    /// Verifies that two equal answers become unequal by each change of one field, and equal again by assignment.
    template <typename Response>
    static void verifyEachFieldCounts(const Response &original, const QList<std::function<void(Response &)>> &changes)
    {
        QVERIFY(original == Response(original));
        for (const auto &change : changes) {
            Response changed(original);
            change(changed);
            QVERIFY(changed != original);
            QVERIFY(!(changed == original));
            changed = original;
            QVERIFY(changed == original);
        }
    }

    template <typename Response>
    static void verifyMoves(const Response &original)
    {
        Response source(original);
        Response target(std::move(source));
        QVERIFY(isSame(target, original));
        Response assigned;
        assigned = std::move(target);
        QVERIFY(isSame(assigned, original));
        // NOLINTBEGIN(bugprone-use-after-move): what a moved-from answer holds is part of its contract.
        QVERIFY(isSame(source, withoutTextsAndTimes(original)));
        QVERIFY(isSame(target, withoutTextsAndTimes(original)));
        // NOLINTEND(bugprone-use-after-move)
    }

    template <typename Response>
    static void verifySelfAssignments(const Response &original)
    {
        Response answer(original);
        Response &same = answer;
        answer = same;
        QVERIFY(isSame(answer, original));
        answer = std::move(same);
        QVERIFY(isSame(answer, original));
    }

private Q_SLOTS:
    void check_default_isEmpty() { QVERIFY(isDefault(ParkingCheckResponse())); }

    void pay_default_isEmpty() { QVERIFY(isDefault(ParkInfoPayResponse())); }

    void check_properties_fillEveryField()
    {
        const ParkingCheckResponse response(1, checkProperties());
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
        const ParkInfoPayResponse response(1, payProperties());
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
        ParkingCheckResponse check(1, checkProperties());
        QVERIFY(check.parseProperties({}));
        QCOMPARE(check.resultCode(), 1);
        check.setResultCode(-1);
        QVERIFY(isDefault(check));

        ParkInfoPayResponse pay(1, payProperties());
        QVERIFY(pay.parseProperties({}));
        QCOMPARE(pay.resultCode(), 1);
        pay.setResultCode(-1);
        QVERIFY(isDefault(pay));
    }

    void parseProperties_resultCode_decidesTheResult()
    {
        for (const int code : {-1, 0, 2, 3}) {
            QVERIFY(!ParkingCheckResponse(code, {}).parseProperties(checkProperties()));
            QVERIFY(!ParkInfoPayResponse(code, {}).parseProperties(payProperties()));
        }
        QVERIFY(ParkingCheckResponse(1, {}).parseProperties(checkProperties()));
        QVERIFY(ParkInfoPayResponse(1, {}).parseProperties(payProperties()));
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
        const QString check = document(CHECK, QStringLiteral("1"), checkProperties());
        QVERIFY(ParkingCheckResponse(check) == ParkingCheckResponse(1, checkProperties()));
        QVERIFY(ParkingCheckResponse(check.toUtf8()) == ParkingCheckResponse(1, checkProperties()));
        const QString pay = document(PAY.toUpper(), QStringLiteral("1"), payProperties());
        QVERIFY(ParkInfoPayResponse(pay) == ParkInfoPayResponse(1, payProperties()));
        QVERIFY(ParkInfoPayResponse(pay.toUtf8()) == ParkInfoPayResponse(1, payProperties()));
    }

    void fromDocument_otherOperation_staysDefault()
    {
        const QString check = document(CHECK, QStringLiteral("1"), checkProperties());
        const QString pay = document(PAY, QStringLiteral("1"), payProperties());
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

    void check_setters_areReadBack()
    {
        ParkingCheckResponse response;
        response.setSessionId(QStringLiteral("1"));
        response.setExternalSessionId(QStringLiteral("2"));
        response.setParkingId(QStringLiteral("3"));
        response.setStartTime(MOMENT);
        response.setAnticipatedStopTime(MOMENT.addSecs(1));
        response.setLastChangeTime(MOMENT.addSecs(2));
        response.setTotalCharge(FixNumber(100, 4));
        response.setAmountSum(FixNumber(100, 5));
        response.setCanExtend(true);
        response.setCanStop(true);
        response.setResponseTime(MOMENT.addSecs(3));
        QCOMPARE(response.sessionId(), QStringLiteral("1"));
        QCOMPARE(response.externalSessionId(), QStringLiteral("2"));
        QCOMPARE(response.parkingId(), QStringLiteral("3"));
        QCOMPARE(response.startTime(), MOMENT);
        QCOMPARE(response.anticipatedStopTime(), MOMENT.addSecs(1));
        QCOMPARE(response.lastChangeTime(), MOMENT.addSecs(2));
        QCOMPARE(response.totalCharge().value(), qint64(4));
        QCOMPARE(response.amountSum().value(), qint64(5));
        QVERIFY(response.canExtend());
        QVERIFY(response.canStop());
        QCOMPARE(response.responseTime(), MOMENT.addSecs(3));
    }

    void pay_setters_areReadBack()
    {
        ParkInfoPayResponse response;
        response.setPartnerId(QStringLiteral("1"));
        response.setSessionId(QStringLiteral("2"));
        response.setExternalSessionId(QStringLiteral("3"));
        response.setAnticipatedStopTime(MOMENT);
        response.setResponseTime(MOMENT.addSecs(1));
        QCOMPARE(response.partnerId(), QStringLiteral("1"));
        QCOMPARE(response.sessionId(), QStringLiteral("2"));
        QCOMPARE(response.externalSessionId(), QStringLiteral("3"));
        QCOMPARE(response.anticipatedStopTime(), MOMENT);
        QCOMPARE(response.responseTime(), MOMENT.addSecs(1));
    }

    void check_equality_countsEveryFieldButTheErrorText()
    {
        using R = ParkingCheckResponse;
        const R response(1, checkProperties());
        verifyEachFieldCounts<R>(response, {
                                               [](R &r) { r.setResultCode(2); },
                                               [](R &r) { r.setSessionId(QString()); },
                                               [](R &r) { r.setExternalSessionId(QString()); },
                                               [](R &r) { r.setParkingId(QString()); },
                                               [](R &r) { r.setStartTime(MOMENT); },
                                               [](R &r) { r.setAnticipatedStopTime(MOMENT); },
                                               [](R &r) { r.setLastChangeTime(MOMENT); },
                                               [](R &r) { r.setTotalCharge(FixNumber()); },
                                               [](R &r) { r.setAmountSum(FixNumber()); },
                                               [](R &r) { r.setCanExtend(false); },
                                               [](R &r) { r.setCanStop(true); },
                                               [](R &r) { r.setResponseTime(MOMENT); },
                                           });
        R other(response);
        other.setErrorInfo(QStringLiteral("another"));
        QVERIFY(other == response);
    }

    void pay_equality_countsEveryFieldButTheErrorText()
    {
        using R = ParkInfoPayResponse;
        const R response(1, payProperties());
        verifyEachFieldCounts<R>(response, {
                                               [](R &r) { r.setResultCode(2); },
                                               [](R &r) { r.setPartnerId(QString()); },
                                               [](R &r) { r.setSessionId(QString()); },
                                               [](R &r) { r.setExternalSessionId(QString()); },
                                               [](R &r) { r.setAnticipatedStopTime(MOMENT); },
                                               [](R &r) { r.setResponseTime(MOMENT); },
                                           });
        R other(response);
        other.setErrorInfo(QStringLiteral("another"));
        QVERIFY(other == response);
    }

    void check_move_takesTextsAndTimesAlone() { verifyMoves(ParkingCheckResponse(1, checkProperties())); }

    void pay_move_takesTextsAndTimesAlone() { verifyMoves(ParkInfoPayResponse(1, payProperties())); }

    void assignment_toItself_changesNothing()
    {
        verifySelfAssignments(ParkingCheckResponse(1, checkProperties()));
        verifySelfAssignments(ParkInfoPayResponse(1, payProperties()));
    }

    void queuedConnection_byName_bringsWhatWasSent()
    {
        qRegisterMetaType<ParkInfoPayResponse>("ParkInfoPayResponse");
        qRegisterMetaType<ParkingCheckResponse>("ParkingCheckResponse");
        AnswerPost post;
        QVERIFY(connect(&post, SIGNAL(parkingCheckResponse(ParkingCheckResponse)), &post,
                        SLOT(keepCheck(ParkingCheckResponse)), Qt::QueuedConnection));
        QVERIFY(connect(&post, SIGNAL(parkInfoPayResponse(ParkInfoPayResponse)), &post,
                        SLOT(keepPay(ParkInfoPayResponse)), Qt::QueuedConnection));
        const ParkingCheckResponse check(3, checkProperties());
        const ParkInfoPayResponse pay(3, payProperties());
        Q_EMIT post.parkingCheckResponse(check);
        Q_EMIT post.parkInfoPayResponse(pay);
        QVERIFY(post.checks.isEmpty());
        QVERIFY(post.pays.isEmpty());
        QCoreApplication::sendPostedEvents(&post);
        QCOMPARE(post.checks.size(), 1);
        QVERIFY(isSame(post.checks.at(0), check));
        QCOMPARE(post.pays.size(), 1);
        QVERIFY(isSame(post.pays.at(0), pay));
    }

    void metaTypes_variants_carryTheAnswers()
    {
        const ParkingCheckResponse check(1, checkProperties());
        const QVariant checkVariant = QVariant::fromValue(check);
        QCOMPARE(checkVariant.typeName(), "ParkingCheckResponse");
        QVERIFY(checkVariant.value<ParkingCheckResponse>() == check);
        const ParkInfoPayResponse pay(1, payProperties());
        const QVariant payVariant = QVariant::fromValue(pay);
        QCOMPARE(payVariant.typeName(), "ParkInfoPayResponse");
        QVERIFY(payVariant.value<ParkInfoPayResponse>() == pay);
    }
};

TEST_MAIN(ResponsesTest)
#include "tst_responses.moc"
