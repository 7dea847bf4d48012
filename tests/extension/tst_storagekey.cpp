// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/storagekey.h"

#include "extension/sealedbox.h"
#include "race.h"
#include "support/testcase.h"
#include "support/testfiles.h"

#include <cstdio>

using namespace TestFiles;

namespace {
const QString ROOT = WorkDirectory::path();
const char VARIABLE[] = "TERMINAL_WORK_DIR";

/// Lets the work directory be another one until it dies.
class OtherWorkDirectory
{
public:
    explicit OtherWorkDirectory(const QString &path) : m_before(qgetenv(VARIABLE))
    {
        qputenv(VARIABLE, QFile::encodeName(path));
    }
    ~OtherWorkDirectory() { qputenv(VARIABLE, m_before); }
    OtherWorkDirectory(const OtherWorkDirectory &) = delete;
    OtherWorkDirectory &operator=(const OtherWorkDirectory &) = delete;

private:
    QByteArray m_before;
};

QString below(const char *name)
{
    return ROOT + QLatin1Char('/') + QLatin1String(name);
}

QByteArray bytesOf(const StorageKey &key)
{
    return QByteArray(reinterpret_cast<const char *>(key.data()), int(StorageKey::SIZE));
}
} // namespace

class StorageKeyTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void key_ofANewTerminal_isMadeForTheOwnerAlone_data()
    {
        QTest::addColumn<int>("mask");
        QTest::newRow("umask 0") << 0;
        QTest::newRow("umask 022") << 022;
    }

    void key_ofANewTerminal_isMadeForTheOwnerAlone()
    {
        QFETCH(int, mask);
        const OtherWorkDirectory other(below("parent/work"));
        const mode_t before = ::umask(static_cast<mode_t>(mask));
        const auto key = StorageKey::obtain();
        ::umask(before);
        QVERIFY(key.has_value());
        QCOMPARE(StorageKey::path(), below("parent/work/storage.key"));
        QCOMPARE(rights(StorageKey::path()), 0600);
        QCOMPARE(rights(below("parent/work")), 0700);
        QCOMPARE(rights(below("parent")), 0700);
        QCOMPARE(contents(StorageKey::path()), bytesOf(*key));
        QCOMPARE(entries(below("parent/work")), QStringList{QStringLiteral("storage.key")});
    }

    void key_obtainedAgain_isTheSame()
    {
        const auto first = StorageKey::obtain();
        const auto second = StorageKey::obtain();
        QVERIFY(first && second);
        QCOMPARE(bytesOf(*first), bytesOf(*second));
    }

    void key_madeAnew_isAnother()
    {
        const auto first = StorageKey::obtain();
        QVERIFY(QFile::remove(StorageKey::path()));
        const auto second = StorageKey::obtain();
        QVERIFY(first && second);
        QVERIFY(bytesOf(*first) != bytesOf(*second));
        QVERIFY(bytesOf(*first) != QByteArray(int(StorageKey::SIZE), '\0'));
    }

    void key_copied_isTheSame()
    {
        const auto key = StorageKey::obtain();
        QVERIFY(key.has_value());
        const StorageKey copy = *key;
        QCOMPARE(bytesOf(copy), bytesOf(*key));
    }

    void key_openToOthers_isClosedWithAWarning_data()
    {
        QTest::addColumn<int>("mode");
        for (const int mode : {0644, 0640, 0604, 0660, 0666, 0601, 0610, 0777})
            QTest::addRow("%o", mode) << mode;
    }

    void key_openToOthers_isClosedWithAWarning()
    {
        QFETCH(int, mode);
        const auto key = StorageKey::obtain();
        QCOMPARE(::chmod(QFile::encodeName(StorageKey::path()).constData(), static_cast<mode_t>(mode)), 0);
        const auto again = StorageKey::obtain();
        const QList<LogLine> lines = MessageLog::take();
        QVERIFY(key && again);
        QCOMPARE(bytesOf(*again), bytesOf(*key));
        QCOMPARE(rights(StorageKey::path()), 0600);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QVERIFY(lines.at(0).text.contains(StorageKey::path()));
    }

    void key_readOnlyForTheOwner_isLeftSo()
    {
        QVERIFY(StorageKey::obtain().has_value());
        QCOMPARE(::chmod(QFile::encodeName(StorageKey::path()).constData(), 0400), 0);
        QVERIFY(StorageKey::obtain().has_value());
        QCOMPARE(rights(StorageKey::path()), 0400);
    }

    void key_ofAnotherSize_isRefusedAndKept_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 1, 16, 31, 33, 64, 100'000})
            QTest::addRow("%d", size) << size;
    }

    void key_ofAnotherSize_isRefusedAndKept()
    {
        QFETCH(int, size);
        const QByteArray bytes(size, 'k');
        QVERIFY(write(StorageKey::path(), bytes));
        QCOMPARE(::chmod(QFile::encodeName(StorageKey::path()).constData(), 0600), 0);
        QVERIFY(!StorageKey::obtain().has_value());
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(contents(StorageKey::path()), bytes);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.extension"));
        QVERIFY(lines.at(0).text.contains(StorageKey::path()));
        QVERIFY(lines.at(0).text.contains(QStringLiteral("32 bytes")));
        QVERIFY(lines.at(0).text.contains(QStringLiteral("backup")));
    }

    void directoryInPlaceOfTheKey_isRefusedForWhatItIs()
    {
        QVERIFY(QDir().mkdir(StorageKey::path()));
        QVERIFY(!StorageKey::obtain().has_value());
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QVERIFY2(lines.at(0).text.contains(QStringLiteral("Is a directory")), qPrintable(lines.at(0).text));
        QVERIFY(rights(StorageKey::path()) != -1);
    }

    void pipeInPlaceOfTheKey_isRefusedAtOnce()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(StorageKey::path()).constData(), 0600), 0);
        const auto child = ChildProcess::start("obtains");
        QCOMPARE(ChildProcess::finish(*child), 1);
        QVERIFY(child->readAll().contains("32 bytes"));
    }

    void workDirectoryThatCannotBe_isRefusedForThat_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("below a file") << below("file/work");
        QTest::newRow("far below a file") << below("file/far/work");
        QTest::newRow("a file") << below("file");
        QTest::newRow("nowhere to make it") << QStringLiteral("/proc/no-such-thing/work");
    }

    void workDirectoryThatCannotBe_isRefusedForThat()
    {
        QFETCH(QString, path);
        QVERIFY(write(below("file"), "text"));
        const OtherWorkDirectory other(path);
        QVERIFY(!StorageKey::obtain().has_value());
        const QList<LogLine> lines = MessageLog::take();
        QVERIFY(!lines.isEmpty());
        bool isNamed = false;
        for (const LogLine &line : lines) {
            QCOMPARE(line.level, QtCriticalMsg);
            QVERIFY2(!line.text.contains(QStringLiteral("Success")), qPrintable(line.text));
            isNamed = isNamed || line.text.contains(path);
        }
        QVERIFY(isNamed);
        QCOMPARE(contents(below("file")), QByteArray("text"));
    }

    void workDirectoryThatTakesNoFile_isRefusedForThat()
    {
        // No user, root included, may make a file there.
        const OtherWorkDirectory other(QStringLiteral("/proc/self"));
        QVERIFY(!StorageKey::obtain().has_value());
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QVERIFY2(lines.at(0).text.contains(QStringLiteral("cannot be made")), qPrintable(lines.at(0).text));
        QVERIFY(lines.at(0).text.contains(QStringLiteral("work directory")));
    }

    void key_madeByManyAtOnce_isOne()
    {
        for (int round = 0; round < 10; ++round) {
            const OtherWorkDirectory other(below("work") + QString::number(round));
            QList<QByteArray> boxes;
            for (const auto &child : Race::start(8, "seals", below("gate"))) {
                QCOMPARE(ChildProcess::finish(*child), 0);
                boxes.append(QByteArray::fromBase64(child->readAll()));
            }
            const auto key = StorageKey::obtain();
            QVERIFY(key.has_value());
            for (const QByteArray &box : boxes)
                QCOMPARE(SealedBox::open(box, *key).value_or("(shut)"), QByteArray("content"));
            QCOMPARE(entries(below("work") + QString::number(round)), QStringList{QStringLiteral("storage.key")});
        }
    }
};

TEST_CHILD(seals)
{
    Race::passGate(arguments.at(0));
    const auto key = StorageKey::obtain();
    if (!key)
        return 1;
    std::puts(SealedBox::seal("content", *key).toBase64().constData());
    return 0;
}

TEST_CHILD(obtains)
{
    return StorageKey::obtain() ? 0 : 1;
}

TEST_MAIN(StorageKeyTest)
#include "tst_storagekey.moc"
