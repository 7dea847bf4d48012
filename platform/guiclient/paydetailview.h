// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/providerparameter.h"

#include <QVector>
#include <QWidget>

class MessageText;
class QGridLayout;

/// The payment's details: what is due, what has been paid in, and the parameters of the payment.
class PayDetailView : public QWidget
{
    Q_OBJECT

public:
    explicit PayDetailView(QWidget *parent = nullptr);

    /// @param text with the currency; empty: nothing is known.
    void setSumDue(const QString &text);
    void setPaidIn(const QString &text);
    /// Shows each with its check label (or its label, or its name) and its value.
    void setParameters(const QList<ProviderParameter> &parameters);
    /// Whom the customer asks, at the foot; empty: nobody.
    void setPhone(const QString &phone);

private:
    struct Row
    {
        MessageText *label;
        MessageText *value;
    };

    Row makeRow(int index);

    MessageText *m_sumDue;
    MessageText *m_paidIn;
    MessageText *m_phone;
    QWidget *m_parameters;
    QGridLayout *m_grid;
    QVector<Row> m_rows;
};
