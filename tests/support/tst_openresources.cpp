// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/openresources.h"
#include "support/testcase.h"

#include <QFile>
#include <QSemaphore>

#include <thread>

#include <unistd.h>

/// What tells leaks, on leaks that are made here.
class OpenResourcesTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void added_descriptor_isNamedUntilItIsClosed()
    {
        const OpenResources before;
        QFile file(QStringLiteral("/dev/zero"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString name = QStringLiteral("descriptor %1 zero").arg(file.handle());
        QVERIFY2(before.added().contains(name), qPrintable(before.added().join(QLatin1Char('\n'))));
        file.close();
        QCOMPARE(before.left(), QStringList());
    }

    void added_otherFileWithAnOldNumber_isNamed()
    {
        QFile file(QStringLiteral("/dev/zero"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const OpenResources before;
        const int number = file.handle();
        file.close();
        file.setFileName(QStringLiteral("/dev/full"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.handle(), number);
        QCOMPARE(before.added(), QStringList(QStringLiteral("descriptor %1 full").arg(number)));
    }

    void added_thread_isNamedUntilItEnds()
    {
        const OpenResources before;
        QSemaphore started;
        QSemaphore end;
        pid_t id = 0;
        std::thread thread([&] {
            id = ::gettid();
            started.release();
            end.acquire();
        });
        started.acquire();
        const QStringList added = before.added();
        const OpenResources during;
        end.release();
        thread.join();
        QCOMPARE(added, QStringList(QStringLiteral("thread %1").arg(id)));
        QCOMPARE(before.left(), QStringList());
        // One that was there before and has ended since is no leak either.
        QCOMPARE(during.left(), QStringList());
    }
};

TEST_MAIN(OpenResourcesTest)
#include "tst_openresources.moc"
