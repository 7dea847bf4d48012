// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/logger.h"

#include "support/testcase.h"

class LoggerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void logger_named_isTheBus() { QCOMPARE(trelmbus::LOGGER().categoryName(), "trelmbus"); }

    void logger_askedTwice_isOneCategory() { QCOMPARE(&trelmbus::LOGGER(), &trelmbus::LOGGER()); }

    void line_logged_carriesTheCategory()
    {
        qCWarning(trelmbus::LOGGER) << "a line";
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).category, QStringLiteral("trelmbus"));
        QCOMPARE(lines.at(0).text, QStringLiteral("a line"));
    }

    void logger_byDefault_letsEveryLevelThroughAndFollowsRules()
    {
        QVERIFY(trelmbus::LOGGER().isWarningEnabled());
        QVERIFY(trelmbus::LOGGER().isCriticalEnabled());
        QLoggingCategory::setFilterRules(QStringLiteral("trelmbus.warning=false"));
        const bool isEnabled = trelmbus::LOGGER().isWarningEnabled();
        QLoggingCategory::setFilterRules(QString());
        QVERIFY(!isEnabled);
        QVERIFY(trelmbus::LOGGER().isWarningEnabled());
    }
};

TEST_MAIN(LoggerTest)
#include "tst_logger.moc"
