// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// The payment form that a plugin hands to the host, which embeds and shows it.
class IPayWidget
{
public:
    virtual ~IPayWidget() = default;

    /// The form itself. It has the signals needCancel() (the payment is over without money), needTick() (the customer
    /// is still there: the inactivity timer starts again) and needShowPayDetail() (it is known what is owed: show the
    /// details), which the host connects by name.
    virtual QWidget *widget() = 0;

protected:
    IPayWidget() = default;
    IPayWidget(const IPayWidget &) = default;
    IPayWidget &operator=(const IPayWidget &) = default;
};
