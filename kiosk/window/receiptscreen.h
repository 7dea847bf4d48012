// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/currency.h"
#include "receipt.h"
#include "window/parts.h"

#include <QBasicTimer>
#include <QWidget>

namespace kiosk {
class Facts;
class StatusIcon;

/// What became of the money: paid, not known, or not sent; what is owed to whom; where to ask. Leaves by itself after a
/// while.
class ReceiptScreen : public QWidget
{
    Q_OBJECT

public:
    explicit ReceiptScreen(QWidget *parent = nullptr);

    /// Shows the receipt and starts the time until the screen leaves.
    void setReceipt(const Receipt &receipt, const Currency &currency);
    /// The screen is left: nothing is counted any more.
    void stop();

Q_SIGNALS:
    /// The customer is done, or has gone.
    void closeWanted();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void showFacts(const Receipt &receipt, const Currency &currency);
    void showSeconds();

    QLabel *m_recovered;
    StatusIcon *m_icon;
    QLabel *m_title;
    QLabel *m_amount;
    QLabel *m_text;
    QLabel *m_advice;
    Facts *m_facts;
    QLabel *m_countdown;
    QBasicTimer m_timer;
    int m_seconds = 0;
};
} // namespace kiosk
