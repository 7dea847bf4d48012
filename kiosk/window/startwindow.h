// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"

#include <QWidget>

namespace kiosk {
class Screens;

/// What is on the screen until there is a terminal to show: that it is being switched on, or why it cannot be.
class StartWindow : public QWidget
{
    Q_OBJECT

public:
    explicit StartWindow(const TrelmInfo &info, QWidget *parent = nullptr);

    void showStarting();
    /// @param reason what the ledger says, @param path its file.
    void showLedgerFailure(const QString &reason, const QString &path);

Q_SIGNALS:
    /// Somebody closes the window: the program is to end.
    void closeWanted();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    TrelmInfo m_info;
    Screens *m_screens;
};
} // namespace kiosk
