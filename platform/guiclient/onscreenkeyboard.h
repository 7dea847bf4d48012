// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QPushButton;

/// Keys to touch: a number pad, or letters and digits in the order of the alphabet, so that 0 to F stand together.
///
/// It takes no focus: what it types goes wherever its receiver puts it.
class OnScreenKeyboard : public QWidget
{
    Q_OBJECT

public:
    enum class Type
    {
        Number,
        Full
    };

    explicit OnScreenKeyboard(Type type, QWidget *parent = nullptr);

Q_SIGNALS:
    void typed(const QString &character);
    /// The last character goes.
    void erased();
    /// All of them go.
    void cleared();

private:
    QPushButton *makeKey(const QString &caption, const char *name);
};
