// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "sealedfile.h"
#include "support/testcase.h"
#include "support/testclock.h"

#include <QDateTime>
#include <QFileInfo>

#include <cstdio>
#include <memory>
#include <vector>

namespace {
qint64 modified(const QString &path)
{
    return QFileInfo(path).lastModified().toMSecsSinceEpoch();
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

/// Several writers of one sealed file, at the same moment or one after the other, and writers that are killed.
class CryptedSettingsStorageWritersTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
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
            const QByteArray said = ChildProcess::killAfterLines(*child, 1 + round);
            QVERIFY2(said.count('\n') > round, said);
            const int last = said.left(said.lastIndexOf('\n')).split('\n').last().toInt();
            const CryptedSettingsStorage storage(sealedFile());
            QCOMPARE(storage.status(), QSettings::NoError);
            QVERIFY(storage.value(KEY).toInt() >= last);
            removeLockWithoutOwner();
        }
    }
};

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

TEST_MAIN(CryptedSettingsStorageWritersTest)
#include "tst_cryptedsettingsstoragewriters.moc"
