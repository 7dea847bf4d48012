// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "sealedfile.h"
#include "support/testcase.h"

#include <QDateTime>
#include <QDir>
#include <QPointer>
#include <QThread>

#include <cstdio>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

/// Settings in a sealed file: values, what the file is like, and places that take none.
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

TEST_MAIN(CryptedSettingsStorageTest)
#include "tst_cryptedsettingsstorage.moc"
