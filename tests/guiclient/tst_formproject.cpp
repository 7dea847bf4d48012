// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formproject.h"

#include "guiclient/formviewer.h"
#include "guiclient/pluginviewloadhelper.h"
#include "guiclient/widgetnames.h"
#include "support/testcase.h"

#include <QApplication>

/// Where views come from: the project's folder, the files' names, the plugin's helper.
class FormProjectTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void projectDir_isTheFolderGiven()
    {
        QCOMPARE(FormProject(QStringLiteral("/a/b")).projectDir(), QStringLiteral("/a/b"));
    }

    void messageViewFileName_byOrientation()
    {
        QCOMPARE(WidgetNames(false, nullptr).messageViewFileName(), QStringLiteral("messageview.ui"));
        QCOMPARE(WidgetNames(true, nullptr).messageViewFileName(), QStringLiteral("messageview-portrait.ui"));
        const auto *owned = new WidgetNames(false, this);
        QCOMPARE(owned->parent(), this);
        delete owned;
    }

    void helper_tellsWhatItWasGivenAndLoadsNothing()
    {
        FormViewer viewer;
        const PluginViewLoadHelper helper(2023, QStringLiteral("plugin"), QStringLiteral("/a/b"), &viewer);
        QCOMPARE(helper.pluginId(), 2023);
        QCOMPARE(helper.pluginStringId(), QStringLiteral("plugin"));
        QCOMPARE(helper.projectDir(), QStringLiteral("/a/b"));
        QCOMPARE(helper.viewer(), &viewer);
        QVERIFY(helper.parent() == nullptr);
        QCOMPARE(viewer.currentView(), QString());
    }

    void helper_outlivesTheViewer()
    {
        auto viewer = std::make_unique<FormViewer>();
        const PluginViewLoadHelper helper(1, {}, {}, viewer.get());
        viewer.reset();
        QVERIFY(helper.viewer() == nullptr);
        QVERIFY(PluginViewLoadHelper(1, {}, {}, nullptr).viewer() == nullptr);
    }
};

WIDGET_TEST_MAIN(FormProjectTest)
#include "tst_formproject.moc"
