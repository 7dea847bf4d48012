// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/paydetailview.h"

#include "guiclient/messagetext.h"
#include "guiclient/touchscrollarea.h"

#include <QGridLayout>

namespace {
const QString NOTHING = QStringLiteral("—");

MessageText *makeText(const char *name, Qt::Alignment alignment)
{
    auto *text = new MessageText;
    text->setObjectName(QLatin1String(name));
    text->setAlignment(alignment);
    return text;
}

QString labelOf(const ProviderParameter &parameter)
{
    if (!parameter.checkLabel().isEmpty())
        return parameter.checkLabel();
    return parameter.label().isEmpty() ? parameter.name() : parameter.label();
}

} // namespace

PayDetailView::PayDetailView(QWidget *parent)
    : QWidget(parent), m_sumDue(makeText("sumDue", Qt::AlignCenter)), m_paidIn(makeText("paidIn", Qt::AlignCenter)),
      m_phone(makeText("phone", Qt::AlignCenter)), m_parameters(new QWidget), m_grid(new QGridLayout(m_parameters))
{
    m_parameters->setObjectName(QStringLiteral("parameters"));
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setVerticalSpacing(10);
    m_grid->setColumnStretch(0, 1);
    m_grid->setColumnStretch(1, 1);
    m_phone->setContentsMargins(0, 8, 0, 0);
    m_phone->hide();
    auto *caption = new QLabel(QStringLiteral("К оплате"));
    caption->setObjectName(QStringLiteral("sumDueCaption"));
    caption->setAlignment(Qt::AlignCenter);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 20, 32, 20);
    layout->setSpacing(8);
    layout->addStretch();
    layout->addWidget(caption);
    layout->addWidget(m_sumDue);
    layout->addWidget(m_paidIn);
    layout->addSpacing(16);
    layout->addWidget(new TouchScrollArea(m_parameters));
    layout->addStretch();
    layout->addWidget(m_phone);
}

void PayDetailView::setSumDue(const QString &text)
{
    m_sumDue->setText(text.isEmpty() ? NOTHING : text);
}

void PayDetailView::setPaidIn(const QString &text)
{
    m_paidIn->setText(QStringLiteral("Внесено: ") + text);
}

void PayDetailView::setPhone(const QString &phone)
{
    m_phone->setText(QStringLiteral("Справки по телефону ") + phone);
    m_phone->setVisible(!phone.isEmpty());
}

void PayDetailView::setParameters(const QList<ProviderParameter> &parameters)
{
    while (m_rows.size() > parameters.size()) {
        const Row row = m_rows.takeLast();
        delete row.label;
        delete row.value;
    }
    for (int i = 0; i < parameters.size(); ++i) {
        if (i == m_rows.size())
            m_rows.append(makeRow(i));
        const ProviderParameter &parameter = parameters.at(i);
        m_rows.at(i).label->setText(labelOf(parameter));
        m_rows.at(i).value->setText(parameter.value().isEmpty() ? NOTHING : parameter.value());
        m_rows.at(i).value->setAccessibleName(labelOf(parameter) + QStringLiteral(": ") + m_rows.at(i).value->text());
    }
    m_grid->setRowStretch(m_rows.size(), 1);
}

PayDetailView::Row PayDetailView::makeRow(int index)
{
    const Row row{makeText("parameterLabel", Qt::AlignRight | Qt::AlignTop),
                  makeText("parameterValue", Qt::AlignLeft | Qt::AlignTop)};
    m_grid->setRowStretch(index, 0);
    m_grid->addWidget(row.label, index, 0);
    m_grid->addWidget(row.value, index, 1);
    return row;
}
