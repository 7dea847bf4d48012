// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formviewer.h"

#include "guiclient/defaultmessageview.h"
#include "guiclient/messagetext.h"
#include "guiclient/waitindicator.h"
#include "page.h"
#include "support/testcase.h"
#include "support/testfiles.h"
#include "views.h"

#include <QApplication>

namespace {
QString written(const QByteArray &bytes)
{
    const QString path = TestFiles::at("view.ui");
    if (!TestFiles::write(path, bytes))
        qFatal("%s was not written", qPrintable(path));
    return path;
}
} // namespace

/// Views out of files, whatever is in them.
class FormViewerFilesTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void file_good_isLoadedAndShown()
    {
        FormViewer viewer;
        viewer.addView(new Page, TWO);
        QVERIFY(viewer.loadFromFile(written(Views::messageUi()), ONE,
                                    {{QStringLiteral("windowTitle"), QStringLiteral("t")}}));
        QWidget *view = viewer.getUi(ONE);
        QVERIFY(view != nullptr);
        QCOMPARE(viewer.currentView(), ONE);
        QVERIFY(viewer.getUi(TWO)->isHidden());
        QCOMPARE(view->windowTitle(), QStringLiteral("t"));
        QVERIFY(view->findChild<QPushButton *>(QStringLiteral("okButton")) != nullptr);
    }

    void file_withThisLibrarysClasses_makesThem()
    {
        FormViewer viewer;
        const QByteArray ui = "<ui version=\"4.0\"><widget class=\"QWidget\" name=\"w\">"
                              "<widget class=\"MessageText\" name=\"a\"/><widget class=\"WaitIndicator\" name=\"b\"/>"
                              "<widget class=\"QLabel\" name=\"messageText\"/></widget></ui>";
        QVERIFY(viewer.loadFromFile(written(ui), ONE, {}));
        const QWidget *view = viewer.getUi(ONE);
        QVERIFY(view->findChild<MessageText *>(QStringLiteral("a")) != nullptr);
        QVERIFY(view->findChild<WaitIndicator *>(QStringLiteral("b")) != nullptr);
        // A label that a form has for the message holds a text of any length.
        QVERIFY(view->findChild<MessageText *>(QStringLiteral("messageText")) != nullptr);
    }

    void file_ofADialog_isAViewLikeOthers()
    {
        FormViewer viewer;
        viewer.show();
        QVERIFY(
            viewer.loadFromFile(written("<ui version=\"4.0\"><widget class=\"QDialog\" name=\"d\"/></ui>"), ONE, {}));
        QVERIFY(!viewer.getUi(ONE)->isWindow());
        QCOMPARE(viewer.getUi(ONE)->size(), viewer.size());
    }

    void file_missing_loadsNothing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("no file") << QStringLiteral("/nowhere/messageview.ui");
        QTest::newRow("a folder") << QStringLiteral("/");
        QTest::newRow("no path") << QString();
    }

    void file_missing_loadsNothing()
    {
        QFETCH(QString, path);
        FormViewer viewer;
        viewer.addView(new Page, TWO);
        QVERIFY(!viewer.loadFromFile(path, ONE, {}));
        QVERIFY(viewer.getUi(ONE) == nullptr);
        QCOMPARE(viewer.currentView(), TWO);
    }

    void file_unusable_givesTheBuiltInViewAndALine_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no XML") << QByteArray("not at all");
        QTest::newRow("cut off") << Views::messageUi().left(200);
        QTest::newRow("another document") << QByteArray("<html><body/></html>");
        QTest::newRow("no widget") << QByteArray("<ui version=\"4.0\"/>");
        QTest::newRow("unknown root class")
            << QByteArray("<ui version=\"4.0\"><widget class=\"Nothing\" name=\"n\"/></ui>");
        QTest::newRow("zeros") << QByteArray(1000, '\0');
    }

    void file_unusable_givesTheBuiltInViewAndALine()
    {
        QFETCH(QByteArray, bytes);
        FormViewer viewer;
        viewer.show();
        const QString path = written(bytes);
        QVERIFY(viewer.loadFromFile(path, ONE, {}));
        QVERIFY(qobject_cast<DefaultMessageView *>(viewer.getUi(ONE)) != nullptr);
        QCOMPARE(viewer.currentView(), ONE);
        QVERIFY(viewer.getUi(ONE)->isVisible());
        int ours = 0;
        const QList<LogLine> lines = MessageLog::take();
        for (const LogLine &line : lines) {
            if (line.category != QStringLiteral("terminal.guiclient"))
                continue;
            ++ours;
            QCOMPARE(line.level, QtWarningMsg);
            QVERIFY2(line.text.contains(path), qPrintable(line.text));
            QVERIFY2(!line.text.contains(path + QStringLiteral(": .")), qPrintable(line.text));
            QVERIFY(line.text.contains(QStringLiteral("put the form project's file back")));
        }
        QCOMPARE(ours, 1);
    }
};

WIDGET_TEST_MAIN(FormViewerFilesTest)
#include "tst_formviewerfiles.moc"
