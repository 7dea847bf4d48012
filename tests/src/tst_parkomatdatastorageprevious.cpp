// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "journalfiles.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/zone.h"

#include <QFile>

#include <atomic>
#include <thread>

#include <unistd.h>

using namespace JournalFiles;

namespace {
/// Whether the kernel has put a thread of this process to sleep, as it does with one that waits for a lock.
bool isAsleep(pid_t thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray stat = file.readAll();
    return stat.mid(stat.lastIndexOf(')') + 2, 1) == "S";
}

/// While it lives, whoever writes the first line of the log is held until a second thread has called setOperation() and
/// either come through or gone to sleep.
class RivalWriter
{
public:
    RivalWriter()
    {
        current = this;
        m_handler = qInstallMessageHandler(handle);
    }
    ~RivalWriter()
    {
        qInstallMessageHandler(m_handler);
        if (m_thread.joinable())
            m_thread.join();
        current = nullptr;
    }
    RivalWriter(const RivalWriter &) = delete;
    RivalWriter &operator=(const RivalWriter &) = delete;

    /// Whether it was through when the first line was written, the second one, and so on.
    [[nodiscard]] QList<bool> wasThrough() const { return m_wasThrough; }
    /// Waits for the second thread.
    void join() { m_thread.join(); }
    [[nodiscard]] bool isThrough() const { return m_isThrough; }

private:
    static void handle(QtMsgType level, const QMessageLogContext &context, const QString &text)
    {
        current->m_handler(level, context, text);
        current->meetRival();
    }

    void meetRival()
    {
        if (!m_thread.joinable()) {
            m_thread = std::thread([this] { write(); });
            while (!m_isThrough && (m_writer == 0 || !isAsleep(m_writer)))
                std::this_thread::yield();
        }
        m_wasThrough.append(m_isThrough);
    }

    void write()
    {
        ParkomatDataStorage storage;
        m_writer = ::gettid();
        storage.setOperation(1);
        m_isThrough = true;
    }

    static inline RivalWriter *current = nullptr;
    QtMessageHandler m_handler = nullptr;
    std::thread m_thread;
    std::atomic<pid_t> m_writer = 0;
    std::atomic<bool> m_isThrough = false;
    QList<bool> m_wasThrough;
};
} // namespace

/// Which of the journal's two files counts, and what becomes of the other one.
class ParkomatDataStoragePreviousTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

private Q_SLOTS:
    void prevOperation_noFiles_isZero()
    {
        ParkomatDataStorage storage;
        QCOMPARE(storage.getPrevOperation(), static_cast<quint16>(0));
        dropLinesOfAbsentRecords();
        QVERIFY(!QFile::exists(ParkomatDataStorage::MAIN_FILE));
        QVERIFY(!QFile::exists(ParkomatDataStorage::BACK_FILE));
    }

    void prevOperation_equalRecords_isTheirCounter_data()
    {
        QTest::addColumn<QVariant>("operation");
        QTest::addColumn<QString>("date");
        QTest::addColumn<int>("expected");
        QTest::newRow("today") << QVariant(17) << "2024.03.07" << 17;
        QTest::newRow("today, largest") << QVariant(65535) << "2024.03.07" << 65535;
        QTest::newRow("today, cut to 16 bits") << QVariant(65537) << "2024.03.07" << 1;
        QTest::newRow("today, text") << QVariant(QStringLiteral("18")) << "2024.03.07" << 18;
        QTest::newRow("today, text of 32 bits") << QVariant(QStringLiteral("4294967295")) << "2024.03.07" << 65535;
        QTest::newRow("today, negative") << QVariant(-1) << "2024.03.07" << 65535;
        QTest::newRow("today, above 32 bits") << QVariant(1e10) << "2024.03.07" << 58368;
        QTest::newRow("today, fraction") << QVariant(17.9) << "2024.03.07" << 18;
        QTest::newRow("today, the word true") << QVariant(true) << "2024.03.07" << 1;
        QTest::newRow("today, no number") << QVariant(QStringLiteral("x")) << "2024.03.07" << 0;
        QTest::newRow("yesterday") << QVariant(17) << "2024.03.06" << 0;
        QTest::newRow("tomorrow") << QVariant(17) << "2024.03.08" << 0;
        QTest::newRow("a year ago") << QVariant(17) << "2023.03.07" << 0;
        QTest::newRow("another format") << QVariant(17) << "2024-03-07" << 0;
        QTest::newRow("no date") << QVariant(17) << "" << 0;
    }

    void prevOperation_equalRecords_isTheirCounter()
    {
        QFETCH(QVariant, operation);
        QFETCH(QString, date);
        QFETCH(int, expected);
        writeRecord(ParkomatDataStorage::MAIN_FILE, operation, date);
        writeRecord(ParkomatDataStorage::BACK_FILE, operation, date);
        TestClock::freeze(local(2024, 3, 7));
        ParkomatDataStorage storage;
        QCOMPARE(static_cast<int>(storage.getPrevOperation()), expected);
        // Equal files are left alone.
        QVERIFY(!storedText(ParkomatDataStorage::MAIN_FILE).isEmpty());
        QVERIFY(!storedText(ParkomatDataStorage::BACK_FILE).isEmpty());
    }

    void prevOperation_midnight_startsAnew()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 17, QStringLiteral("2024.03.07"));
        writeRecord(ParkomatDataStorage::BACK_FILE, 17, QStringLiteral("2024.03.07"));
        TestClock::freeze(local(2024, 3, 7, 23, 59, 59));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(17));
        TestClock::freeze(local(2024, 3, 8, 0, 0, 0));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(0));
    }

    void prevOperation_backUpMissing_takesMainAndLeavesBackUpEmpty()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 17, QStringLiteral("2024.03.07"));
        TestClock::freeze(local(2024, 3, 7));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(17));
        QCOMPARE(texts(MessageLog::take()), QStringList(ABSENT_RECORD_LINE));
        QVERIFY(!storedText(ParkomatDataStorage::MAIN_FILE).isEmpty());
        QVERIFY(storedText(ParkomatDataStorage::BACK_FILE).isEmpty());
    }

    void prevOperation_bothDiffer_takesMainAndRemovesBackUp()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 17, QStringLiteral("2024.03.07"));
        writeRecord(ParkomatDataStorage::BACK_FILE, 99, QStringLiteral("2024.03.07"));
        TestClock::freeze(local(2024, 3, 7));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(17));
        QVERIFY(!storedText(ParkomatDataStorage::MAIN_FILE).isEmpty());
        QVERIFY(storedText(ParkomatDataStorage::BACK_FILE).isEmpty());
        QVERIFY(!CryptedSettingsStorage(ParkomatDataStorage::BACK_FILE).contains(RECORD));
    }

    void prevOperation_mainUnusable_takesBackUpAndRemovesMain_data()
    {
        QTest::addColumn<QString>("main");
        QTest::addColumn<QStringList>("log");
        QTest::newRow("empty object") << base64("{}") << QStringList();
        QTest::newRow("empty text") << QString() << QStringList();
        QTest::newRow("no JSON") << base64("x") << QStringList(QStringLiteral("illegal value x"));
    }

    void prevOperation_mainUnusable_takesBackUpAndRemovesMain()
    {
        QFETCH(QString, main);
        QFETCH(QStringList, log);
        writeText(ParkomatDataStorage::MAIN_FILE, main);
        writeRecord(ParkomatDataStorage::BACK_FILE, 17, QStringLiteral("2024.03.07"));
        TestClock::freeze(local(2024, 3, 7));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(17));
        QCOMPARE(texts(MessageLog::take()), log);
        QVERIFY(!CryptedSettingsStorage(ParkomatDataStorage::MAIN_FILE).contains(RECORD));
        QVERIFY(!storedText(ParkomatDataStorage::BACK_FILE).isEmpty());
    }

    void prevOperation_bothBroken_readsMainFirst()
    {
        writeText(ParkomatDataStorage::MAIN_FILE, base64("main"));
        writeText(ParkomatDataStorage::BACK_FILE, base64("back"));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(0));
        QCOMPARE(texts(MessageLog::take()),
                 QStringList({QStringLiteral("illegal value main"), QStringLiteral("illegal value back")}));
    }

    void prevOperation_setOperationMeanwhile_waitsForIt()
    {
        ParkomatDataStorage storage;
        RivalWriter rival;
        QCOMPARE(storage.getPrevOperation(), static_cast<quint16>(0));
        dropLinesOfAbsentRecords();
        QCOMPARE(rival.wasThrough(), QList<bool>({false, false}));
        rival.join();
        QVERIFY(rival.isThrough());
    }

    void prevOperation_mainOfYesterdayBackUpOfToday_isZero()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 17, QStringLiteral("2024.03.06"));
        writeRecord(ParkomatDataStorage::BACK_FILE, 3, QStringLiteral("2024.03.07"));
        TestClock::freeze(local(2024, 3, 7));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(0));
    }

    void prevOperation_damagedMainFile_takesBackUp()
    {
        writeRecord(ParkomatDataStorage::MAIN_FILE, 99, QStringLiteral("2024.03.07"));
        writeRecord(ParkomatDataStorage::BACK_FILE, 17, QStringLiteral("2024.03.07"));
        QFile file(ParkomatDataStorage::MAIN_FILE);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.seek(file.size() - 1));
        file.write("x");
        file.close();
        TestClock::freeze(local(2024, 3, 7));
        QCOMPARE(ParkomatDataStorage().getPrevOperation(), static_cast<quint16>(17));
        const QStringList log = texts(MessageLog::take());
        QCOMPARE(log.size(), 2);
        QVERIFY(log.at(0).contains(QStringLiteral("s_main.enc\" is damaged")));
        QCOMPARE(log.at(1), ABSENT_RECORD_LINE);
    }
};

TEST_MAIN(ParkomatDataStoragePreviousTest)
#include "tst_parkomatdatastorageprevious.moc"
