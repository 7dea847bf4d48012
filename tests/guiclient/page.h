// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

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

/// Names of views.
inline const QString ONE = QStringLiteral("one");
inline const QString TWO = QStringLiteral("two");
