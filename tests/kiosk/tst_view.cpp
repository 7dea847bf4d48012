// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "view/view.h"

#include "guiclient/pluginbaseformviewer.h"
#include "kiosk/terminalbench.h"

#include "support/testcase.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QVBoxLayout>

using kiosk::View;

namespace {
QPushButton *button(const char *name, QWidget *parent)
{
    auto *made = new QPushButton(QLatin1String(name), parent);
    made->setObjectName(QLatin1String(name));
    return made;
}

/// A view with a text and buttons below each other.
QWidget *view(const char *textName, const QString &text, std::initializer_list<const char *> buttons)
{
    auto *made = new QWidget;
    auto *layout = new QVBoxLayout(made);
    auto *label = new QLabel(text);
    label->setObjectName(QLatin1String(textName));
    layout->addWidget(label);
    for (const char *name : buttons)
        layout->addWidget(button(name, made));
    return made;
}
} // namespace

class ViewTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void screen_ofTheTerminal_isWhatIsUp()
    {
        TerminalBench bench;
        const View view = bench.view();
        QCOMPARE(view.screen(), QStringLiteral("idle"));
        bench->start();
        QCOMPARE(view.screen(), QStringLiteral("waiting"));
        bench.form()->addView(::view("messageText", QStringLiteral("Ждите"), {}), QStringLiteral("a"));
        QCOMPARE(view.screen(), QStringLiteral("message"));
        bench.signal("needShowPayDetail");
        QCOMPARE(view.screen(), QStringLiteral("details"));
        bench.form()->showWidget(QStringLiteral("a"));
        QCOMPARE(view.screen(), QStringLiteral("message"));
        bench->stop();
        bench->openService();
        WAIT_FOR(view.screen(), QStringLiteral("service"));
    }

    void text_ofTheTopmostView_leavesOutWhatIsBelow()
    {
        TerminalBench bench;
        bench->start();
        bench.form()->addView(::view("messageText", QStringLiteral("Ниже"), {"okButton"}), QStringLiteral("a"));
        QCOMPARE(bench.view().text(), QStringLiteral("Ниже\nokButton"));
        FormViewer question(nullptr, false, bench.form());
        question.addView(::view("messageText", QStringLiteral("Отменить?"), {"yesButton"}), QStringLiteral("a"));
        QCOMPARE(bench.view().text(), QStringLiteral("Ниже\nokButton"));
        question.show();
        QCOMPARE(bench.view().text(), QStringLiteral("Отменить?\nyesButton"));
        QCOMPARE(bench.view().buttons(), QStringList{QStringLiteral("yes")});
    }

    void press_ofAButton_isAPressAndARelease()
    {
        TerminalBench bench;
        bench->start();
        QWidget *const message = ::view("messageText", QStringLiteral("a"), {"okButton", "cancelButton"});
        bench.form()->addView(message, QStringLiteral("a"));
        auto *const ok = message->findChild<QPushButton *>(QStringLiteral("okButton"));
        QSignalSpy pressed(ok, &QPushButton::pressed);
        QSignalSpy clicked(ok, &QPushButton::clicked);
        QCOMPARE(bench.view().press(QStringLiteral("ok")), QString());
        QCOMPARE(pressed.count(), 1);
        QCOMPARE(clicked.count(), 1);
    }

    void press_ofAButtonThatCannotBeTouched_saysWhatCan()
    {
        TerminalBench bench;
        bench->start();
        QWidget *const message = ::view("messageText", QStringLiteral("a"), {"okButton", "cancelButton", "yesButton"});
        message->findChild<QPushButton *>(QStringLiteral("okButton"))->setEnabled(false);
        message->findChild<QPushButton *>(QStringLiteral("cancelButton"))->hide();
        bench.form()->addView(message, QStringLiteral("a"));
        View view = bench.view();
        for (const char *name : {"ok", "cancel", "no"})
            QCOMPARE(view.press(QLatin1String(name)),
                     QStringLiteral("there is no button \"%1\" to touch, but yes").arg(QLatin1String(name)));
        FormViewer question(nullptr, false, bench.form());
        question.addView(::view("messageText", QStringLiteral("b"), {}), QStringLiteral("a"));
        question.show();
        QCOMPARE(view.press(QStringLiteral("yes")), QStringLiteral("there is no button \"yes\" to touch, but none"));
    }

    void press_ofANameThatIsThereTwice_meansTheTopmostView()
    {
        TerminalBench bench;
        bench->start();
        QPushButton *const bar = button("cancelButton", &bench.window());
        bar->setGeometry(0, 500, 100, 50);
        bar->show();
        bench.form()->setGeometry(0, 0, 800, 500);
        QSignalSpy onBar(bar, &QPushButton::clicked);
        QCOMPARE(bench.view().press(QStringLiteral("cancel")), QString());
        QCOMPARE(onBar.count(), 1);
        QWidget *const prompt = ::view("messageText", QStringLiteral("a"), {"cancelButton"});
        bench.form()->addView(prompt, QStringLiteral("a"));
        QSignalSpy onPrompt(prompt->findChild<QPushButton *>(), &QPushButton::clicked);
        QCOMPARE(bench.view().press(QStringLiteral("cancel")), QString());
        QCOMPARE(onPrompt.count(), 1);
        QCOMPARE(onBar.count(), 1);
    }

    void press_ofAButtonThatDeletesItsView_isSafe()
    {
        TerminalBench bench;
        bench->start();
        QPointer<QWidget> message = ::view("messageText", QStringLiteral("a"), {"okButton"});
        bench.form()->addView(message, QStringLiteral("a"));
        connect(message->findChild<QPushButton *>(), &QPushButton::pressed, message, [&] { delete message; });
        QCOMPARE(bench.view().press(QStringLiteral("ok")), QString());
        QVERIFY(!message);
    }

    void type_onTheInputScreen_sendsEachCharacter()
    {
        TerminalBench bench;
        bench->start();
        auto *const input = new QWidget;
        auto *const line = new QLineEdit(input);
        line->setObjectName(QStringLiteral("inputLine"));
        bench.form()->addView(input, QStringLiteral("a"));
        QCOMPARE(bench.view().screen(), QStringLiteral("input"));
        QSignalSpy edited(line, &QLineEdit::textEdited);
        QCOMPARE(bench.view().type(QStringLiteral("0A ж<")), QString());
        QCOMPARE(line->text(), QStringLiteral("0A ж<"));
        QCOMPARE(edited.count(), 5);
        QCOMPARE(bench.view().type(QStringLiteral("1")), QString());
        QCOMPARE(line->text(), QStringLiteral("0A ж<1"));
    }

    void type_withoutAnInputScreen_saysSo()
    {
        TerminalBench bench;
        QCOMPARE(bench.view().type(QStringLiteral("1")), QStringLiteral("there is nothing to type on"));
    }
};

WIDGET_TEST_MAIN(ViewTest)
#include "tst_view.moc"
