// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "handlermatrix.h"
#include "stagedpayment.h"

#include <QApplication>

namespace {
QList<MatrixRow> matrix()
{
    return readMatrix(QStringLiteral(TEST_DATA "/handler-matrix.txt"));
}
} // namespace

/// Every event at every stage of a payment: what comes of it is written down in data/handler-matrix.txt.
class HandlerMatrixTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void matrix_stages_meetAllEvents()
    {
        QStringList found;
        for (const MatrixRow &row : matrix())
            found.append(row.stage + QStringLiteral(": ") + row.event);
        QStringList expected;
        for (const QString &stage : StagedPayment::stages()) {
            for (const QString &event : StagedPayment::events())
                expected.append(stage + QStringLiteral(": ") + event);
        }
        QCOMPARE(found, expected);
    }

    void event_atAStage_hasItsOutcome_data()
    {
        QTest::addColumn<QString>("stage");
        QTest::addColumn<QString>("event");
        QTest::addColumn<QString>("outcome");
        for (const MatrixRow &row : matrix()) {
            if (!row.outcome.isEmpty())
                QTest::addRow("%s: %s", qPrintable(row.stage), qPrintable(row.event))
                    << row.stage << row.event << row.outcome;
        }
    }
    void event_atAStage_hasItsOutcome()
    {
        QFETCH(QString, stage);
        QFETCH(QString, event);
        QFETCH(QString, outcome);
        StagedPayment payment;
        payment.precedeFor(event);
        payment.reach(stage);
        QCOMPARE(payment.outcomeOf(event), outcome);
        QCOMPARE(payment.complaint(), QString());
    }
};

WIDGET_TEST_MAIN(HandlerMatrixTest)
#include "tst_handlermatrix.moc"
