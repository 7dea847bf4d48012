// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace kiosk {
/// The terminal is being switched on: there is something to wait for, and nothing to touch.
class StartingScreen : public QWidget
{
    Q_OBJECT

public:
    explicit StartingScreen(QWidget *parent = nullptr);
};
} // namespace kiosk
