// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/currency.h"
#include "window/parts.h"

#include <QFrame>

namespace kiosk {
class Purchase;

/// What is still missing of the customer's money, or too much, and what to do now. What is due and what is in tell the
/// details above it.
class MoneyLine : public QFrame
{
    Q_OBJECT

public:
    explicit MoneyLine(QWidget *parent = nullptr);

    /// @param acceptsCash whether a note would be taken now.
    void setPurchase(const Purchase &purchase, const Currency &currency, bool acceptsCash);

private:
    QLabel *m_caption;
    QLabel *m_amount;
    QLabel *m_hint;
};
} // namespace kiosk
