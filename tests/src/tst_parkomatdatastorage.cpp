// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/cryptedsettingsstorage.h"
#include "parkomatdatastorage.h"
#include "parkomatsettings.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/workdirectory.h"
#include "support/zone.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <atomic>
#include <thread>

#include <unistd.h>

namespace {
const QString RECORD = QStringLiteral("PARKOMAT/data");

QDateTime local(int year, int month, int day, int hour = 14, int minute = 5, int second = 9)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::LocalTime);
}

void writeText(const QString &path, const QString &text)
{
    CryptedSettingsStorage storage(path);
    storage.setValue(RECORD, text);
}

QString base64(const QByteArray &json)
{
    return QString::fromLatin1(json.toBase64());
}

void writeRecord(const QString &path, const QVariant &operation, const QString &date)
{
    const QVariantMap map = {{QStringLiteral("operation"), operation}, {QStringLiteral("date"), date}};
    writeText(path, base64(QJsonDocument::fromVariant(map).toJson(QJsonDocument::Compact)));
}

QString storedText(const QString &path)
{
    return CryptedSettingsStorage(path).value(RECORD).toString();
}

QStringList texts(const QList<LogLine> &lines)
{
    QStringList list;
    for (const LogLine &line : lines)
        list.append(line.text);
    return list;
}

const QString ABSENT_RECORD_LINE = QStringLiteral("illegal value ");

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

/// The operation journal and the session identifiers that it issues.
class ParkomatDataStorageTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    /// The two lines that reading two absent records leaves.
    static void dropLinesOfAbsentRecords()
    {
        QCOMPARE(texts(MessageLog::take()), QStringList({ABSENT_RECORD_LINE, ABSENT_RECORD_LINE}));
    }

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
