// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "window/parts.h"

#include <QWidget>

namespace kiosk {
/// Invites the next customer: one button, and what will be asked for.
class IdleScreen : public QWidget
{
    Q_OBJECT

public:
    explicit IdleScreen(QWidget *parent = nullptr);

    /// What keeps a customer from paying, and what to do, in place of the steps; empty: nothing does.
    void setNotice(const QString &text);

Q_SIGNALS:
    void startWanted();

private:
    QWidget *m_steps;
    QLabel *m_notice;
};
} // namespace kiosk
