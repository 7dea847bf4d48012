// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

/// What a form viewer shows between two views.
class WaitingPage : public QWidget
{
    Q_OBJECT

public:
    explicit WaitingPage(QWidget *parent);
};
