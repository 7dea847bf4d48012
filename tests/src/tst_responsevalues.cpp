// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "exampleanswers.h"
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "support/testcase.h"
#include "support/zone.h"

#include <functional>
#include <utility>

namespace {
using ExampleAnswers::MOMENT;

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

/// The two typed answers of the cash service as values: set, compared, copied, moved, and sent by signals.
class ResponseValuesTest : public TestCase
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
        const R response(1, ExampleAnswers::check());
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
        const R response(1, ExampleAnswers::pay());
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

    void check_move_takesTextsAndTimesAlone() { verifyMoves(ParkingCheckResponse(1, ExampleAnswers::check())); }

    void pay_move_takesTextsAndTimesAlone() { verifyMoves(ParkInfoPayResponse(1, ExampleAnswers::pay())); }

    void assignment_toItself_changesNothing()
    {
        verifySelfAssignments(ParkingCheckResponse(1, ExampleAnswers::check()));
        verifySelfAssignments(ParkInfoPayResponse(1, ExampleAnswers::pay()));
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
        const ParkingCheckResponse check(3, ExampleAnswers::check());
        const ParkInfoPayResponse pay(3, ExampleAnswers::pay());
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
        const ParkingCheckResponse check(1, ExampleAnswers::check());
        const QVariant checkVariant = QVariant::fromValue(check);
        QCOMPARE(checkVariant.typeName(), "ParkingCheckResponse");
        QVERIFY(checkVariant.value<ParkingCheckResponse>() == check);
        const ParkInfoPayResponse pay(1, ExampleAnswers::pay());
        const QVariant payVariant = QVariant::fromValue(pay);
        QCOMPARE(payVariant.typeName(), "ParkInfoPayResponse");
        QVERIFY(payVariant.value<ParkInfoPayResponse>() == pay);
    }
};

TEST_MAIN(ResponseValuesTest)
#include "tst_responsevalues.moc"
