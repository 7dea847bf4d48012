// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inifile.h"

#include "support/testcase.h"
#include "support/testfiles.h"

#include <QFileInfo>
#include <QLockFile>

#include <cstdio>
#include <vector>

#include <fcntl.h>

using namespace TestFiles;

namespace {
const QString G = QStringLiteral("G");
const QString K = QStringLiteral("k");

QString ini()
{
    return at("t.ini");
}

QString read(const QString &path)
{
    return IniFile(path).value(G, K).value_or(QStringLiteral("(none)"));
}

/// What is wrong about a log that should have one critical line naming @a path; nothing when all is well.
QString complaintAboutLog(const QString &path)
{
    const QList<LogLine> lines = MessageLog::take();
    if (lines.size() != 1)
        return QStringLiteral("there are %1 lines").arg(lines.size());
    const LogLine &line = lines.at(0);
    const bool isGood = line.level == QtCriticalMsg && line.category == QLatin1String("terminal.core") &&
                        line.text.contains(QLatin1Char('"') + path + QLatin1Char('"')) &&
                        !line.text.contains(QLatin1String("Success"));
    return isGood ? QString() : toString(line);
}
} // namespace

class IniFileTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void missingFile_read_hasNothing()
    {
        QCOMPARE(read(ini()), QStringLiteral("(none)"));
        QVERIFY(!QFile::exists(ini()));
        QCOMPARE(read(at("none/t.ini")), QStringLiteral("(none)"));
        QVERIFY(!QFile::exists(at("none")));
    }

    void emptyFile_read_hasNothing()
    {
        QVERIFY(write(ini(), ""));
        QCOMPARE(read(ini()), QStringLiteral("(none)"));
    }

    void value_set_isReadBack()
    {
        QVERIFY(IniFile(ini()).setValue(G, K, QString::fromUtf8("руб. \"1,50\"")));
        QCOMPARE(read(ini()), QString::fromUtf8("руб. \"1,50\""));
        QVERIFY(IniFile(ini()).setValue(G, K, QString()));
        QCOMPARE(read(ini()), QString());
    }

    void file_writtenByHand_isRead()
    {
        QVERIFY(write(ini(), "\xef\xbb\xbf; комментарий\r\n[G]\r\nk = руб. 150\r\n"));
        QCOMPARE(read(ini()), QString::fromUtf8("руб. 150"));
    }

    void value_set_leavesOnlyTheFile()
    {
        QVERIFY(IniFile(ini()).setValue(G, K, K));
        QVERIFY(IniFile(ini()).setValue(G, K, G));
        QCOMPARE(QDir(WorkDirectory::path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("t.ini")});
    }

    void directory_missing_isMadeForTheOwner()
    {
        QVERIFY(IniFile(at("new/t.ini")).setValue(G, K, K));
        QCOMPARE(rights(at("new")), 0700);
        QCOMPARE(read(at("new/t.ini")), K);
    }

    void rights_ofAFile_areKept()
    {
        QVERIFY(write(ini(), "[G]\nk=old\n"));
        QCOMPARE(::chmod(QFile::encodeName(ini()).constData(), 0640), 0);
        QVERIFY(IniFile(ini()).setValue(G, K, K));
        QCOMPARE(rights(ini()), 0640);
    }

    void linkToAFile_staysALink()
    {
        QVERIFY(write(at("real.ini"), "[G]\nk=old\n"));
        QVERIFY(QFile::link(at("real.ini"), ini()));
        QVERIFY(IniFile(ini()).setValue(G, K, QStringLiteral("new")));
        QVERIFY(QFileInfo(ini()).isSymLink());
        QCOMPARE(contents(at("real.ini")), QByteArray("[G]\nk=new\n"));
    }

    void change_ofTheSameSizeAndTime_isSeen()
    {
        const IniFile file(ini());
        QVERIFY(write(ini(), "[G]\nk=a\n"));
        QCOMPARE(file.value(G, K).value_or(QString()), QStringLiteral("a"));
        struct stat before = {};
        QCOMPARE(::stat(QFile::encodeName(ini()).constData(), &before), 0);
        QVERIFY(write(ini(), "[G]\nk=b\n"));
        const timespec times[] = {before.st_atim, before.st_mtim};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(ini()).constData(), times, 0), 0);
        QCOMPARE(file.value(G, K).value_or(QString()), QStringLiteral("b"));
    }

    void change_byAnotherProcess_isSeen()
    {
        const IniFile file(ini());
        for (int i = 0; i < 5; ++i) {
            const auto child = ChildProcess::start("sets", {ini(), QString::number(i)});
            QCOMPARE(ChildProcess::finish(*child), 0);
            QCOMPARE(file.value(G, K).value_or(QString()), QString::number(i));
        }
    }

    void placeThatHoldsNoFile_isReported_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("a directory") << at("directory");
        QTest::newRow("a pipe") << at("pipe");
        QTest::newRow("below a file") << at("file/t.ini");
        QTest::newRow("a file too large") << at("huge");
        QTest::newRow("a ring of links") << at("ring");
    }

    void placeThatHoldsNoFile_isReported()
    {
        QFETCH(QString, path);
        QVERIFY(QDir().mkdir(at("directory")));
        QVERIFY(write(at("file"), "text"));
        QVERIFY(QFile::link(at("ring"), at("ring")));
        QCOMPARE(::mkfifo(QFile::encodeName(at("pipe")).constData(), 0600), 0);
        {
            QFile huge(at("huge"));
            QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(qint64(6) << 30));
        }
        QCOMPARE(read(path), QStringLiteral("(none)"));
        QCOMPARE(complaintAboutLog(path), QString());

        const QFileInfo before(path);
        QVERIFY(!IniFile(path).setValue(G, K, K));
        const QList<LogLine> lines = MessageLog::take();
        QVERIFY(!lines.isEmpty());
        QCOMPARE(lines.last().level, QtCriticalMsg);
        QVERIFY2(lines.last().text.contains(QLatin1Char('"') + path + QLatin1Char('"')), qPrintable(lines.last().text));
        QCOMPARE(QFileInfo(path).size(), before.size());
        QCOMPARE(QFileInfo(path).isDir(), before.isDir());
        QVERIFY(!QFile::exists(path + QStringLiteral(".lock")));
    }

    void placeThatTakesNoFile_isReported()
    {
        // No user, root included, may make a file there.
        const QString path = QStringLiteral("/proc/self/t.ini");
        QVERIFY(!IniFile(path).setValue(G, K, K));
        QCOMPARE(complaintAboutLog(path), QString());
    }

    void lockHeldByAnother_isGivenUpAndReported()
    {
        QVERIFY(write(ini(), "[G]\nk=old\n"));
        QLockFile lock(ini() + QStringLiteral(".lock"));
        QVERIFY(lock.lock());
        QVERIFY(!IniFile(ini()).setValue(G, K, QStringLiteral("new")));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QVERIFY2(lines.at(0).text.contains(ini() + QStringLiteral(".lock")), qPrintable(lines.at(0).text));
        QCOMPARE(read(ini()), QStringLiteral("old"));
    }

    void lockLeftBehindWithoutAName_isTakenOver()
    {
        // As a writer leaves it that was killed between making it and putting its name in it.
        QVERIFY(write(ini() + QStringLiteral(".lock"), ""));
        QVERIFY(IniFile(ini()).setValue(G, K, K));
        QCOMPARE(read(ini()), K);
    }

    void writers_inSeveralProcesses_loseNothing()
    {
        constexpr int writers = 3;
        constexpr int values = 30;
        QVERIFY(write(ini(), "; kept\n"));
        std::vector<std::unique_ptr<QProcess>> children;
        for (int i = 0; i < writers; ++i)
            children.push_back(
                ChildProcess::start("setsMany", {ini(), QStringLiteral("G%1").arg(i), QString::number(values)}));
        for (const auto &child : children)
            QCOMPARE(ChildProcess::finish(*child), 0);
        for (int i = 0; i < writers; ++i) {
            for (int j = 0; j < values; ++j) {
                const auto value = IniFile(ini()).value(QStringLiteral("G%1").arg(i), QString::number(j));
                QCOMPARE(value.value_or(QStringLiteral("(none)")), QString::number(j));
            }
        }
        QVERIFY(contents(ini()).startsWith("; kept\n"));
    }

    void reader_besideAWriter_alwaysSeesAWholeFile()
    {
        QVERIFY(IniFile(ini()).setValue(G, K, QStringLiteral("0")));
        const auto child = ChildProcess::start("setsWithoutEnd", {ini()});
        QVERIFY(child->waitForReadyRead());
        int last = 0;
        for (int i = 0; i < 20'000 && last < 200; ++i) {
            const auto value = IniFile(ini()).value(G, K);
            QVERIFY(value.has_value());
            QVERIFY2(value->toInt() >= last, qPrintable(*value));
            last = value->toInt();
        }
        child->kill();
        QVERIFY(child->waitForFinished());
        QVERIFY(last > 0);
    }

    void writer_killedAtAnyMoment_leavesAFileThatIsWhole()
    {
        QVERIFY(write(ini(), "; kept\n"));
        for (int round = 0; round < 10; ++round) {
            const auto child = ChildProcess::start("setsWithoutEnd", {ini()});
            const QByteArray said = ChildProcess::killAfterLines(*child, 1 + round);
            QVERIFY2(said.count('\n') > round, said);
            const int last = said.left(said.lastIndexOf('\n')).split('\n').last().toInt();
            QVERIFY(read(ini()).toInt() >= last);
            QVERIFY(contents(ini()).startsWith("; kept\n"));
        }
    }
};

TEST_CHILD(sets)
{
    return IniFile(arguments.at(0)).setValue(G, K, arguments.at(1)) ? 0 : 1;
}

TEST_CHILD(setsMany)
{
    for (int i = 0; i < arguments.at(2).toInt(); ++i) {
        if (!IniFile(arguments.at(0)).setValue(arguments.at(1), QString::number(i), QString::number(i)))
            return 1;
    }
    return 0;
}

TEST_CHILD(setsWithoutEnd)
{
    IniFile file(arguments.at(0));
    // Until it is killed; the bound is for the case that nobody does.
    for (int i = file.value(G, K).value_or(QString()).toInt(); i < 1'000'000; ++i) {
        if (!file.setValue(G, K, QString::number(i)))
            return 1;
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
    return 0;
}

TEST_MAIN(IniFileTest)
#include "tst_inifile.moc"
