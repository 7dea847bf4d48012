// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/cryptedsettingsstorage.h"

#include "extension/storagekey.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/workdirectory.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QThread>

#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const QString KEY = QStringLiteral("GROUP/key");

QString at(const char *name)
{
    return WorkDirectory::path() + QLatin1Char('/') + QLatin1String(name);
}

QString sealedFile()
{
    return at("s.enc");
}

QString aside(const char *number = "")
{
    return sealedFile() + QStringLiteral(".damaged") + QLatin1String(number);
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QSettings::Status store(const QString &path, const QString &key, const QVariant &value)
{
    CryptedSettingsStorage storage(path);
    storage.setValue(key, value);
    storage.sync();
    return storage.status();
}

QString stored(const QString &path, const QString &key)
{
    return CryptedSettingsStorage(path).value(key, QStringLiteral("(none)")).toString();
}

/// A sealed file with one value in it; returns its bytes.
QByteArray sealed(const QString &value)
{
    store(sealedFile(), KEY, value);
    return contents(sealedFile());
}

/// The text of the one line that may be there; else what the log is like, without any text from it.
QString onlyCritical()
{
    const QList<LogLine> lines = MessageLog::take();
    if (lines.size() != 1)
        return QStringLiteral("the log has %1 lines").arg(lines.size());
    const LogLine &line = lines.at(0);
    if (line.level != QtCriticalMsg || line.category != QLatin1String("terminal.extension"))
        return QStringLiteral("the log has a line of level %1 and category %2").arg(line.level).arg(line.category);
    return line.text;
}

/// Opens the file as one that must not be believed. Returns what was wrong about it, nothing when all is well.
QString complaintAboutDamagedRead(const QString &path)
{
    const CryptedSettingsStorage storage(path);
    const QString log = onlyCritical();
    if (storage.status() != QSettings::FormatError)
        return QStringLiteral("the status is %1").arg(storage.status());
    if (!storage.allKeys().isEmpty() || storage.contains(KEY))
        return QStringLiteral("it has keys");
    if (storage.value(KEY, QStringLiteral("default")).toString() != QLatin1String("default"))
        return QStringLiteral("it has a value");
    return log.contains(QLatin1Char('"') + path + QLatin1Char('"')) ? QString() : log;
}

qint64 modified(const QString &path)
{
    return QFileInfo(path).lastModified().toMSecsSinceEpoch();
}

/// Another file of the same size and age in the place of @a path.
bool swapUnnoticeably(const QString &path, const QByteArray &bytes)
{
    struct stat before = {};
    if (::stat(QFile::encodeName(path).constData(), &before) != 0 || before.st_size != bytes.size())
        return false;
    const timespec times[] = {before.st_atim, before.st_mtim};
    return write(path, bytes) && ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0;
}
/// A writer killed between making the lock file and putting its name in it holds up the next one for half a minute,
/// which a test need not wait for. Locks with a name in them are left to the next writer.
void removeLockWithoutOwner()
{
    const QFileInfo lock(sealedFile() + QStringLiteral(".lock"));
    if (lock.exists() && lock.size() == 0)
        QFile::remove(lock.filePath());
}
} // namespace

class CryptedSettingsStorageTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void value_stored_isReadByAnotherObject_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("text") << QVariant(QString::fromUtf8("Оплата \"150,00\"; \\ = руб."));
        QTest::newRow("empty text") << QVariant(QString(QLatin1String("")));
        QTest::newRow("several lines") << QVariant(QStringLiteral("a\r\nb\tc"));
        QTest::newRow("text with @") << QVariant(QStringLiteral("@Variant(x)"));
        QTest::newRow("Base64") << QVariant(QStringLiteral("eyJkYXRlIjoiMjAyNC4wMy4wNyJ9"));
        QTest::newRow("number") << QVariant(-65535);
        QTest::newRow("large number") << QVariant(qulonglong(18446744073709551615ULL));
        QTest::newRow("real number") << QVariant(0.1);
        QTest::newRow("true") << QVariant(true);
        QTest::newRow("bytes") << QVariant(QByteArray("bytes"));
        QTest::newRow("date") << QVariant(QDate(2024, 3, 7));
        QTest::newRow("moment") << QVariant(QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC));
        QTest::newRow("100 KB") << QVariant(QString(100'000, QLatin1Char('x')));
    }

    void value_stored_isReadByAnotherObject()
    {
        QFETCH(QVariant, value);
        QCOMPARE(store(sealedFile(), KEY, value), QSettings::NoError);
        const CryptedSettingsStorage storage(sealedFile());
        QCOMPARE(storage.status(), QSettings::NoError);
        QVERIFY(storage.contains(KEY));
        QCOMPARE(storage.value(KEY).toString(), value.toString());
    }

    void value_stored_isReadByAnotherProcess()
    {
        store(sealedFile(), KEY, QStringLiteral("150.00"));
        const auto child = ChildProcess::start("prints", {sealedFile(), KEY});
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(child->readAll().trimmed(), QByteArray("150.00"));
    }

    void storage_usedAsSettings_behavesLikeThem()
    {
        {
            CryptedSettingsStorage storage(sealedFile());
            storage.beginGroup(QStringLiteral("A"));
            storage.setValue(QStringLiteral("one"), 1);
            storage.setValue(QStringLiteral("B/two"), 2);
            storage.endGroup();
            storage.setValue(QStringLiteral("a/one"), 3);
        }
        CryptedSettingsStorage storage(sealedFile());
        const QStringList keys = {QStringLiteral("A/B/two"), QStringLiteral("A/one"), QStringLiteral("a/one")};
        QCOMPARE(storage.allKeys(), keys);
        storage.remove(QStringLiteral("A"));
        storage.sync();
        QCOMPARE(CryptedSettingsStorage(sealedFile()).allKeys(), QStringList{QStringLiteral("a/one")});
        storage.clear();
        storage.sync();
        QCOMPARE(CryptedSettingsStorage(sealedFile()).allKeys(), QStringList());
        QCOMPARE(CryptedSettingsStorage(sealedFile()).status(), QSettings::NoError);
    }

    void storage_withTheObjectAsParent_diesWithIt()
    {
        QObject parent;
        const QPointer<CryptedSettingsStorage> storage = new CryptedSettingsStorage(sealedFile(), &parent);
        QCOMPARE(storage->parent(), &parent);
    }

    void missingFile_opened_isEmptyAndMakesNothing()
    {
        {
            const CryptedSettingsStorage storage(at("none/s.enc"));
            QCOMPARE(storage.status(), QSettings::NoError);
            QVERIFY(storage.allKeys().isEmpty());
        }
        QVERIFY(QDir(WorkDirectory::path()).isEmpty());
    }

    void file_written_hasNothingInPlainText()
    {
        store(sealedFile(), QStringLiteral("PLAINGROUP/plainkey"), QStringLiteral("plainvalue"));
        const QByteArray bytes = contents(sealedFile());
        for (const char *text : {"PLAINGROUP", "plainkey", "plainvalue"}) {
            QVERIFY(!bytes.contains(text));
            const QString utf16 = QString::fromLatin1(text);
            QVERIFY(!bytes.contains(QByteArray(reinterpret_cast<const char *>(utf16.utf16()), utf16.size() * 2)));
            QVERIFY(!bytes.contains(QByteArray(text).toBase64(QByteArray::OmitTrailingEquals)));
        }
    }

    void file_made_isForItsOwnerAlone()
    {
        const mode_t before = ::umask(0);
        store(sealedFile(), KEY, 1);
        ::umask(before);
        struct stat info = {};
        QCOMPARE(::stat(QFile::encodeName(sealedFile()).constData(), &info), 0);
        QCOMPARE(int(info.st_mode & 07777), 0600);
    }

    void file_written_leavesNothingElseBehind()
    {
        sealed(QStringLiteral("value"));
        const QStringList names = {QStringLiteral("s.enc"), QStringLiteral("storage.key")};
        QCOMPARE(QDir(WorkDirectory::path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), names);
    }

    void key_ofTheFile_liesInTheWorkDirectory()
    {
        const QString path = at("elsewhere/s.enc");
        store(path, KEY, 1);
        QVERIFY(QFile::exists(at("storage.key")));
        QCOMPARE(QDir(at("elsewhere")).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("s.enc")});
    }

    void anyBitDamaged_readsAsEmptyEachTime()
    {
        const QByteArray whole = sealed(QStringLiteral("v"));
        for (int bit = 0; bit < whole.size() * 8; ++bit) {
            QByteArray damaged = whole;
            damaged[bit / 8] = static_cast<char>(damaged.at(bit / 8) ^ (1 << bit % 8));
            QVERIFY(swapUnnoticeably(sealedFile(), damaged));
            for (const char *which : {"first", "second"}) {
                const QString complaint = complaintAboutDamagedRead(sealedFile());
                QVERIFY2(complaint.isEmpty(),
                         qPrintable(QStringLiteral("bit %1, %2: %3").arg(bit).arg(QLatin1String(which), complaint)));
            }
            QCOMPARE(contents(sealedFile()), damaged);
        }
        QVERIFY(swapUnnoticeably(sealedFile(), whole));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("v"));
    }

    void fileCutAnywhere_readsAsEmptyEachTime()
    {
        const QByteArray whole = sealed(QStringLiteral("v"));
        for (int size = 0; size < whole.size(); ++size) {
            QVERIFY(write(sealedFile(), whole.left(size)));
            for (const char *which : {"first", "second"}) {
                const QString complaint = complaintAboutDamagedRead(sealedFile());
                QVERIFY2(complaint.isEmpty(),
                         qPrintable(QStringLiteral("size %1, %2: %3").arg(size).arg(QLatin1String(which), complaint)));
            }
            QCOMPARE(contents(sealedFile()), whole.left(size));
        }
    }

    void fileThatIsNotSealed_readsAsEmpty_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("ini") << QByteArray("[GROUP]\nkey=plain\n");
        QTest::newRow("zero bytes") << QByteArray(1000, '\0');
        QTest::newRow("the beginning alone") << QByteArray("TSEALED1");
        QTest::newRow("the beginning and anything") << "TSEALED1" + QByteArray(1000, 'x');
    }

    void fileThatIsNotSealed_readsAsEmpty()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(write(sealedFile(), bytes));
        QCOMPARE(complaintAboutDamagedRead(sealedFile()), QString());
        QCOMPARE(contents(sealedFile()), bytes);
    }

    void hugeFile_readsAsEmptyAndIsKept()
    {
        constexpr qint64 size = qint64(6) << 30;
        {
            QFile file(sealedFile());
            QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(size));
        }
        QCOMPARE(complaintAboutDamagedRead(sealedFile()), QString());
        QCOMPARE(QFileInfo(sealedFile()).size(), size);
        ignoreLog();
        QCOMPARE(store(sealedFile(), KEY, QStringLiteral("new")), QSettings::FormatError);
        QCOMPARE(QFileInfo(aside()).size(), size);
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("new"));
    }

    void damagedFile_writtenTo_isKeptAsideFirst_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("text") << QByteArray("damaged");
        QTest::newRow("empty") << QByteArray();
    }

    void damagedFile_writtenTo_isKeptAsideFirst()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(write(sealedFile(), bytes));
        {
            CryptedSettingsStorage storage(sealedFile());
            QVERIFY(onlyCritical().contains(aside()));
            storage.setValue(KEY, QStringLiteral("new"));
            storage.sync();
        }
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QVERIFY(lines.at(0).text.contains(sealedFile()) && lines.at(0).text.contains(aside()));
        QCOMPARE(contents(aside()), bytes);
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("new"));
        QCOMPARE(CryptedSettingsStorage(sealedFile()).status(), QSettings::NoError);
    }

    void damagedFiles_oneAfterTheOther_areAllKept()
    {
        ignoreLog();
        const char *const numbers[] = {"", "-2", "-3", "-4"};
        for (const char *number : numbers) {
            QVERIFY(write(sealedFile(), QByteArray("damaged") + number));
            store(sealedFile(), KEY, QStringLiteral("new"));
        }
        for (const char *number : numbers)
            QCOMPARE(contents(aside(number)), QByteArray("damaged") + number);
        QVERIFY(!QFile::exists(aside("-5")));
    }

    void damagedFile_keptAlready_isNotKeptTwice()
    {
        QVERIFY(write(sealedFile(), "damaged"));
        // As a write leaves it that failed after it had kept the file.
        QCOMPARE(::link(QFile::encodeName(sealedFile()).constData(), QFile::encodeName(aside()).constData()), 0);
        store(sealedFile(), KEY, QStringLiteral("new"));
        QVERIFY(onlyCritical().contains(sealedFile()));
        QCOMPARE(contents(aside()), QByteArray("damaged"));
        QVERIFY(!QFile::exists(aside("-2")));
    }

    void damagedFile_thatCannotBeKept_isNotOverwritten()
    {
        // With ".damaged" behind it the name is longer than a file name can be; QSettings' own additions are shorter.
        const QString path = at("") + QString(248, QLatin1Char('n'));
        QVERIFY(write(path, "damaged"));
        {
            CryptedSettingsStorage storage(path);
            QVERIFY(onlyCritical().contains(path));
            storage.setValue(KEY, QStringLiteral("new"));
            storage.sync();
            QCOMPARE(storage.status(), QSettings::FormatError);
            const QString line = onlyCritical();
            QVERIFY2(line.contains(QStringLiteral("Nothing is written to \"") + path), qPrintable(line));
        }
        QCOMPARE(contents(path), QByteArray("damaged"));
        QVERIFY(!QFile::exists(path + QStringLiteral(".damaged")));
    }

    void file_ofAForeignKey_readsAsEmptyUntilTheKeyIsBack()
    {
        const QByteArray bytes = sealed(QStringLiteral("old"));
        const QByteArray key = contents(StorageKey::path());
        QVERIFY(write(StorageKey::path(), QByteArray(32, 'f')));
        QCOMPARE(complaintAboutDamagedRead(sealedFile()), QString());
        QCOMPARE(contents(sealedFile()), bytes);
        QVERIFY(write(StorageKey::path(), key));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("old"));
    }

    void file_ofALostKey_canBeTakenBackWithIt()
    {
        ignoreLog();
        sealed(QStringLiteral("old"));
        const QByteArray key = contents(StorageKey::path());
        QVERIFY(QFile::remove(StorageKey::path()));
        store(sealedFile(), KEY, QStringLiteral("new"));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("new"));
        QVERIFY(write(StorageKey::path(), key));
        QCOMPARE(stored(aside(), KEY), QStringLiteral("old"));
    }

    void unusableKey_leavesTheFileAlone()
    {
        const QByteArray bytes = sealed(QStringLiteral("old"));
        QVERIFY(write(StorageKey::path(), "short"));
        {
            CryptedSettingsStorage storage(sealedFile());
            QVERIFY(onlyCritical().contains(StorageKey::path()));
            QCOMPARE(storage.status(), QSettings::FormatError);
            storage.setValue(KEY, QStringLiteral("new"));
            storage.sync();
            QVERIFY(onlyCritical().contains(StorageKey::path()));
        }
        QCOMPARE(contents(sealedFile()), bytes);
        QVERIFY(!QFile::exists(aside()));
    }

    void change_thatCouldNotBeWritten_doesNotComeBack()
    {
        sealed(QStringLiteral("old"));
        QVERIFY(QFile::rename(StorageKey::path(), at("key")));
        QVERIFY(write(StorageKey::path(), "short"));
        QVERIFY(store(sealedFile(), KEY, QStringLiteral("new")) != QSettings::NoError);
        QVERIFY(!MessageLog::take().isEmpty());
        QVERIFY(QFile::remove(sealedFile()));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("(none)"));
        QVERIFY(!QFile::exists(sealedFile()));
    }

    void unusableKey_makesNoFile()
    {
        QVERIFY(write(StorageKey::path(), "short"));
        {
            CryptedSettingsStorage storage(sealedFile());
            storage.setValue(KEY, QStringLiteral("new"));
            storage.sync();
            QCOMPARE(storage.status(), QSettings::AccessError);
            QVERIFY(onlyCritical().contains(StorageKey::path()));
        }
        QVERIFY(onlyCritical().contains(sealedFile()));
        QVERIFY(!QFile::exists(sealedFile()));
    }

    void change_ofTheSameSizeAndTime_isSeenByANewObject()
    {
        const QByteArray other = sealed(QStringLiteral("b"));
        sealed(QStringLiteral("a"));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("a"));
        QVERIFY(swapUnnoticeably(sealedFile(), other));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("b"));
    }

    void versions_writtenAtTheSameMoment_haveTimesOfTheirOwn()
    {
        TestClock::freeze(QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC));
        qint64 before = 0;
        for (int i = 0; i < 20; ++i) {
            sealed(QString::number(i % 10));
            const qint64 now = modified(sealedFile());
            QVERIFY2(now > before, qPrintable(QString::number(i)));
            before = now;
        }
    }

    void change_byAnotherProcessAtTheSameMoment_isNotUndone()
    {
        const QDateTime moment(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);
        TestClock::freeze(moment);
        store(sealedFile(), QStringLiteral("theirs"), QStringLiteral("a"));
        CryptedSettingsStorage storage(sealedFile());
        const QString moments = QString::number(moment.toMSecsSinceEpoch());
        const auto child =
            ChildProcess::start("storesAt", {moments, sealedFile(), QStringLiteral("theirs"), QStringLiteral("b")});
        QCOMPARE(ChildProcess::finish(*child), 0);
        storage.setValue(QStringLiteral("ours"), 1);
        storage.sync();
        QCOMPARE(stored(sealedFile(), QStringLiteral("theirs")), QStringLiteral("b"));
        QCOMPARE(stored(sealedFile(), QStringLiteral("ours")), QStringLiteral("1"));
    }

    void clock_setBack_changesAreSeenAllTheSame()
    {
        const QDateTime moment(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);
        TestClock::freeze(moment);
        sealed(QStringLiteral("a"));
        const CryptedSettingsStorage open(sealedFile());
        TestClock::freeze(moment.addYears(-1));
        sealed(QStringLiteral("b"));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("b"));
    }

    void writers_inSeveralProcesses_loseNothing()
    {
        constexpr int writers = 3;
        constexpr int values = 30;
        std::vector<std::unique_ptr<QProcess>> children;
        for (int i = 0; i < writers; ++i)
            children.push_back(
                ChildProcess::start("storesMany", {sealedFile(), QString::number(i), QString::number(values)}));
        for (const auto &child : children)
            QCOMPARE(ChildProcess::finish(*child), 0);
        const CryptedSettingsStorage storage(sealedFile());
        QCOMPARE(storage.allKeys().size(), writers * values);
        for (int i = 0; i < writers; ++i) {
            for (int j = 0; j < values; ++j)
                QCOMPARE(storage.value(QStringLiteral("%1/%2").arg(i).arg(j)).toInt(), j);
        }
    }

    void writer_killedAtAnyMoment_leavesAFileThatOpens()
    {
        for (int round = 0; round < 15; ++round) {
            const auto child = ChildProcess::start("storesWithoutEnd", {sealedFile()});
            QByteArray said;
            while (said.count('\n') < 1 + round) {
                QVERIFY2(child->waitForReadyRead(), said);
                said += child->readAll();
            }
            child->kill();
            QVERIFY(child->waitForFinished());
            said += child->readAll();
            const int last = said.left(said.lastIndexOf('\n')).split('\n').last().toInt();
            const CryptedSettingsStorage storage(sealedFile());
            QCOMPARE(storage.status(), QSettings::NoError);
            QVERIFY(storage.value(KEY).toInt() >= last);
            removeLockWithoutOwner();
        }
    }

    void placeThatTakesNoFile_isReported_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("below a file") << at("file/s.enc");
        QTest::newRow("a directory in its place") << at("directory");
        QTest::newRow("nowhere to make it") << QStringLiteral("/proc/no-such-thing/s.enc");
    }

    void placeThatTakesNoFile_isReported()
    {
        QFETCH(QString, path);
        QVERIFY(write(at("file"), "text"));
        QVERIFY(QDir().mkdir(at("directory")));
        QCOMPARE(store(path, KEY, 1), QSettings::AccessError);
        const QString line = onlyCritical();
        QVERIFY2(line.contains(QLatin1Char('"') + path + QLatin1Char('"')), qPrintable(line));
        QCOMPARE(contents(at("file")), QByteArray("text"));
    }

    void thingThatIsNoFile_isReportedAndNotOpened_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("a pipe") << int(S_IFIFO);
        QTest::newRow("a socket") << int(S_IFSOCK);
        QTest::newRow("a device") << 0;
    }

    void thingThatIsNoFile_isReportedAndNotOpened()
    {
        QFETCH(int, type);
        const QByteArray path = QFile::encodeName(sealedFile());
        // To make a device is for root alone, a link to one is not.
        QCOMPARE(type == 0 ? ::symlink("/dev/zero", path.constData())
                           : ::mknod(path.constData(), static_cast<mode_t>(type | S_IRUSR | S_IWUSR), 0),
                 0);
        const QStringList before = QDir(WorkDirectory::path()).entryList(QDir::AllEntries | QDir::System);
        // In another process, which would else be stopped for good.
        const auto child = ChildProcess::start("usesAndPrints", {sealedFile(), KEY});
        QCOMPARE(ChildProcess::finish(*child), int(QSettings::AccessError));
        const QByteArray said = child->readAll();
        QCOMPARE(said.count('\n'), 2);
        QVERIFY2(said.contains("\"" + path + "\" there is a pipe, a socket or a device"), said);
        QVERIFY2(said.endsWith("\n0 keys\n"), said);
        QCOMPARE(QDir(WorkDirectory::path()).entryList(QDir::AllEntries | QDir::System), before);
    }

    void pipeTakenAway_makesRoomForAFile()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(sealedFile()).constData(), 0600), 0);
        const auto child = ChildProcess::start("storesTwice", {sealedFile(), KEY});
        QCOMPARE(ChildProcess::finish(*child), int(QSettings::NoError));
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("second"));
    }

    void object_withoutChanges_readsNothingWhenItDies()
    {
        sealed(QStringLiteral("value"));
        {
            const CryptedSettingsStorage storage(sealedFile());
            QVERIFY(write(sealedFile(), "damaged"));
        }
        QCOMPARE(MessageLog::take().size(), 0);
    }

    void change_neverSynced_isWrittenWithoutAnApplicationToo()
    {
        const auto child = ChildProcess::start("storesWhenTheApplicationIsGone", {sealedFile(), KEY});
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(child->readAll(), QByteArray());
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("late"));
    }

    void change_neverSynced_isWrittenByAnotherThreadToo()
    {
        auto storage = std::make_unique<CryptedSettingsStorage>(sealedFile());
        storage->setValue(KEY, QStringLiteral("value"));
        const std::unique_ptr<QThread> thread(QThread::create([&storage] { storage.reset(); }));
        thread->start();
        QVERIFY(thread->wait());
        QCOMPARE(stored(sealedFile(), KEY), QStringLiteral("value"));
    }

    void change_neverSynced_thatCannotBeWritten_isReported()
    {
        QVERIFY(write(at("file"), "text"));
        {
            CryptedSettingsStorage storage(at("file/s.enc"));
            storage.setValue(KEY, 1);
        }
        QVERIFY(onlyCritical().contains(at("file/s.enc")));
    }
};

TEST_CHILD(prints)
{
    std::puts(stored(arguments.at(0), arguments.at(1)).toUtf8().constData());
    return 0;
}

TEST_CHILD(usesAndPrints)
{
    CryptedSettingsStorage storage(arguments.at(0));
    const int count = storage.allKeys().size();
    storage.setValue(arguments.at(1), 1);
    storage.sync();
    std::printf("%d keys\n", count);
    return storage.status();
}

TEST_CHILD(storesTwice)
{
    store(arguments.at(0), arguments.at(1), QStringLiteral("first"));
    return QFile::remove(arguments.at(0)) ? store(arguments.at(0), arguments.at(1), QStringLiteral("second")) : -1;
}

TEST_CHILD(storesWhenTheApplicationIsGone)
{
    static const auto storage = std::make_unique<CryptedSettingsStorage>(arguments.at(0));
    storage->setValue(arguments.at(1), QStringLiteral("late"));
    return 0;
}

TEST_CHILD(storesAt)
{
    TestClock::freeze(QDateTime::fromMSecsSinceEpoch(arguments.at(0).toLongLong(), Qt::UTC));
    return store(arguments.at(1), arguments.at(2), arguments.at(3)) == QSettings::NoError ? 0 : 1;
}

TEST_CHILD(storesMany)
{
    for (int i = 0; i < arguments.at(2).toInt(); ++i) {
        if (store(arguments.at(0), QStringLiteral("%1/%2").arg(arguments.at(1)).arg(i), i) != QSettings::NoError)
            return 1;
    }
    return 0;
}

TEST_CHILD(storesWithoutEnd)
{
    CryptedSettingsStorage storage(arguments.at(0));
    // Until it is killed; the bound is for the case that nobody does.
    for (int i = storage.value(KEY).toInt(); i < 1'000'000; ++i) {
        storage.setValue(KEY, i);
        storage.sync();
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
    return 0;
}

TEST_MAIN(CryptedSettingsStorageTest)
#include "tst_cryptedsettingsstorage.moc"
