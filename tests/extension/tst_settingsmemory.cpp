// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/settingsmemory.h"

#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

namespace {
const QDateTime MOMENT(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);

QString fileName(int number = 0)
{
    return WorkDirectory::path() + QStringLiteral("/%1.ini").arg(number);
}

/// Every version has the same size and age.
bool write(const QString &path, const char *value)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("key=") == 4 && file.write(value) == 1 && file.flush() &&
           file.setFileTime(MOMENT, QFileDevice::FileModificationTime);
}

QString read(const QString &path)
{
    return QSettings(path, QSettings::IniFormat).value(QStringLiteral("key")).toString();
}
} // namespace

class SettingsMemoryTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    /// Else the other tests would prove nothing.
    void file_changedUnnoticeably_isRemembered()
    {
        SettingsMemory::forget();
        QVERIFY(write(fileName(), "a"));
        QCOMPARE(read(fileName()), QStringLiteral("a"));
        QVERIFY(write(fileName(), "b"));
        QCOMPARE(read(fileName()), QStringLiteral("a"));
    }

    void files_closed_areForgotten_data()
    {
        QTest::addColumn<int>("count");
        for (const int count : {1, 2, 9, 10})
            QTest::addRow("%d", count) << count;
    }

    void files_closed_areForgotten()
    {
        QFETCH(int, count);
        for (const char *value : {"a", "b", "c"}) {
            for (int i = 0; i < count; ++i)
                QVERIFY(write(fileName(i), value));
            SettingsMemory::forget();
            for (int i = 0; i < count; ++i)
                QCOMPARE(read(fileName(i)), QLatin1String(value));
        }
    }

    void fileThatIsMissing_forgetsNothingAndIsReportedOnce()
    {
        const QString missing = WorkDirectory::path() + QStringLiteral("/missing");
        for (int i = 0; i < 3; ++i)
            SettingsMemory::forget(missing);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.extension"));
        QVERIFY2(lines.at(0).text.contains(QLatin1Char('"') + missing + QLatin1Char('"')),
                 qPrintable(lines.at(0).text));
        QVERIFY(!QFileInfo::exists(missing));
    }
};

TEST_MAIN(SettingsMemoryTest)
#include "tst_settingsmemory.moc"
