// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/storagekey.h"
#include "support/testcase.h"
#include "support/testfiles.h"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {
// What link() fails with; 0 lets it work.
int linkError = 0;

/// Makes link() fail until it dies.
class LinksFail
{
public:
    explicit LinksFail(int error) { linkError = error; }
    ~LinksFail() { linkError = 0; }
    LinksFail(const LinksFail &) = delete;
    LinksFail &operator=(const LinksFail &) = delete;
};

/// The text of the one critical line; else what the log is like.
QString onlyCritical()
{
    const QList<LogLine> lines = MessageLog::take();
    if (lines.size() != 1 || lines.at(0).level != QtCriticalMsg)
        return QStringLiteral("there are %1 lines, or one that is not critical").arg(lines.size());
    return lines.at(0).text;
}
} // namespace

// Stands in for the C library's: a file system without hard links cannot be had everywhere.
extern "C" int link(const char *from, const char *to) noexcept
{
    if (linkError == 0)
        return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
    errno = linkError;
    return -1;
}

class StorageKeyRefusalsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void linkToNothing_isCalledOne()
    {
        const QString target = WorkDirectory::path() + QStringLiteral("/nothing");
        QVERIFY(QFile::link(target, StorageKey::path()));
        QVERIFY(!StorageKey::obtain().has_value());
        const QString line = onlyCritical();
        QVERIFY2(line.contains(QLatin1Char('"') + StorageKey::path() +
                               QStringLiteral("\" is a symbolic link to a file that does not exist. ")),
                 qPrintable(line));
        QVERIFY2(line.contains(QStringLiteral("remove the link")), qPrintable(line));
        QCOMPARE(TestFiles::entries(WorkDirectory::path()), QStringList{QStringLiteral("storage.key")});
    }

    void linkToAKey_isFollowed()
    {
        QVERIFY(StorageKey::obtain().has_value());
        const QString target = WorkDirectory::path() + QStringLiteral("/elsewhere");
        QVERIFY(QFile::rename(StorageKey::path(), target));
        QVERIFY(QFile::link(target, StorageKey::path()));
        QVERIFY(StorageKey::obtain().has_value());
    }

    void fileSystemWithoutLinks_isReportedAsSuch_data()
    {
        QTest::addColumn<int>("error");
        QTest::newRow("as FAT says it") << EPERM;
        QTest::newRow("as others say it") << EOPNOTSUPP;
    }

    void fileSystemWithoutLinks_isReportedAsSuch()
    {
        QFETCH(int, error);
        {
            const LinksFail links(error);
            QVERIFY(!StorageKey::obtain().has_value());
        }
        const QString line = onlyCritical();
        QVERIFY2(line.contains(QStringLiteral("no hard links")), qPrintable(line));
        QVERIFY2(line.contains(QString::fromLocal8Bit(std::strerror(error))), qPrintable(line));
        QVERIFY2(line.contains(QStringLiteral("Move the work directory to a file system that has them")),
                 qPrintable(line));
        QCOMPARE(TestFiles::entries(WorkDirectory::path()), QStringList());
    }

    void linkThatFailsOtherwise_isReportedWithItsReason()
    {
        {
            const LinksFail links(ENOSPC);
            QVERIFY(!StorageKey::obtain().has_value());
        }
        const QString line = onlyCritical();
        QVERIFY2(line.contains(QStringLiteral("cannot be made: No space left on device. ")), qPrintable(line));
        QCOMPARE(TestFiles::entries(WorkDirectory::path()), QStringList());
    }

    void diskThatTakesAPartOfTheKey_isReportedAsAnInputOutputError()
    {
        const auto child = ChildProcess::start("obtainsWithRoomForAPart");
        QCOMPARE(ChildProcess::finish(*child), 1);
        const QByteArray said = child->readAll();
        QVERIFY2(said.contains("cannot be made: Input/output error. "), said);
        QCOMPARE(TestFiles::entries(WorkDirectory::path()), QStringList());
    }
};

TEST_CHILD(obtainsWithRoomForAPart)
{
    constexpr rlim_t room = StorageKey::SIZE / 2;
    const rlimit limit = {room, room};
    if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || ::setrlimit(RLIMIT_FSIZE, &limit) != 0)
        return 2;
    return StorageKey::obtain() ? 0 : 1;
}

TEST_MAIN(StorageKeyRefusalsTest)
#include "tst_storagekeyrefusals.moc"
