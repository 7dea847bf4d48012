// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "extension/currency.h"
#include "purchase.h"
#include "window/parts.h"

#include <QPointer>
#include <QWidget>

class QFrame;
class QVBoxLayout;

namespace kiosk {
class MoneyLine;

/// The plugin's form, and below it what the terminal itself has to say and to offer: the money and the buttons. While
/// the form asks something itself, its own buttons are the only ones.
class PaymentScreen : public QWidget
{
    Q_OBJECT

public:
    /// What the terminal knows of the payment that is going on.
    struct State
    {
        /// The form shows its details: money may be paid in.
        bool hasDetails = false;
        bool isCommitting = false;
        bool canPay = false;
        bool canCancel = false;
        bool acceptsCash = false;
        /// Until the money that is in is committed by itself; 0: it is not.
        int secondsLeft = 0;
        Purchase purchase;
        Currency currency;
        /// Whom to call; may be empty.
        QString phone;
    };

    explicit PaymentScreen(QWidget *parent = nullptr);
    /// Lets go of the form, which is the plugin's.
    ~PaymentScreen() override;

    /// Embeds and shows the form; it stays its owner's. @param form may be null.
    void setForm(QWidget *form);
    void setState(const State &state);

Q_SIGNALS:
    void cancelWanted();
    void payWanted();
    /// Another view of the form is up.
    void formViewChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void releaseForm();
    [[nodiscard]] QString hint() const;
    void showBar();

    QVBoxLayout *m_formPlace;
    QPointer<QWidget> m_form;
    MoneyLine *m_money;
    QFrame *m_bar;
    QLabel *m_hint;
    QPushButton *m_cancel;
    QPushButton *m_pay;
    State m_state;
};
} // namespace kiosk
