// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "journalfiles.h"
#include "parkomatsettings.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/workdirectory.h"
#include "support/zone.h"

#include <QFile>
#include <QFileInfo>

using namespace JournalFiles;

/// The operation journal's records and the session identifiers that it issues.
class ParkomatDataStorageTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void files_always_lieInTheWorkDirectory()
    {
        QCOMPARE(ParkomatDataStorage::MAIN_FILE, WorkDirectory::path() + QStringLiteral("/parkomat/s_main.enc"));
        QCOMPARE(ParkomatDataStorage::BACK_FILE, WorkDirectory::path() + QStringLiteral("/parkomat/s_back.enc"));
    }

    void constructor_noDirectory_makesItForAll()
    {
        const QString path = WorkDirectory::path() + QStringLiteral("/parkomat");
        QVERIFY(!QFile::exists(path));
        QObject parent;
        const auto *storage = new ParkomatDataStorage(&parent);
        QCOMPARE(storage->parent(), &parent);
        QVERIFY(QFileInfo(path).isDir());
        QCOMPARE(static_cast<int>(QFile::permissions(path) & 0x777), 0x777);
    }

    void constructor_directoryCannotBeMade_goesOn()
    {
        QFile inTheWay(WorkDirectory::path() + QStringLiteral("/parkomat"));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        ParkomatDataStorage storage;
        QCOMPARE(MessageLog::take().size(), 1);
        QCOMPARE(storage.getPrevOperation(), static_cast<quint16>(0));
        MessageLog::drop();
    }

    void setData_emptyMap_isWritten()
    {
        CryptedSettingsStorage file(ParkomatDataStorage::MAIN_FILE);
        ParkomatDataStorage storage;
        storage.setData(&file, {});
        // On disk at once, not when the object dies.
        const auto child = ChildProcess::start("printsRecord", {ParkomatDataStorage::MAIN_FILE});
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(child->readAll(), QByteArray("e30="));
        QCOMPARE(file.group(), QString());
        QCOMPARE(file.allKeys(), QStringList(RECORD));
    }

    void setData_filledMap_removesWhatIsStored()
    {
        CryptedSettingsStorage file(ParkomatDataStorage::MAIN_FILE);
        ParkomatDataStorage storage;
        storage.setData(&file, {});
        storage.setData(&file, {{QStringLiteral("operation"), 1}});
        QCOMPARE(file.group(), QString());
        QVERIFY(!file.contains(RECORD));
        const auto child = ChildProcess::start("printsRecord", {ParkomatDataStorage::MAIN_FILE});
        QCOMPARE(ChildProcess::finish(*child), 1);
    }

    void data_withoutAStorage_doesNothing()
    {
        ParkomatDataStorage storage;
        storage.setData(nullptr, {});
        QVariantMap data = {{QStringLiteral("left"), 1}};
        QVERIFY(!storage.getData(nullptr, data));
        QVERIFY(data.isEmpty());
    }

    void getData_absent_isReportedAsUnreadable()
    {
        CryptedSettingsStorage file(ParkomatDataStorage::MAIN_FILE);
        ParkomatDataStorage storage;
        QVariantMap data = {{QStringLiteral("left"), 1}};
        QVERIFY(!storage.getData(&file, data));
        QVERIFY(data.isEmpty());
        QCOMPARE(file.group(), QString());
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(texts(lines), QStringList(ABSENT_RECORD_LINE));
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("default"));
        QCOMPARE(lines.at(0).file, QStringLiteral("src/parkomatdatastorage.cpp"));
        QVERIFY(lines.at(0).line > 0);
        QCOMPARE(lines.at(0).function, QStringLiteral("bool ParkomatDataStorage::getData(QSettings*, QVariantMap&)"));
    }

    void getData_text_isDecoded_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QVariantMap>("map");
        QTest::addColumn<QStringList>("log");
        const QVariantMap none;
        const QVariantMap record = {{QStringLiteral("date"), QStringLiteral("2024.03.07")},
                                    {QStringLiteral("operation"), 17}};
        const QString good = base64(R"({"date":"2024.03.07","operation":17})");

        QTest::newRow("record") << good << true << record << QStringList();
        QTest::newRow("blanks around") << QStringLiteral(" \n") + good + QStringLiteral("\t ") << true << record
                                       << QStringList();
        QTest::newRow("letters outside the alphabet are skipped")
            << QStringLiteral("!") + good.left(5) + QStringLiteral("\n*ж") + good.mid(5) << true << record
            << QStringList();
        QTest::newRow("without padding") << base64(R"({"a":1})").remove(QLatin1Char('=')) << true
                                         << QVariantMap{{QStringLiteral("a"), 1}} << QStringList();
        QTest::newRow("empty object") << base64("{}") << true << none << QStringList();
        QTest::newRow("array") << base64("[1]") << true << none << QStringList();
        QTest::newRow("empty text") << QString() << false << none << QStringList();
        QTest::newRow("blanks only") << QStringLiteral(" \t\n") << false << none << QStringList();
        QTest::newRow("no Base64") << QStringLiteral("{}") << false << none << QStringList(ABSENT_RECORD_LINE);
        QTest::newRow("broken off") << base64(R"({"operation":"1")") << false << none
                                    << QStringList(QStringLiteral("unterminated string {\"operation\":\"1\""));
        QTest::newRow("text behind the object")
            << base64(R"({"a":1} x)") << false << none
            << QStringList(QStringLiteral("garbage at the end of the document {\"a\":1} x"));
        QTest::newRow("word") << base64("Привет") << false << none
                              << QStringList(QStringLiteral("illegal value Привет"));
    }

    void getData_text_isDecoded()
    {
        QFETCH(QString, stored);
        QFETCH(bool, result);
        QFETCH(QVariantMap, map);
        QFETCH(QStringList, log);
        writeText(ParkomatDataStorage::MAIN_FILE, stored);
        CryptedSettingsStorage file(ParkomatDataStorage::MAIN_FILE);
        QVariantMap data = {{QStringLiteral("left"), 1}};
        QCOMPARE(ParkomatDataStorage().getData(&file, data), result);
        QCOMPARE(data, map);
        QCOMPARE(texts(MessageLog::take()), log);
    }

    void setOperation_anyNumber_removesBothRecords()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 17, QStringLiteral("2024.03.07"));
        writeRecord(ParkomatDataStorage::BACK_FILE, 17, QStringLiteral("2024.03.07"));
        ParkomatDataStorage().setOperation(18);
        QVERIFY(!CryptedSettingsStorage(ParkomatDataStorage::MAIN_FILE).contains(RECORD));
        QVERIFY(!CryptedSettingsStorage(ParkomatDataStorage::BACK_FILE).contains(RECORD));
    }

    void addOperation_repeated_countsNothing()
    {
        ParkomatDataStorage storage;
        for (int i = 0; i < 3; ++i) {
            storage.addOperation();
            dropLinesOfAbsentRecords();
        }
        QCOMPARE(storage.getPrevOperation(), static_cast<quint16>(0));
        dropLinesOfAbsentRecords();
        QVERIFY(storage.getNewSessionId().endsWith(QStringLiteral("001")));
        dropLinesOfAbsentRecords();
    }

    void addOperation_largestCounter_removesBothRecords()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 65535, QStringLiteral("2024.03.07"));
        writeRecord(ParkomatDataStorage::BACK_FILE, 65535, QStringLiteral("2024.03.07"));
        TestClock::freeze(local(2024, 3, 7));
        ParkomatDataStorage().addOperation();
        QVERIFY(!CryptedSettingsStorage(ParkomatDataStorage::MAIN_FILE).contains(RECORD));
        QVERIFY(!CryptedSettingsStorage(ParkomatDataStorage::BACK_FILE).contains(RECORD));
    }

    void sessionId_parts_standInOrder_data()
    {
        QTest::addColumn<QString>("termId");
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<int>("operation");
        QTest::addColumn<QString>("id");
        QTest::newRow("nothing stored") << "0042" << local(2024, 3, 7) << 0 << "004224140509067001";
        QTest::newRow("17 stored") << "0042" << local(2024, 3, 7) << 17 << "004224140509067018";
        QTest::newRow("four digits") << "0042" << local(2024, 3, 7) << 1233 << "0042241405090671234";
        QTest::newRow("no wrap") << "0042" << local(2024, 3, 7) << 65535 << "00422414050906765536";
        QTest::newRow("first moment of the year") << "0042" << local(2030, 1, 1, 0, 0, 0) << 0 << "004230000000001001";
        QTest::newRow("last day of a leap year") << "0042" << local(2024, 12, 31) << 0 << "004224140509366001";
        QTest::newRow("blanks around the id") << "  0042\t" << local(2024, 3, 7) << 0 << "004224140509067001";
        QTest::newRow("three characters") << "123" << local(2024, 3, 7) << 0 << "024140509067001";
        QTest::newRow("two characters") << "12" << local(2024, 3, 7) << 0 << "0024140509067001";
        QTest::newRow("one character") << "7" << local(2024, 3, 7) << 0 << "00024140509067001";
        QTest::newRow("no id") << "" << local(2024, 3, 7) << 0 << "000024140509067001";
        QTest::newRow("blanks only") << "   " << local(2024, 3, 7) << 0 << "000024140509067001";
        QTest::newRow("long id") << "terminal-0042-%1" << local(2024, 3, 7) << 0 << "terminal-0042-%124140509067001";
    }

    void sessionId_parts_standInOrder()
    {
        QFETCH(QString, termId);
        QFETCH(QDateTime, now);
        QFETCH(int, operation);
        QFETCH(QString, id);
        ParkomatSettings().setTermId(termId);
        const QString date = now.date().toString(QStringLiteral("yyyy.MM.dd"));
        writeRecord(ParkomatDataStorage::MAIN_FILE, operation, date);
        writeRecord(ParkomatDataStorage::BACK_FILE, operation, date);
        TestClock::freeze(now);
        ParkomatDataStorage storage;
        QCOMPARE(storage.getNewSessionId(), id);
        QCOMPARE(storage.getNewSessionId(), id);
    }

    void sessionId_midnightBetweenReadings_takesEachFromItsOwn()
    {
        ParkomatSettings().setTermId(QStringLiteral("0042"));
        const QDateTime lastYear = local(2024, 12, 31, 23, 59, 59);
        const QDateTime newYear = local(2025, 1, 1, 0, 0, 0);
        // Today's date for the journal, then day of the year, year, and time.
        TestClock::play({lastYear, lastYear, newYear, newYear});
        QCOMPARE(ParkomatDataStorage().getNewSessionId(), QStringLiteral("004225000000366001"));
        QCOMPARE(TestClock::readings(), 4);
        dropLinesOfAbsentRecords();
    }

    void sessionId_zone_isLocalTime()
    {
        ParkomatSettings().setTermId(QStringLiteral("0042"));
        TestClock::freeze(QDateTime(QDate(2024, 12, 31), QTime(23, 0), Qt::UTC));
        QCOMPARE(ParkomatDataStorage().getNewSessionId(), QStringLiteral("004225020000001001"));
        MessageLog::drop();
    }
};

TEST_CHILD(printsRecord)
{
    const QByteArray record = storedText(arguments.at(0)).toUtf8();
    fwrite(record.constData(), 1, static_cast<size_t>(record.size()), stdout);
    return record.isEmpty() ? 1 : 0;
}

TEST_MAIN(ParkomatDataStorageTest)
#include "tst_parkomatdatastorage.moc"
