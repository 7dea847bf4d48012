// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatpluginhandler.h"
#include "support/cashservice.h"
#include "support/handlerbench.h"

#include <QApplication>

/// One payment after another through one handler: what start makes, what stop releases, and the question over the form.
class HandlerLifecycleTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void start_session_givesTheForm()
    {
        ParkomatPluginHandler handler;
        HandlerBench bench(&handler);
        bench.start();
        QVERIFY(bench.form() != nullptr);
        QCOMPARE(bench.topView(), QString());
    }
};

WIDGET_TEST_MAIN(HandlerLifecycleTest)
#include "tst_handlerlifecycle.moc"
