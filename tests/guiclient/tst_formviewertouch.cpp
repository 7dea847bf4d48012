// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formviewer.h"

#include "page.h"
#include "support/testcase.h"

#include <QApplication>

namespace {
/// A touch at that place of the window, for whatever is there.
void touch(QWidget &window, const QPoint &place)
{
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, place);
}

QPoint middleOf(const QWidget *part)
{
    return part->mapTo(part->window(), part->rect().center());
}
} // namespace

/// Touch and keys reach the view that is up, and no other.
class FormViewerTouchTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hiddenView_getsNeitherTouchNorKeys()
    {
        FormViewer viewer;
        viewer.resize(800, 600);
        auto *one = new Page;
        auto *two = new Page;
        viewer.addView(one, ONE);
        viewer.addView(two, TWO);
        viewer.show();
        viewer.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&viewer));
        touch(viewer, middleOf(two->button));
        QTest::keyClick(viewer.windowHandle(), '2');
        viewer.showWidget(ONE);
        touch(viewer, middleOf(one->button));
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral(" "));
        one->line->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("1"));
        QCOMPARE(one->clicks, 2);
        QCOMPARE(two->clicks, 1);
        QCOMPARE(one->line->text(), QStringLiteral("1"));
        one->hide();
        touch(viewer, middleOf(one->button));
        if (QApplication::focusWidget() != nullptr)
            QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("3"));
        QCOMPARE(one->clicks + two->clicks, 3);
        QVERIFY(!one->line->text().contains(QLatin1Char('3')) && !two->line->text().contains(QLatin1Char('3')));
    }

    void coveredViewer_getsNeitherTouchNorKeys()
    {
        FormViewer below;
        below.resize(800, 600);
        auto *form = new Page;
        below.addView(form, ONE);
        below.show();
        below.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&below));
        QCOMPARE(QApplication::focusWidget(), form->line);

        auto *above = new FormViewer(nullptr, false, &below);
        auto *question = new Page;
        above->addView(question, TWO);
        above->show();
        QTest::keyClick(below.windowHandle(), 'a');
        touch(below, middleOf(form->button));
        for (int i = 0; i < 5; ++i) {
            QTest::keyClick(below.windowHandle(), Qt::Key_Tab);
            QVERIFY(above->isAncestorOf(QApplication::focusWidget()));
        }
        // What goes on below does not take the keys away.
        below.showWidget(ONE);
        auto *another = new Page;
        below.addView(another, QStringLiteral("three"));
        QVERIFY(above->isAncestorOf(QApplication::focusWidget()));
        QVERIFY(above->isAncestorOf(below.childAt(400, 300)));
        below.showWidget(ONE);

        above->hide();
        QCOMPARE(form->clicks, 0);
        QCOMPARE(form->line->text(), QString());
        QCOMPARE(QApplication::focusWidget(), form->line);
        QTest::keyClick(below.windowHandle(), 'b');
        QCOMPARE(form->line->text(), QStringLiteral("b"));
    }

    void doubleTap_secondHalf_doesNotReachTheNextView()
    {
        FormViewer viewer;
        viewer.resize(800, 600);
        auto *one = new Page;
        auto *two = new Page;
        viewer.addView(two, TWO);
        viewer.addView(one, ONE);
        viewer.show();
        QVERIFY(QTest::qWaitForWindowExposed(&viewer));
        const QPoint place = middleOf(one->button);
        QTest::mouseDClick(viewer.windowHandle(), Qt::LeftButton, {}, place);
        QCOMPARE(one->clicks, 2);
        connect(one->button, &QPushButton::clicked, &viewer, [&] { viewer.showWidget(TWO); });
        QTest::mouseDClick(viewer.windowHandle(), Qt::LeftButton, {}, place);
        QCOMPARE(one->clicks, 3);
        QCOMPARE(viewer.currentView(), TWO);
        QCOMPARE(two->clicks, 0);
        touch(viewer, place);
        QCOMPARE(two->clicks, 1);
        QTest::mouseDClick(viewer.windowHandle(), Qt::LeftButton, {}, place);
        QCOMPARE(two->clicks, 3);
    }

    void touch_thatNoViewWants_doesNotReachTheParent()
    {
        class Window : public QWidget
        {
        public:
            int touches = 0;

        protected:
            void mousePressEvent(QMouseEvent * /*event*/) override { ++touches; }
        };
        Window window;
        window.resize(800, 600);
        window.show();
        FormViewer viewer(nullptr, false, &window);
        viewer.addView(new QWidget, ONE);
        viewer.show();
        touch(window, {400, 300});
        QCOMPARE(window.touches, 0);
        viewer.hide();
        touch(window, {400, 300});
        QCOMPARE(window.touches, 1);
    }
};

WIDGET_TEST_MAIN(FormViewerTouchTest)
#include "tst_formviewertouch.moc"
