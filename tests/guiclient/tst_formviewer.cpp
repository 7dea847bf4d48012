// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formviewer.h"

#include "core/sessionmanager.h"
#include "guiclient/guistyle.h"
#include "guiclient/waitindicator.h"
#include "page.h"
#include "support/testcase.h"
#include "support/waiting.h"

#include <QApplication>

#include <functional>

Q_DECLARE_METATYPE(std::function<void(FormViewer &, QWidget *, QWidget *)>)

/// Views come and go; one at most is up.
class FormViewerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void viewer_new_isHiddenAndHasNoViews()
    {
        QWidget parent;
        parent.show();
        SessionManager session;
        auto *viewer = new FormViewer(&session, false, &parent);
        QVERIFY(viewer->isHidden());
        QVERIFY(viewer->getUi(ONE) == nullptr);
        QCOMPARE(viewer->currentView(), QString());
        QCOMPARE(viewer->session(), &session);
    }

    void session_deleted_isNull()
    {
        auto session = std::make_unique<SessionManager>();
        const FormViewer viewer(session.get());
        session.reset();
        QVERIFY(viewer.session() == nullptr);
        QVERIFY(FormViewer().session() == nullptr);
    }

    void showWidget_ofSeveral_showsThatOneAlone_data()
    {
        QTest::addColumn<bool>("isOnScreen");
        QTest::newRow("on the screen") << true;
        QTest::newRow("before it is shown") << false;
    }

    void showWidget_ofSeveral_showsThatOneAlone()
    {
        QFETCH(bool, isOnScreen);
        FormViewer viewer;
        if (isOnScreen)
            viewer.show();
        auto *one = new Page;
        auto *two = new Page;
        viewer.addView(one, ONE);
        QCOMPARE(viewer.currentView(), ONE);
        viewer.addView(two, TWO);
        QCOMPARE(viewer.currentView(), TWO);
        viewer.showWidget(ONE);
        viewer.show();
        QVERIFY(one->isVisible());
        QVERIFY(!two->isVisible());
        QCOMPARE(viewer.currentView(), ONE);
        viewer.showWidget(ONE);
        QCOMPARE(viewer.getUi(ONE), one);
        QCOMPARE(viewer.getUi(TWO), two);
    }

    void showWidget_unknown_changesNothingAndIsLogged()
    {
        FormViewer viewer;
        viewer.addView(new Page, ONE);
        viewer.showWidget(TWO);
        QCOMPARE(viewer.currentView(), ONE);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.guiclient"));
        QVERIFY(lines.at(0).text.contains(TWO));
    }

    void view_shownOrHiddenByOthers_isFollowed()
    {
        FormViewer viewer;
        auto *one = new Page;
        auto *two = new Page;
        viewer.addView(one, ONE);
        viewer.addView(two, TWO);
        viewer.show();
        one->show();
        QCOMPARE(viewer.currentView(), ONE);
        QVERIFY(!two->isVisible());
        one->hide();
        QCOMPARE(viewer.currentView(), QString());
    }

    void getUi_ofAnotherViewer_isNull()
    {
        FormViewer below;
        FormViewer above(nullptr, false, &below);
        below.addView(new Page, ONE);
        above.addView(new Page, TWO);
        QVERIFY(below.getUi(TWO) == nullptr);
        QVERIFY(above.getUi(ONE) == nullptr);
        QVERIFY(below.getUi(QString()) == nullptr);
    }

    void addView_sameName_takesTheEarlierOnesPlace()
    {
        FormViewer viewer;
        QPointer<Page> earlier = new Page;
        viewer.addView(earlier, ONE);
        auto *later = new Page;
        viewer.addView(later, ONE);
        QCOMPARE(viewer.getUi(ONE), later);
        QVERIFY(earlier->isHidden());
        deleteReleased();
        QVERIFY(earlier.isNull());
        QCOMPARE(viewer.currentView(), ONE);
        viewer.addView(later, ONE);
        QCOMPARE(viewer.getUi(ONE), later);
    }

    void view_goes_data()
    {
        using Act = std::function<void(FormViewer &, QWidget *, QWidget *)>;
        QTest::addColumn<Act>("act");
        QTest::newRow("deleted") << Act([](auto &, QWidget *view, auto *) { delete view; });
        QTest::newRow("removed") << Act([](FormViewer &viewer, QWidget *view, auto *) { viewer.removeView(view); });
        QTest::newRow("given away") << Act([](auto &, QWidget *view, QWidget *other) { view->setParent(other); });
    }

    void view_goes()
    {
        using Act = std::function<void(FormViewer &, QWidget *, QWidget *)>;
        QFETCH(Act, act);
        for (const bool isUp : {true, false}) {
            QWidget other;
            FormViewer viewer;
            viewer.show();
            const QPointer<QWidget> view = new Page;
            viewer.addView(view, ONE);
            if (!isUp)
                viewer.addView(new Page, TWO);
            act(viewer, view, &other);
            QVERIFY(viewer.getUi(ONE) == nullptr);
            QCOMPARE(viewer.currentView(), isUp ? QString() : TWO);
            // What is no view of the viewer any more does not move it.
            if (view)
                view->show();
            QCOMPARE(viewer.currentView(), isUp ? QString() : TWO);
        }
    }

    void removeView_ofAnother_doesNothing()
    {
        FormViewer viewer;
        viewer.addView(new Page, ONE);
        QWidget other;
        viewer.removeView(&other);
        viewer.removeView(nullptr);
        QCOMPARE(viewer.currentView(), ONE);
    }

    void nothingUp_showsTheWaitingPage()
    {
        FormViewer viewer;
        viewer.resize(1024, 768);
        viewer.show();
        auto *indicator = viewer.findChild<WaitIndicator *>();
        QVERIFY(indicator->isVisible());
        viewer.addView(new Page, ONE);
        QVERIFY(!indicator->isVisible());
        viewer.getUi(ONE)->hide();
        QVERIFY(indicator->isVisible());
        QCOMPARE(viewer.childAt(viewer.rect().center())->window(), &viewer);
        viewer.resize(600, 500);
        QCOMPARE(indicator->parentWidget()->size(), QSize(600, 500));
        viewer.showWidget(ONE);
        QVERIFY(!indicator->isVisible());
    }

    // Place

    void viewer_withAParent_coversIt()
    {
        QWidget parent;
        parent.resize(800, 600);
        parent.show();
        auto *viewer = new FormViewer(nullptr, false, &parent);
        auto *view = new Page;
        viewer->addView(view, ONE);
        auto *later = new QWidget(&parent);
        later->resize(parent.size());
        later->show();
        viewer->show();
        QCOMPARE(viewer->geometry(), parent.rect());
        QCOMPARE(view->size(), parent.size());
        QVERIFY(viewer->isAncestorOf(parent.childAt(400, 300)));
        parent.resize(1024, 768);
        QCOMPARE(viewer->geometry(), QRect(0, 0, 1024, 768));
        QCOMPARE(view->size(), QSize(1024, 768));
        viewer->hide();
        parent.resize(700, 500);
        viewer->show();
        QCOMPARE(viewer->size(), QSize(700, 500));
    }

    void viewer_shownAgain_isRaised()
    {
        QWidget parent;
        parent.resize(800, 600);
        parent.show();
        FormViewer first(nullptr, false, &parent);
        FormViewer second(nullptr, false, &parent);
        for (FormViewer *viewer : {&first, &second, &first}) {
            viewer->hide();
            viewer->show();
            QWidget *top = parent.childAt(400, 300);
            QVERIFY(top == viewer || viewer->isAncestorOf(top));
        }
    }

    void viewer_givenToAnotherParent_followsThatOne()
    {
        QWidget first;
        QWidget second;
        first.resize(400, 300);
        second.resize(800, 600);
        FormViewer viewer(nullptr, false, &first);
        viewer.setParent(&second);
        viewer.show();
        second.show();
        QCOMPARE(viewer.size(), QSize(800, 600));
        first.show();
        first.resize(300, 200);
        QCOMPARE(viewer.size(), QSize(800, 600));
        second.resize(900, 700);
        QCOMPARE(viewer.size(), QSize(900, 700));
        viewer.setParent(nullptr);
    }

    void viewer_placedByALayout_isLeftToIt()
    {
        QWidget window;
        QWidget parent(&window);
        auto *outer = new QVBoxLayout(&parent);
        auto *inner = new QHBoxLayout;
        outer->setContentsMargins(0, 100, 0, 0);
        inner->setContentsMargins(50, 0, 0, 0);
        outer->addLayout(inner);
        auto *viewer = new FormViewer;
        inner->addWidget(viewer);
        viewer->show();
        parent.resize(800, 600);
        window.show();
        QCOMPARE(viewer->geometry(), QRect(50, 100, 750, 500));
        parent.resize(1000, 700);
        QCOMPARE(viewer->geometry(), QRect(50, 100, 950, 600));
    }

    void viewer_fullScreen_takesTheScreen()
    {
        FormViewer full(nullptr, true);
        full.show();
        QVERIFY(full.isFullScreen());
        QWidget parent;
        FormViewer covering(nullptr, true, &parent);
        covering.show();
        QVERIFY(!covering.isFullScreen());
        FormViewer window;
        window.show();
        QVERIFY(!window.isFullScreen());
    }

    void view_hiddenViewer_isLaidOutWhenItCanBeSeen()
    {
        FormViewer viewer;
        viewer.resize(800, 600);
        auto *one = new Page;
        auto *two = new Page;
        for (int round = 0; round < 2; ++round) {
            viewer.addView(one, ONE);
            viewer.addView(two, TWO);
            // Its parts come and go unseen.
            one->button->hide();
            viewer.showWidget(ONE);
            one->button->show();
            QVERIFY(!one->layout()->isEnabled());
            viewer.show();
            QCOMPARE(one->size(), viewer.size());
            QCOMPARE(one->button->width(), one->line->width());
            QVERIFY(one->button->y() > one->line->geometry().bottom());
            two->show();
            QCOMPARE(two->size(), viewer.size());
            QVERIFY(two->button->y() > two->line->geometry().bottom());
            viewer.hide();
            viewer.resize(viewer.width() + 100, viewer.height());
            viewer.show();
            QVERIFY(two->line->geometry().right() > viewer.width() - 50);
            viewer.hide();
        }
        viewer.removeView(one);
        QVERIFY(one->layout()->isEnabled());
    }

    // Look

    void style_isTheLibrarys_unlessTheApplicationHasOne()
    {
        QCOMPARE(FormViewer().styleSheet(), GuiStyle::sheet());
        FormViewer below;
        QCOMPARE(FormViewer(nullptr, false, &below).styleSheet(), QString());
        qApp->setStyleSheet(QStringLiteral("QLabel { color: red; }"));
        const QString sheet = FormViewer().styleSheet();
        qApp->setStyleSheet({});
        QCOMPARE(sheet, QString());
    }
};

WIDGET_TEST_MAIN(FormViewerTest)
#include "tst_formviewer.moc"
