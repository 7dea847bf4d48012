// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class InputLine;
class OnScreenKeyboard;
class ProviderParameter;

/// The screen on which one parameter is typed.
class InputView : public QWidget
{
    Q_OBJECT

public:
    /// @param providerName, @param hint empty: left out.
    InputView(const ProviderParameter &parameter, const QString &providerName, const QString &hint, QWidget *parent);

    void hideText();

Q_SIGNALS:
    // Each is the last act of the touch or key: the receiver may delete the view.
    void back();
    void next(const QString &text);

private:
    void connectKeyboard(const OnScreenKeyboard *keyboard);

    InputLine *m_line;
};
