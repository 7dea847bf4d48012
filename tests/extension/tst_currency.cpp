// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/currency.h"

#include "support/testcase.h"

class CurrencyTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void currency_byDefault_isTheRouble()
    {
        QCOMPARE(Currency().code, 643);
        QCOMPARE(Currency().shortName, QString::fromUtf8("руб."));
        QCOMPARE(Currency().decimals, 2);
    }

    void currencies_compared_areEqualWhenEveryFieldIs_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("shortName");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<bool>("isEqual");
        const QString rouble = QString::fromUtf8("руб.");
        QTest::newRow("same") << 643 << rouble << 2 << true;
        QTest::newRow("another code") << 978 << rouble << 2 << false;
        QTest::newRow("another name") << 643 << QStringLiteral("EUR") << 2 << false;
        QTest::newRow("other decimals") << 643 << rouble << 0 << false;
    }

    void currencies_compared_areEqualWhenEveryFieldIs()
    {
        QFETCH(int, code);
        QFETCH(QString, shortName);
        QFETCH(int, decimals);
        QFETCH(bool, isEqual);
        const Currency other = {code, shortName, decimals};
        QCOMPARE(Currency() == other, isEqual);
        QCOMPARE(Currency() != other, !isEqual);
    }
};

TEST_MAIN(CurrencyTest)
#include "tst_currency.moc"
