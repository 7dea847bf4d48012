// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/testcase.h"

#include <QApplication>

/// TEST_MAIN for a test with widgets, which are rendered but shown nowhere.
#define TEST_GUI_MAIN(TestClass)                                                                                       \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        if (ChildProcess::isChild(argc, argv))                                                                         \
            return ChildProcess::runChild(argc, argv);                                                                 \
        qputenv("QT_QPA_PLATFORM", "offscreen");                                                                       \
        QApplication application(argc, argv);                                                                          \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
