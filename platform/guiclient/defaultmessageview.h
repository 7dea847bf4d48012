// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

/// The message view that is built in: what a form project's file would be, with every part that a
/// MessageWidgetController knows.
class DefaultMessageView : public QWidget
{
    Q_OBJECT

public:
    explicit DefaultMessageView(QWidget *parent = nullptr);
};
