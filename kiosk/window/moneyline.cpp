// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/moneyline.h"

#include "purchase.h"
#include "window/amounttext.h"

#include <QHBoxLayout>

namespace kiosk {
namespace {
QString captionText(const Purchase &purchase)
{
    if (purchase.isNothingDue())
        return purchase.hasCash() ? QStringLiteral("К возврату") : QStringLiteral("Оплачивать нечего");
    if (purchase.change() > FixNumber())
        return QStringLiteral("Сдача");
    if (purchase.toPayIn() > purchase.remainder())
        return QStringLiteral("Внести с комиссией");
    return purchase.toPayIn() > FixNumber() ? QStringLiteral("Осталось внести") : QStringLiteral("Внесена вся сумма");
}

QString hintText(const Purchase &purchase, bool acceptsCash)
{
    if (purchase.isNothingDue())
        return purchase.hasCash() ? QStringLiteral("Оплачивать нечего: нажмите «Завершить»")
                                  : QStringLiteral("Нажмите «Закончить»");
    if (purchase.toPayIn() <= FixNumber())
        return QStringLiteral("Нажмите «Оплатить»");
    return acceptsCash ? QStringLiteral("Внесите купюры. Сдача не выдаётся") : QStringLiteral("Купюры не принимаются");
}
} // namespace

MoneyLine::MoneyLine(QWidget *parent)
    : QFrame(parent), m_caption(Parts::line({}, "figureCaption")), m_amount(Parts::line({}, "figure")),
      m_hint(Parts::label({}, "moneyHint"))
{
    setObjectName(QStringLiteral("moneyLine"));
    m_amount->setObjectName(QStringLiteral("restAmount"));
    m_hint->setObjectName(QStringLiteral("moneyHint"));
    m_hint->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(32, 0, 32, 0);
    layout->setSpacing(16);
    layout->addWidget(m_caption);
    layout->addWidget(m_amount);
    layout->addWidget(m_hint, 1);
}

void MoneyLine::setPurchase(const Purchase &purchase, const Currency &currency, bool acceptsCash)
{
    const FixNumber amount = purchase.change() > FixNumber() ? purchase.change() : purchase.toPayIn();
    m_caption->setText(captionText(purchase));
    m_amount->setText(amountText(amount, currency));
    m_amount->setVisible(amount > FixNumber());
    m_hint->setText(hintText(purchase, acceptsCash));
}
} // namespace kiosk
