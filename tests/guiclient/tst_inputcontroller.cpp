// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/onscreenkeyboard.h"
#include "support/testcase.h"
#include "support/waiting.h"
#include "views.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>

#include <functional>

namespace {
using Controller = PluginProviderParameterInputController;

/// Ways to leave the screen.
const QStringList WAYS{QStringLiteral("nextButton"), QStringLiteral("backButton"), QStringLiteral("Enter"),
                       QStringLiteral("Return"), QStringLiteral("Escape")};

bool isNext(const QString &way)
{
    return way != QLatin1String("backButton") && way != QLatin1String("Escape");
}

/// A form on the screen with an input controller, and a customer before it.
class Terminal
{
public:
    Terminal()
        : viewer(std::make_unique<FormViewer>(&session)),
          controller(new Controller(&session, viewer.get(), QString(), QString()))
    {
        viewer->resize(1024, 768);
        viewer->show();
        viewer->activateWindow();
        if (!QTest::qWaitForWindowActive(viewer.get()))
            qFatal("the window does not become active");
    }
    ~Terminal() { delete controller; }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    template <typename Part>
    [[nodiscard]] Part *part(const char *name) const
    {
        return view()->findChild<Part *>(QLatin1String(name));
    }
    [[nodiscard]] QWidget *view() const { return viewer->getUi(QStringLiteral("inputView")); }
    [[nodiscard]] QLineEdit *line() const { return part<QLineEdit>("inputLine"); }

    void touch(const QAbstractButton *button) const
    {
        const QPoint place = button->mapTo(viewer.get(), button->rect().center());
        QTest::mouseClick(viewer->windowHandle(), Qt::LeftButton, {}, place);
    }
    void touchKey(const QString &caption) const
    {
        const auto keys = view()->findChildren<QAbstractButton *>();
        for (const QAbstractButton *key : keys) {
            if (key->text() == caption)
                return touch(key);
        }
        qFatal("there is no key %s", qPrintable(caption));
    }
    /// On the keyboard at the terminal, as the window gets it.
    void type(const QString &text) const
    {
        for (const QChar character : text)
            QTest::keyClick(viewer->windowHandle(), character.toLatin1());
    }
    void leave(const QString &way) const
    {
        // Not released: the window may be gone by then.
        if (way == QLatin1String("Enter"))
            QTest::keyPress(viewer->windowHandle(), Qt::Key_Enter);
        else if (way == QLatin1String("Return"))
            QTest::keyPress(viewer->windowHandle(), Qt::Key_Return);
        else if (way == QLatin1String("Escape"))
            QTest::keyPress(viewer->windowHandle(), Qt::Key_Escape);
        else
            touch(part<QAbstractButton>(qPrintable(way)));
    }

    SessionManager session;
    std::unique_ptr<FormViewer> viewer;
    QPointer<Controller> controller;
};

using Act = std::function<void(Terminal &)>;
} // namespace

Q_DECLARE_METATYPE(Act)

/// Typing a parameter, by touch and with a keyboard at the terminal.
class InputControllerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void screen_shown_asksForTheParameter()
    {
        Terminal terminal;
        delete terminal.controller;
        terminal.controller = new Controller(nullptr, terminal.viewer.get(), QString(), QStringLiteral("10 цифр"));
        ProviderParameter parameter = Views::cardNumber();
        parameter.setValue(QStringLiteral("04"));
        terminal.controller->setParameter(QStringLiteral("Парковка"), parameter, false);
        QCOMPARE(terminal.viewer->currentView(), QStringLiteral("inputView"));
        QCOMPARE(terminal.part<QLabel>("providerName")->text(), QStringLiteral("Парковка"));
        QCOMPARE(terminal.part<QLabel>("inputLabel")->text(), QStringLiteral("Введите номер карты"));
        QCOMPARE(terminal.part<QLabel>("inputHint")->text(), QStringLiteral("10 цифр"));
        QCOMPARE(terminal.part<QAbstractButton>("nextButton")->text(), QStringLiteral("Далее"));
        QCOMPARE(terminal.part<QAbstractButton>("backButton")->text(), QStringLiteral("Назад"));
        QCOMPARE(terminal.line()->text(), QStringLiteral("04"));
        QCOMPARE(terminal.line()->displayText(), QStringLiteral("04"));
        QCOMPARE(QApplication::focusWidget(), terminal.line());
    }

    void screen_withAName_isTheViewOfThatName()
    {
        FormViewer viewer;
        Controller controller(nullptr, &viewer, QStringLiteral("askNumber"), QString());
        controller.setParameter(QString(), Views::cardNumber(), false);
        QCOMPARE(viewer.currentView(), QStringLiteral("askNumber"));
        QVERIFY(viewer.getUi(viewer.currentView())->findChild<QLabel *>(QStringLiteral("providerName")) == nullptr);
    }

    void text_hidden_showsAsDots()
    {
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardUid(), true);
        terminal.type(QStringLiteral("ab"));
        QVERIFY(!terminal.line()->displayText().contains(QLatin1Char('a')));
        const QSignalSpy next(terminal.controller, &Controller::needNext);
        terminal.leave(QStringLiteral("Enter"));
        QCOMPARE(next.value(0).value(0).toString(), QStringLiteral("ab"));
    }

    void typed_byTouch_isHandedOn_data()
    {
        QTest::addColumn<bool>("isFull");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("text");
        QTest::newRow("digits") << false << QStringLiteral("1 2 3 4 5 6 7 8 9 0 0") << QStringLiteral("12345678900");
        QTest::newRow("erased") << false << QStringLiteral("1 2 ⌫ 3") << QStringLiteral("13");
        QTest::newRow("cleared") << false << QStringLiteral("1 2 Стереть\nвсё 3") << QStringLiteral("3");
        QTest::newRow("nothing to erase") << false << QStringLiteral("⌫") << QString();
        QTest::newRow("nothing at all") << false << QString() << QString();
        QTest::newRow("hexadecimal") << true << QStringLiteral("0 A 0 B 0 C 0 D") << QStringLiteral("0A0B0C0D");
        QTest::newRow("letters") << true << QStringLiteral("Q W E R T Y Z ⌫") << QStringLiteral("QWERTY");
    }

    void typed_byTouch_isHandedOn()
    {
        QFETCH(bool, isFull);
        QFETCH(QString, keys);
        QFETCH(QString, text);
        Terminal terminal;
        terminal.controller->setParameter(QString(), isFull ? Views::cardUid() : Views::cardNumber(), false);
        const QStringList captions = keys.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (const QString &caption : captions)
            terminal.touchKey(caption);
        const QSignalSpy next(terminal.controller, &Controller::needNext);
        terminal.leave(QStringLiteral("nextButton"));
        QCOMPARE(next.size(), 1);
        QCOMPARE(next.at(0).at(0).toString(), text);
    }

    void typed_withAKeyboard_isHandedOn_data()
    {
        QTest::addColumn<bool>("isFull");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("text");
        QTest::newRow("digits") << false << QStringLiteral("0412") << QStringLiteral("0412");
        QTest::newRow("letters where a number is asked for")
            << false << QStringLiteral("1a-2 ") << QStringLiteral("12");
        QTest::newRow("letters") << true << QStringLiteral("0a0B 0c") << QStringLiteral("0a0B 0c");
    }

    void typed_withAKeyboard_isHandedOn()
    {
        QFETCH(bool, isFull);
        QFETCH(QString, keys);
        QFETCH(QString, text);
        Terminal terminal;
        terminal.controller->setParameter(QString(), isFull ? Views::cardUid() : Views::cardNumber(), false);
        terminal.type(keys);
        const QSignalSpy next(terminal.controller, &Controller::needNext);
        terminal.leave(QStringLiteral("Enter"));
        QCOMPARE(next.size(), 1);
        QCOMPARE(next.at(0).at(0).toString(), text);
    }

    void typed_touchAndKeyboard_goTogether()
    {
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        terminal.touchKey(QStringLiteral("1"));
        terminal.type(QStringLiteral("23"));
        terminal.touchKey(QStringLiteral("4"));
        QTest::keyClick(terminal.viewer->windowHandle(), Qt::Key_Backspace);
        terminal.touchKey(QStringLiteral("5"));
        QCOMPARE(terminal.line()->text(), QStringLiteral("1235"));
    }

    void way_taken_tellsOnce_data() { addWays(); }

    void way_taken_tellsOnce()
    {
        QFETCH(QString, way);
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        const QSignalSpy next(terminal.controller, &Controller::needNext);
        const QSignalSpy back(terminal.controller, &Controller::needBack);
        terminal.leave(way);
        QCOMPARE(next.size(), isNext(way) ? 1 : 0);
        QCOMPARE(back.size(), isNext(way) ? 0 : 1);
        QVERIFY(terminal.view()->isVisible());
    }

    void somebody_diesInsideASignal_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<Act>("act");
        for (const QString &way : WAYS) {
            const auto row = [&](const char *name, const Act &act) {
                QTest::addRow("%s: %s", qPrintable(way), name) << way << act;
            };
            row("controller", [](Terminal &terminal) { delete terminal.controller; });
            row("controller, later", [](Terminal &terminal) { terminal.controller->deleteLater(); });
            row("view", [](Terminal &terminal) { delete terminal.view(); });
            row("viewer", [](Terminal &terminal) { terminal.viewer.reset(); });
            row("all", [](Terminal &terminal) {
                delete terminal.controller;
                terminal.viewer.reset();
            });
            row("another screen", [](Terminal &terminal) {
                delete terminal.controller;
                terminal.controller = new Controller(nullptr, terminal.viewer.get(), QString(), QString());
                terminal.controller->setParameter(QString(), Views::cardUid(), false);
            });
            row("another parameter",
                [](Terminal &terminal) { terminal.controller->setParameter(QString(), Views::cardUid(), false); });
        }
    }

    void somebody_diesInsideASignal()
    {
        QFETCH(QString, way);
        QFETCH(Act, act);
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        int seen = 0;
        const auto onSignal = [&] {
            ++seen;
            act(terminal);
        };
        if (isNext(way))
            connect(terminal.controller, &Controller::needNext, this, [&] { onSignal(); });
        else
            connect(terminal.controller, &Controller::needBack, this, [&] { onSignal(); });
        terminal.leave(way);
        deleteReleased();
        QCOMPARE(seen, 1);
        if (!terminal.viewer)
            return;
        const bool isUp = terminal.viewer->currentView() == QStringLiteral("inputView");
        QCOMPARE(isUp, terminal.controller && terminal.view() != nullptr);
        QVERIFY(terminal.viewer->findChildren<OnScreenKeyboard *>().size() == (isUp ? 1 : 0));
    }

    void controller_deleted_removesItsView()
    {
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        delete terminal.controller;
        QVERIFY(terminal.view() == nullptr);
        QVERIFY(terminal.viewer->findChild<OnScreenKeyboard *>() == nullptr);
        QCOMPARE(terminal.viewer->currentView(), QString());
    }

    void view_orViewerDeleted_controllerLivesOn()
    {
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        delete terminal.view();
        terminal.controller->setParameter(QString(), Views::cardUid(), false);
        QVERIFY(terminal.view()->isVisible());
        terminal.viewer.reset();
        terminal.controller->setParameter(QString(), Views::cardUid(), false);
    }

    void line_heldDown_opensNoMenu()
    {
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        QContextMenuEvent held(QContextMenuEvent::Mouse, {10, 10}, terminal.line()->mapToGlobal({10, 10}));
        QCoreApplication::sendEvent(terminal.line(), &held);
        QVERIFY(QApplication::activePopupWidget() == nullptr);
    }

    void parameter_setAgain_replacesTheScreen()
    {
        Terminal terminal;
        terminal.controller->setParameter(QString(), Views::cardNumber(), false);
        terminal.type(QStringLiteral("1"));
        terminal.controller->setParameter(QString(), Views::cardUid(), false);
        QCOMPARE(terminal.line()->text(), QString());
        QCOMPARE(terminal.viewer->findChildren<OnScreenKeyboard *>().size(), 1);
        QCOMPARE(QApplication::focusWidget(), terminal.line());
    }

    void nullSessionAndViewer_areAllowed()
    {
        Controller controller(nullptr, nullptr, QString(), QString());
        controller.setParameter(QString(), Views::cardNumber(), false);
    }

    void keyboard_unknown_isTheFullOneAndLogged_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("language");
        QTest::addColumn<int>("lines");
        QTest::newRow("full, English") << QStringLiteral("full") << QStringLiteral("en") << 0;
        QTest::newRow("full") << QStringLiteral("full") << QString() << 0;
        QTest::newRow("another language") << QStringLiteral("full") << QStringLiteral("tlh") << 1;
        QTest::newRow("another type") << QStringLiteral("chords") << QString() << 1;
        QTest::newRow("none") << QString() << QString() << 1;
    }

    void keyboard_unknown_isTheFullOneAndLogged()
    {
        QFETCH(QString, type);
        QFETCH(QString, language);
        QFETCH(int, lines);
        ProviderParameter parameter = Views::cardUid();
        parameter.setKeyboardType(type);
        parameter.setKeyboardLanguage(language);
        Terminal terminal;
        terminal.controller->setParameter(QString(), parameter, false);
        terminal.touchKey(QStringLiteral("F"));
        QCOMPARE(terminal.line()->text(), QStringLiteral("F"));
        const QList<LogLine> log = MessageLog::take();
        QCOMPARE(log.size(), lines);
        for (const LogLine &line : log)
            QCOMPARE(line.category, QStringLiteral("terminal.guiclient"));
    }

private:
    static void addWays()
    {
        QTest::addColumn<QString>("way");
        for (const QString &way : WAYS)
            QTest::newRow(qPrintable(way)) << way;
    }
};

WIDGET_TEST_MAIN(InputControllerTest)
#include "tst_inputcontroller.moc"
