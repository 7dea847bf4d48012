// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "mergedpayment.h"
#include "support/testcase.h"

#include <QCoreApplication>

namespace {
constexpr qint64 PROVIDER = 18156;

Payment payment(qint64 uid, const char *summ, const char *comission, bool usePrepay, bool devidePrepay)
{
    Payment made(uid, QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9)).addSecs(uid), PROVIDER);
    made.setSumm(FixNumber(100, QLatin1String(summ)));
    made.setComission(FixNumber(100, QLatin1String(comission)), usePrepay, devidePrepay);
    return made;
}
} // namespace

/// How a pack's payments become the one that is registered.
class MergedPaymentTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void add_further_addsItsAmountsAlone_data()
    {
        QTest::addColumn<bool>("usePrepay");
        QTest::addColumn<bool>("devidePrepay");
        QTest::newRow("prepaid commission") << true << false;
        QTest::newRow("divided prepayment") << false << true;
    }
    // No request carries the flags, so they show nowhere else.
    void add_further_addsItsAmountsAlone()
    {
        QFETCH(bool, usePrepay);
        QFETCH(bool, devidePrepay);
        MergedPayment merged(PROVIDER);
        QVERIFY(!merged.add(payment(1, "100.00", "5.00", usePrepay, devidePrepay)));
        QVERIFY(merged.add(payment(2, "50.00", "2.50", !usePrepay, !devidePrepay)));
        QCOMPARE(merged.payment(), payment(1, "150.00", "7.50", usePrepay, devidePrepay));
        QVERIFY(merged.add(payment(3, "0.25", "0.01", !usePrepay, !devidePrepay)));
        QCOMPARE(merged.payment(), payment(1, "150.25", "7.51", usePrepay, devidePrepay));
    }

    void add_ofAnotherProvider_isLeftOut()
    {
        MergedPayment merged(PROVIDER + 1);
        QVERIFY(!merged.add(payment(1, "100.00", "5.00", true, true)));
        QCOMPARE(merged.payment(), Payment());
    }

    void payment_ofNone_isEmpty() { QCOMPARE(MergedPayment(PROVIDER).payment(), Payment()); }
};

TEST_MAIN(MergedPaymentTest)
#include "tst_mergedpayment.moc"
