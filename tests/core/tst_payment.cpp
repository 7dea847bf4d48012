// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/payment.h"

#include "support/testcase.h"

#include <functional>
#include <limits>

Q_DECLARE_METATYPE(std::function<void(Payment &)>)

namespace {
constexpr qint64 HIGHEST = std::numeric_limits<qint64>::max();

QDateTime moment()
{
    return QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);
}

FixNumber amount(qint64 hundredths)
{
    return FixNumber(100, hundredths);
}

Payment payment()
{
    Payment payment(4711, moment(), 18156);
    payment.setSumm(amount(15000));
    payment.setComission(amount(500), true, false);
    return payment;
}
} // namespace

class PaymentTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void payment_byDefault_isEmpty()
    {
        const Payment empty;
        QCOMPARE(empty.uid(), 0);
        QVERIFY(!empty.created().isValid());
        QVERIFY(empty.providerId() < 1);
        for (const FixNumber &zero : {empty.summ(), empty.comission(), empty.total()})
            QCOMPARE(zero.toString(), QStringLiteral("0.00"));
        QVERIFY(!empty.usePrepay());
        QVERIFY(!empty.devidePrepay());
    }

    void payment_made_holdsWhatItWasGiven()
    {
        const Payment made = payment();
        QCOMPARE(made.uid(), 4711);
        QCOMPARE(made.created(), moment());
        QCOMPARE(made.providerId(), 18156);
        QCOMPARE(made.summ().toString(), QStringLiteral("150.00"));
        QCOMPARE(made.comission().toString(), QStringLiteral("5.00"));
        QCOMPARE(made.total().toString(), QStringLiteral("155.00"));
        QVERIFY(made.usePrepay());
        QVERIFY(!made.devidePrepay());
    }

    void prepayFlags_set_areHeldApart()
    {
        Payment changed;
        changed.setComission(amount(1), false, true);
        QVERIFY(!changed.usePrepay());
        QVERIFY(changed.devidePrepay());
    }

    void amount_ofAnyScale_isInHundredths_data()
    {
        QTest::addColumn<FixNumber>("given");
        QTest::addColumn<qint64>("hundredths");
        QTest::addColumn<bool>("isTooLarge");
        const auto row = [](int scale, qint64 value, qint64 hundredths, bool isTooLarge = false) {
            QTest::addRow("%lld at %d", value, scale) << FixNumber(scale, value) << hundredths << isTooLarge;
        };
        row(100, 15000, 15000);
        row(100, -15000, -15000);
        row(100, HIGHEST, HIGHEST);
        row(1, 150, 15000);
        row(10, 1505, 15050);
        row(1000, 150'009, 15000);
        row(1000, -150'009, -15000);
        row(1000, -9, 0);
        row(1'000'000'000, HIGHEST, 922'337'203'685);
        row(1, HIGHEST, HIGHEST, true);
        row(1, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min(), true);
    }

    void amount_ofAnyScale_isInHundredths()
    {
        QFETCH(FixNumber, given);
        QFETCH(qint64, hundredths);
        QFETCH(bool, isTooLarge);
        Payment changed;
        changed.setSumm(given);
        const int linesForSumm = MessageLog::take().size();
        QCOMPARE(changed.summ().scale(), 100);
        QCOMPARE(changed.summ().value(), hundredths);
        QCOMPARE(linesForSumm, isTooLarge ? 1 : 0);

        changed = Payment();
        changed.setComission(given, false, false);
        const int linesForComission = MessageLog::take().size();
        QCOMPARE(changed.comission().scale(), 100);
        QCOMPARE(changed.comission().value(), hundredths);
        QCOMPARE(changed.total().scale(), 100);
        QCOMPARE(linesForComission, isTooLarge ? 1 : 0);
    }

    void total_ofSummAndComission_isTheirSum_data()
    {
        QTest::addColumn<qint64>("summ");
        QTest::addColumn<qint64>("comission");
        QTest::addColumn<qint64>("total");
        QTest::newRow("both") << qint64(15000) << qint64(500) << qint64(15500);
        QTest::newRow("no commission") << qint64(15000) << qint64(0) << qint64(15000);
        QTest::newRow("commission alone") << qint64(0) << qint64(1) << qint64(1);
        QTest::newRow("a discount") << qint64(15000) << qint64(-500) << qint64(14500);
        QTest::newRow("to the edge") << HIGHEST - 1 << qint64(1) << HIGHEST;
    }

    void total_ofSummAndComission_isTheirSum()
    {
        QFETCH(qint64, summ);
        QFETCH(qint64, comission);
        QFETCH(qint64, total);
        Payment changed;
        changed.setSumm(amount(summ));
        changed.setComission(amount(comission), false, false);
        QCOMPARE(changed.total().value(), total);
    }

    void payments_differingInOneField_areNotEqual_data()
    {
        using Change = std::function<void(Payment &)>;
        QTest::addColumn<Change>("change");
        const auto row = [](const char *name, const Change &change) { QTest::newRow(name) << change; };
        const auto made = [](qint64 uid, const QDateTime &created, qint64 providerId) {
            return [=](Payment &p) {
                p = Payment(uid, created, providerId);
                p.setSumm(amount(15000));
                p.setComission(amount(500), true, false);
            };
        };
        row("uid", made(4712, moment(), 18156));
        row("created", made(4711, moment().addMSecs(1), 18156));
        row("no creation time", made(4711, QDateTime(), 18156));
        row("provider", made(4711, moment(), 18157));
        row("summ", [](Payment &p) { p.setSumm(amount(15001)); });
        row("commission", [](Payment &p) { p.setComission(amount(501), true, false); });
        row("use of prepay", [](Payment &p) { p.setComission(amount(500), false, false); });
        row("division of prepay", [](Payment &p) { p.setComission(amount(500), true, true); });
    }

    void payments_differingInOneField_areNotEqual()
    {
        QFETCH(std::function<void(Payment &)>, change);
        Payment changed = payment();
        QVERIFY(changed == payment());
        QVERIFY(!(changed != payment()));
        change(changed);
        QVERIFY(!(changed == payment()));
        QVERIFY(changed != payment());
    }

    void emptyPayments_areEqual() { QVERIFY(Payment() == Payment()); }
};

TEST_MAIN(PaymentTest)
#include "tst_payment.moc"
