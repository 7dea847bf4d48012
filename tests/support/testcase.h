// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/childprocess.h"
#include "support/messagelog.h"

#include <QObject>
#include <QTest>

#include <memory>

/// Base of every test class: each test function starts with an empty work directory and the real clock, and fails in
/// cleanup() when it leaves a warning or worse in the log that it did not take.
class TestCase : public QObject
{
    Q_OBJECT

public:
    /// Says that this test function does not look at lines from source files whose path begins so: "src/".
    static void ignoreLogOf(const QString &path);
    /// The same, but for what is worse than a warning.
    static void ignoreWarningsOf(const QString &path);

protected:
    /// Says that this test function does not look at the log.
    static void ignoreLog();

private Q_SLOTS:
    void init();
    void cleanup();

private:
    std::unique_ptr<MessageLog> m_log;
};

/// The main function of a test file; it also runs the file's child processes.
#define TEST_MAIN(TestClass)                                                                                           \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        const QCoreApplication application(argc, argv);                                                                \
        TEST_RUN(TestClass)                                                                                            \
    }

/// The same for tests with widgets, which are drawn into memory. The file includes <QApplication>. Qt's plugin that
/// draws there never frees its screen, which the leak checker is told.
#define WIDGET_TEST_MAIN(TestClass)                                                                                    \
    extern "C" const char *__lsan_default_suppressions()                                                               \
    {                                                                                                                  \
        return "leak:libqoffscreen.so";                                                                                \
    }                                                                                                                  \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        qputenv("QT_QPA_PLATFORM", "offscreen");                                                                       \
        const QApplication application(argc, argv);                                                                    \
        TEST_RUN(TestClass)                                                                                            \
    }

#define TEST_RUN(TestClass)                                                                                            \
    if (ChildProcess::isChild())                                                                                       \
        return ChildProcess::runChild();                                                                               \
    TestClass test;                                                                                                    \
    return QTest::qExec(&test, argc, argv);
