// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/formviewer.h"

#include "core/sessionmanager.h"
#include "guiclient/defaultmessageview.h"
#include "guiclient/guistyle.h"
#include "guiclient/messagetext.h"
#include "guiclient/waitindicator.h"
#include "support/testcase.h"
#include "support/waiting.h"
#include "support/workdirectory.h"
#include "views.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <functional>

Q_DECLARE_METATYPE(std::function<void(FormViewer &, QWidget *, QWidget *)>)

namespace {
const QString ONE = QStringLiteral("one");
const QString TWO = QStringLiteral("two");

/// A view with one line and one button.
class Page : public QWidget
{
public:
    Page() : line(new QLineEdit(this)), button(new QPushButton(this))
    {
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(line);
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this] { ++clicks; });
        setFocusProxy(line);
    }

    QLineEdit *line;
    QPushButton *button;
    int clicks = 0;
};

QString written(const QByteArray &bytes, const QString &name = QStringLiteral("view.ui"))
{
    const QString path = WorkDirectory::path() + QLatin1Char('/') + name;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s was not written", qPrintable(path));
    return path;
}

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
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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

    // Files

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

    // Touch and keys

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
