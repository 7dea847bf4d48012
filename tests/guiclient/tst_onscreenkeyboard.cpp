// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/onscreenkeyboard.h"

#include "support/testcase.h"

#include <QApplication>
#include <QLayout>
#include <QPushButton>
#include <QSignalSpy>

#include <algorithm>

namespace {
QList<QPushButton *> keys(const OnScreenKeyboard &keyboard)
{
    return keyboard.findChildren<QPushButton *>();
}

/// In the order of their places, row by row.
QString captions(OnScreenKeyboard &keyboard)
{
    keyboard.resize(1000, 400);
    keyboard.layout()->activate();
    QList<QPushButton *> all = keys(keyboard);
    std::sort(all.begin(), all.end(), [](const QPushButton *left, const QPushButton *right) {
        return std::make_pair(left->y(), left->x()) < std::make_pair(right->y(), right->x());
    });
    QString text;
    int y = -1;
    for (const QPushButton *key : qAsConst(all)) {
        if (key->y() != y && y >= 0)
            text += QLatin1Char('|');
        y = key->y();
        text += key->objectName() == QLatin1String("key") ? key->text() : QStringLiteral(".");
    }
    return text;
}
} // namespace

class OnScreenKeyboardTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void keys_ofAType_standInOrder_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("rows");
        QTest::newRow("number") << static_cast<int>(OnScreenKeyboard::Type::Number) << "123|456|789|.0.";
        QTest::newRow("full") << static_cast<int>(OnScreenKeyboard::Type::Full)
                              << "1234567890|ABCDEFGHIJ|KLMNOPQRST|UVWXYZ..";
    }

    void keys_ofAType_standInOrder()
    {
        QFETCH(int, type);
        QFETCH(QString, rows);
        OnScreenKeyboard keyboard(static_cast<OnScreenKeyboard::Type>(type));
        QCOMPARE(captions(keyboard), rows);
    }

    void key_pressed_typesItsCharacter()
    {
        QWidget window;
        OnScreenKeyboard keyboard(OnScreenKeyboard::Type::Full, &window);
        keyboard.resize(1000, 400);
        window.show();
        const QSignalSpy typed(&keyboard, &OnScreenKeyboard::typed);
        const QSignalSpy erased(&keyboard, &OnScreenKeyboard::erased);
        const QSignalSpy cleared(&keyboard, &OnScreenKeyboard::cleared);
        QString expected;
        const QList<QPushButton *> all = keys(keyboard);
        for (QPushButton *key : all) {
            QTest::mouseClick(key, Qt::LeftButton);
            if (key->objectName() == QLatin1String("key"))
                expected += key->text();
        }
        QString text;
        for (const QVariantList &arguments : typed)
            text += arguments.at(0).toString();
        QCOMPARE(text, expected);
        QCOMPARE(text.size(), 36);
        QCOMPARE(erased.size(), 1);
        QCOMPARE(cleared.size(), 1);
    }

    void key_pressed_takesNoFocus()
    {
        OnScreenKeyboard keyboard(OnScreenKeyboard::Type::Number);
        const QList<QPushButton *> all = keys(keyboard);
        QCOMPARE(all.size(), 12);
        for (const QPushButton *key : all)
            QCOMPARE(key->focusPolicy(), Qt::NoFocus);
    }
};

WIDGET_TEST_MAIN(OnScreenKeyboardTest)
#include "tst_onscreenkeyboard.moc"
