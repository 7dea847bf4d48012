// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/storagekey.h"
#include "sealedfile.h"
#include "support/testcase.h"

#include <QFileInfo>

#include <unistd.h>

/// Sealed files that must not be believed, and keys that are lost or of no use.
class CryptedSettingsStorageDamageTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
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
};

TEST_MAIN(CryptedSettingsStorageDamageTest)
#include "tst_cryptedsettingsstoragedamage.moc"
