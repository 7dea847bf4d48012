// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/golden.h"
#include "support/livingobjects.h"
#include "support/testcase.h"
#include "support/testclock.h"
#include "support/workdirectory.h"
#include "support/zone.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>

#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

/// The tests' own instruments.
class SupportTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void clock_frozen_standsStill()
    {
        const QDateTime moment(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);
        TestClock::freeze(moment);
        QCOMPARE(QDateTime::currentDateTimeUtc(), moment);
        QCOMPARE(QDateTime::currentDateTimeUtc(), moment);
        QCOMPARE(TestClock::readings(), 2);
    }

    void clock_playing_givesEachReadingTheNextMoment()
    {
        const QDateTime moment(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);
        TestClock::play({moment, moment.addDays(1)});
        QCOMPARE(QDateTime::currentDateTimeUtc(), moment);
        QCOMPARE(QDateTime::currentDateTimeUtc(), moment.addDays(1));
        QCOMPARE(QDateTime::currentDateTimeUtc(), moment.addDays(1));
    }

    void clock_skipping_endsTimersAtOnce()
    {
        int fired = 0;
        QElapsedTimer elapsed;
        elapsed.start();
        QTimer::singleShot(3'600'000, Qt::PreciseTimer, this, [&fired] { ++fired; });
        const QDateTime before = QDateTime::currentDateTimeUtc();
        TestClock::skip(3'000'000);
        QCoreApplication::processEvents();
        QCOMPARE(fired, 0);
        TestClock::skip(600'000);
        QCoreApplication::processEvents();
        QCOMPARE(fired, 1);
        QVERIFY(elapsed.elapsed() >= 3'600'000);
        QVERIFY(before.secsTo(QDateTime::currentDateTimeUtc()) < 3'000);
    }

    void clock_skipping_leavesOtherThreadsAlone()
    {
        qint64 before = 0;
        qint64 after = 0;
        QElapsedTimer here;
        here.start();
        const auto read = [&here](qint64 *ms) {
            const std::unique_ptr<QThread> thread(QThread::create([&here, ms] { *ms = here.elapsed(); }));
            thread->start();
            thread->wait();
        };
        read(&before);
        TestClock::skip(3'600'000);
        read(&after);
        QVERIFY(here.elapsed() >= 3'600'000);
        QVERIFY(after - before < 3'000'000);
    }

    void clock_withStillTimers_standsStillInThisThreadAlone()
    {
        QTimer timer;
        timer.start(3'600'000);
        QElapsedTimer here;
        {
            const StillTimers still;
            here.start();
            const int left = timer.remainingTime();
            const std::unique_ptr<QThread> thread(QThread::create([&here] {
                const qint64 before = here.elapsed();
                while (here.elapsed() == before)
                    QThread::yieldCurrentThread();
            }));
            thread->start();
            thread->wait();
            QCOMPARE(here.nsecsElapsed(), 0);
            QCOMPARE(timer.remainingTime(), left);
            TestClock::skip(1000);
            QCOMPARE(here.elapsed(), 1000);
        }
        QVERIFY(here.elapsed() > 1000);
    }

    void clock_frozen_standsStillToTheProcessesEnd()
    {
        const auto child = ChildProcess::start("tellsTheTimeAtItsEnd");
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(child->readAll(), QByteArray("1709820309\n"));
    }

    void clock_frozenAndReleased_givesOtherThreadsNoThirdTime()
    {
        const QDateTime moment(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC);
        std::atomic<bool> isOver = false;
        qint64 earliest = moment.toMSecsSinceEpoch();
        std::thread reader([&isOver, &earliest] {
            while (!isOver)
                earliest = std::min(earliest, QDateTime::currentMSecsSinceEpoch());
        });
        for (int i = 0; i < 200'000; ++i) {
            TestClock::freeze(moment);
            TestClock::release();
        }
        isOver = true;
        reader.join();
        QCOMPARE(earliest, moment.toMSecsSinceEpoch());
    }

    void zone_set_isTheProcessZone()
    {
        const QDateTime noon(QDate(2024, 3, 7), QTime(12, 0), Qt::UTC);
        const Zone moscow("Europe/Moscow");
        QCOMPARE(noon.toLocalTime().time(), QTime(15, 0));
        const Zone kolkata("Asia/Kolkata");
        QCOMPARE(noon.toLocalTime().time(), QTime(17, 30));
    }

    void log_warning_isKeptWithItsContext()
    {
        qWarning("a line");
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("default"));
        QCOMPARE(lines.at(0).file, QStringLiteral("tests/support/tst_support.cpp"));
        QVERIFY(lines.at(0).function.contains(QStringLiteral("log_warning_isKeptWithItsContext")));
        QCOMPARE(lines.at(0).text, QStringLiteral("a line"));
    }

    void log_warningNotTaken_failsTheTest()
    {
        const auto child = ChildProcess::start("leavesAWarning");
        QCOMPARE(ChildProcess::finish(*child), 1);
        QVERIFY(child->readAll().contains("unexpected in the log"));
    }

    void log_withAFatalLine_isPrinted()
    {
        const auto child = ChildProcess::start("givesUp");
        QCOMPARE(ChildProcess::finish(*child), -1);
        QVERIFY(child->readAll().contains("this cannot go on"));
    }

    void workDirectory_ofAChild_isTheParents()
    {
        const auto child = ChildProcess::start("makesAFile");
        QCOMPARE(ChildProcess::finish(*child), 0);
        QVERIFY(QFile::exists(WorkDirectory::path() + QStringLiteral("/made-by-child")));
    }

    void objects_madeAndDestroyed_areCounted()
    {
        const LivingObjects objects;
        auto parent = std::make_unique<QObject>();
        new QTimer(parent.get());
        QCOMPARE(objects.classes(), QStringList({QStringLiteral("QObject"), QStringLiteral("QTimer")}));
        QCOMPARE(objects.count(), 2);
        parent.reset();
        QCOMPARE(objects.count(), 0);
    }

    void golden_differentText_isReportedAsADiff()
    {
        QFile file(WorkDirectory::path() + QStringLiteral("/text"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("one\n");
        file.close();
        QCOMPARE(Golden::difference(file.fileName(), "one\n"), QString());
        QVERIFY(Golden::difference(file.fileName(), "two\n").contains(QStringLiteral("-one\n+two\n")));
        QVERIFY(Golden::difference(file.fileName() + QStringLiteral(".missing"), "one\n")
                    .contains(QStringLiteral("no golden file")));
    }
};

/// Not a test by itself: the child above runs it and must see it fail.
class CarelessTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void warns() { qWarning("nobody takes this"); }
};

TEST_CHILD(leavesAWarning)
{
    CarelessTest test;
    return QTest::qExec(&test, QStringList{QStringLiteral("careless")});
}

TEST_CHILD(givesUp)
{
    const MessageLog log;
    // No core file is left of it.
    const rlimit none = {};
    ::setrlimit(RLIMIT_CORE, &none);
    qFatal("this cannot go on");
}

TEST_CHILD(makesAFile)
{
    QFile file(WorkDirectory::path() + QStringLiteral("/made-by-child"));
    return file.open(QIODevice::WriteOnly) ? 0 : 1;
}

/// As a stream's way out it is called behind all destructors, where threads of libraries may still be running.
static ssize_t tellTheTime(void * /*stream*/, const char * /*bytes*/, size_t size)
{
    timeval now = {};
    gettimeofday(&now, nullptr);
    dprintf(STDOUT_FILENO, "%lld\n", static_cast<long long>(now.tv_sec));
    return static_cast<ssize_t>(size);
}

TEST_CHILD(tellsTheTimeAtItsEnd)
{
    TestClock::freeze(QDateTime(QDate(2024, 3, 7), QTime(14, 5, 9), Qt::UTC));
    FILE *stream = fopencookie(nullptr, "w", {nullptr, tellTheTime, nullptr, nullptr});
    return std::fputs("unsent", stream) < 0 ? 1 : 0;
}

TEST_MAIN(SupportTest)
#include "tst_support.moc"
