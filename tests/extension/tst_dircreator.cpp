// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/dircreator.h"

#include "race.h"
#include "support/testcase.h"
#include "support/testfiles.h"

using TestFiles::at;

namespace {
/// Access rights, or -1 when @a path is no directory.
int rights(const QString &path)
{
    struct stat info = {};
    const bool isDirectory = ::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode);
    return isDirectory ? static_cast<int>(info.st_mode & 07777) : -1;
}

void makeFile(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

/// Puts another umask in place until it dies.
class Umask
{
public:
    explicit Umask(mode_t mask) : m_before(::umask(mask)) {}
    ~Umask() { ::umask(m_before); }
    Umask(const Umask &) = delete;
    Umask &operator=(const Umask &) = delete;

private:
    mode_t m_before;
};
} // namespace

class DirCreatorTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void directory_made_hasExactRights_data()
    {
        QTest::addColumn<int>("mask");
        QTest::addColumn<int>("access");
        for (const int mask : {0, 022, 077, 0177, 0777}) {
            QTest::addRow("all, umask %o", mask) << mask << int(DirCreator::DEFAULT_ALL);
            QTest::addRow("owner, umask %o", mask) << mask << int(DirCreator::OWNER_ONLY);
        }
    }

    void directory_made_hasExactRights()
    {
        QFETCH(int, mask);
        QFETCH(int, access);
        const Umask umask(static_cast<mode_t>(mask));
        QVERIFY(DirCreator::checkAndCreate(at("new"), static_cast<DirCreator::Access>(access)));
        QCOMPARE(rights(at("new")), access);
    }

    void parents_missing_areMadeForTheOwnerAlone()
    {
        const Umask umask(0);
        QVERIFY(DirCreator::checkAndCreate(at("a/b/c"), DirCreator::DEFAULT_ALL));
        QCOMPARE(rights(at("a")), 0700);
        QCOMPARE(rights(at("a/b")), 0700);
        QCOMPARE(rights(at("a/b/c")), 0777);
    }

    void directory_existing_isLeftAsItIs()
    {
        const QByteArray path = QFile::encodeName(at("old"));
        QCOMPARE(::mkdir(path.constData(), 0750), 0);
        QCOMPARE(::chmod(path.constData(), 0750), 0);
        QVERIFY(DirCreator::checkAndCreate(at("old"), DirCreator::DEFAULT_ALL));
        QCOMPARE(rights(at("old")), 0750);
    }

    void linkToADirectory_isADirectory()
    {
        QVERIFY(QDir().mkdir(at("real")));
        QVERIFY(QFile::link(at("real"), at("link")));
        QVERIFY(DirCreator::checkAndCreate(at("link"), DirCreator::OWNER_ONLY));
        QVERIFY(DirCreator::checkAndCreate(at("link/below"), DirCreator::OWNER_ONLY));
        QCOMPARE(rights(at("real/below")), 0700);
    }

    void path_writtenOddly_isMade_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *path : {"x/", "x//", "./x", "y/../x", "//x", "x/.", "каталог", "with blank", "x\\y"})
            QTest::addRow("%s", path) << QString::fromUtf8(path);
    }

    void path_writtenOddly_isMade()
    {
        QFETCH(QString, path);
        const QString full = WorkDirectory::path() + QLatin1Char('/') + path;
        QVERIFY(DirCreator::checkAndCreate(full, DirCreator::DEFAULT_ALL));
        QCOMPARE(rights(QDir::cleanPath(full)), 0777);
    }

    void relativePath_isMadeFromTheCurrentDirectory()
    {
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(WorkDirectory::path()));
        const bool isMade = DirCreator::checkAndCreate(QStringLiteral("a/b"), DirCreator::DEFAULT_ALL);
        QVERIFY(QDir::setCurrent(before));
        QVERIFY(isMade);
        QCOMPARE(rights(at("a/b")), 0777);
    }

    void path_thatCannotBe_isRefusedWithAReason_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("a file in its place") << at("file");
        QTest::newRow("below a file") << at("file/below");
        QTest::newRow("far below a file") << at("file/far/below");
        QTest::newRow("a link to nothing") << at("dangling");
        QTest::newRow("a name too long") << at("") + QString(300, QLatin1Char('n'));
        QTest::newRow("in /proc") << QStringLiteral("/proc/no-such-thing/below");
        QTest::newRow("empty") << QString();
    }

    void path_thatCannotBe_isRefusedWithAReason()
    {
        QFETCH(QString, path);
        makeFile(at("file"));
        QVERIFY(QFile::link(at("nothing"), at("dangling")));
        QVERIFY(!DirCreator::checkAndCreate(path, DirCreator::DEFAULT_ALL));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.extension"));
        QVERIFY(lines.at(0).text.contains(QLatin1Char('"') + path + QLatin1Char('"')));
        QVERIFY(!lines.at(0).text.contains(QStringLiteral("Success")));
    }

    void directory_madeByManyAtOnce_isThereForAll()
    {
        for (int round = 0; round < 40; ++round) {
            const QString path = at("shared") + QString::number(round) + QStringLiteral("/a/b/c/d/e/f/g/h/i/j/k/l");
            for (const auto &child : Race::start(6, "makesTheDirectory", at("gate"), {path}))
                QCOMPARE(ChildProcess::finish(*child), 0);
            QCOMPARE(rights(path), 0777);
        }
    }
};

TEST_CHILD(makesTheDirectory)
{
    Race::passGate(arguments.at(0));
    return DirCreator::checkAndCreate(arguments.at(1), DirCreator::DEFAULT_ALL) ? 0 : 1;
}

TEST_MAIN(DirCreatorTest)
#include "tst_dircreator.moc"
