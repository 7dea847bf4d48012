// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/storagekey.h"

#include "extension/sealedbox.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <vector>

#include <sys/file.h>
#include <sys/stat.h>

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

int rights(const QString &path)
{
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? static_cast<int>(info.st_mode & 07777) : -1;
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

QStringList entries(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QByteArray bytesOf(const StorageKey &key)
{
    return QByteArray(reinterpret_cast<const char *>(key.data()), int(StorageKey::SIZE));
}

/// Holds children back until it dies, so that they all go at once and run into each other.
class Gate
{
public:
    explicit Gate(const QString &path) : m_file(path)
    {
        QVERIFY(m_file.open(QIODevice::ReadWrite) && ::flock(m_file.handle(), LOCK_EX) == 0);
    }

    /// Called in the child; it says first that it has come.
    static void pass(const QString &path)
    {
        QFile file(path);
        const bool isOpen = file.open(QIODevice::ReadWrite);
        std::puts("ready");
        std::fflush(stdout);
        if (!isOpen || ::flock(file.handle(), LOCK_SH) != 0)
            qFatal("the gate %s cannot be passed", qPrintable(path));
    }

private:
    QFile m_file;
};
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
            std::vector<std::unique_ptr<QProcess>> children;
            {
                const Gate gate(below("gate"));
                for (int i = 0; i < 8; ++i)
                    children.push_back(ChildProcess::start("seals", {below("gate")}));
                for (const auto &child : children)
                    QVERIFY(child->waitForReadyRead() && child->readAll() == "ready\n");
            }
            QList<QByteArray> boxes;
            for (const auto &child : children) {
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
    Gate::pass(arguments.at(0));
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
