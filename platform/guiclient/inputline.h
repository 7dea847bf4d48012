// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

/// One line that a keyboard at the terminal types in: Enter and Escape end it.
class InputLine : public QLineEdit
{
    Q_OBJECT

public:
    /// @param digitsOnly whether other characters are left out.
    explicit InputLine(bool digitsOnly, QWidget *parent = nullptr);

Q_SIGNALS:
    // Each is the last act of the key's event.
    void entered();
    void escaped();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    bool m_digitsOnly;
};
