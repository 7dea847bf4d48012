// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "purchase.h"

#include "support/testcase.h"

using kiosk::Purchase;

namespace {
FixNumber amount(const QString &text)
{
    return {100, text};
}
} // namespace

class PurchaseTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void amounts_ofDueCashAndComission_addUp_data()
    {
        QTest::addColumn<QString>("due");
        QTest::addColumn<QStringList>("notes");
        QTest::addColumn<QString>("comission");
        QTest::addColumn<QString>("summ");
        QTest::addColumn<QString>("total");
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("remainder");
        QTest::addColumn<QString>("toPayIn");
        const auto row = [](const char *name, const char *due, const QStringList &notes, const char *comission,
                            const char *summ, const char *total, const char *change, const char *remainder,
                            const char *toPayIn) {
            QTest::newRow(name) << due << notes << comission << summ << total << change << remainder << toPayIn;
        };
        row("nothing paid in", "150.00", {}, "0", "0.00", "0.00", "0.00", "150.00", "150.00");
        row("a part", "150.00", {"100"}, "0", "100.00", "100.00", "0.00", "50.00", "50.00");
        row("all of it", "150.00", {"100", "50"}, "0", "150.00", "150.00", "0.00", "0.00", "0.00");
        row("more than it", "150.00", {"100", "100"}, "0", "150.00", "150.00", "50.00", "0.00", "0.00");
        row("one hundredth short", "150.01", {"150"}, "0", "150.00", "150.00", "0.00", "0.01", "0.01");
        row("one hundredth over", "149.99", {"150"}, "0", "149.99", "149.99", "0.01", "0.00", "0.00");
        row("a part, with comission", "150.00", {"100"}, "5", "100.00", "100.00", "0.00", "50.00", "55.00");
        row("the sum due without the comission", "150.00", {"150"}, "5", "150.00", "150.00", "0.00", "0.00", "5.00");
        row("a part of the comission", "150.00", {"152"}, "5", "150.00", "152.00", "0.00", "0.00", "3.00");
        row("with comission", "150.00", {"155"}, "5", "150.00", "155.00", "0.00", "0.00", "0.00");
        row("more than it with comission", "150.00", {"200"}, "5", "150.00", "155.00", "45.00", "0.00", "0.00");
        row("a comission below zero is none", "150.00", {"200"}, "-5", "150.00", "150.00", "50.00", "0.00", "0.00");
        row("notes of nothing and below are none", "150.00", {"100", "0", "-50"}, "0", "100.00", "100.00", "0.00",
            "50.00", "50.00");
        row("nothing due", "0.00", {}, "5", "0.00", "0.00", "0.00", "0.00", "0.00");
        row("nothing due any more", "0.00", {"50"}, "0", "0.00", "0.00", "50.00", "0.00", "0.00");
        row("nothing due any more, with comission", "0.00", {"50"}, "5", "0.00", "0.00", "50.00", "0.00", "0.00");
        row("less than nothing due", "-150.00", {"50"}, "0", "0.00", "0.00", "50.00", "0.00", "0.00");
    }

    void amounts_ofDueCashAndComission_addUp()
    {
        QFETCH(QString, due);
        QFETCH(QStringList, notes);
        QFETCH(QString, comission);
        QFETCH(QString, summ);
        QFETCH(QString, total);
        QFETCH(QString, change);
        QFETCH(QString, remainder);
        QFETCH(QString, toPayIn);
        Purchase purchase(amount(comission));
        purchase.setDue(due);
        for (const QString &note : notes)
            purchase.add(amount(note));
        QCOMPARE(purchase.summ().toString(), summ);
        QCOMPARE(purchase.total().toString(), total);
        QCOMPARE(purchase.change().toString(), change);
        QCOMPARE(purchase.remainder().toString(), remainder);
        QCOMPARE(purchase.toPayIn().toString(), toPayIn);
        QCOMPARE(purchase.cash(), purchase.total() + purchase.change());
    }

    void isNothingDue_ofASum_saysWhetherToPay_data()
    {
        QTest::addColumn<QString>("due");
        QTest::addColumn<bool>("isNothingDue");
        QTest::newRow("an amount") << "150.00" << false;
        QTest::newRow("the smallest amount") << "0.01" << false;
        QTest::newRow("zero") << "0.00" << true;
        QTest::newRow("negative") << "-150.00" << true;
        QTest::newRow("no number") << "n/a" << true;
        QTest::newRow("with a comma") << "150,00" << true;
        QTest::newRow("empty") << "" << true;
        QTest::newRow("null") << QString() << true;
    }

    void isNothingDue_ofASum_saysWhetherToPay()
    {
        QFETCH(QString, due);
        Purchase purchase;
        QVERIFY(purchase.isNothingDue());
        purchase.setDue(due);
        QTEST(purchase.isNothingDue(), "isNothingDue");
    }

    void due_changed_keepsTheCash()
    {
        Purchase purchase;
        purchase.setDue(QStringLiteral("150.00"));
        purchase.add(amount(QStringLiteral("100")));
        purchase.setDue(QStringLiteral("80.00"));
        QCOMPARE(purchase.summ().toString(), QStringLiteral("80.00"));
        QCOMPARE(purchase.change().toString(), QStringLiteral("20.00"));
        QVERIFY(purchase.hasCash());
    }
};

TEST_MAIN(PurchaseTest)
#include "tst_purchase.moc"
