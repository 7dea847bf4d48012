// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/ledgerlist.h"

#include "window/amounttext.h"
#include "window/outcometext.h"
#include "window/parts.h"

#include <QGridLayout>
#include <QVBoxLayout>

namespace kiosk {
namespace {
QString whatText(const LedgerEntry &entry)
{
    QStringList parts = {QStringLiteral("№ %1").arg(entry.uid),
                         entry.created.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"))};
    if (!entry.cardNumber.isEmpty())
        parts.append(QStringLiteral("карта ") + entry.cardNumber);
    return parts.join(QStringLiteral(" · "));
}

QString amountsText(const LedgerEntry &entry, const Currency &currency)
{
    QStringList parts;
    const auto add = [&](const QString &caption, const FixNumber &amount) {
        if (amount > FixNumber())
            parts.append(caption + QLatin1Char(' ') + amountText(amount, currency));
    };
    add(QStringLiteral("Внесено"), entry.cash);
    add(QStringLiteral("за парковку"), entry.summ);
    add(QStringLiteral("комиссия"), entry.comission);
    add(OutcomeText::changeCaption(entry).toLower(), entry.change);
    if (entry.outcome != Outcome::Interrupted)
        add(OutcomeText::remainderCaption(entry).toLower(), entry.remainder);
    return parts.join(QStringLiteral(" · "));
}

const char *outcomeRole(const LedgerEntry &entry)
{
    if (entry.outcome == Outcome::Interrupted)
        return "outcomeBad";
    return OutcomeText::isSettled(entry) ? "outcomeGood" : "outcomeDoubtful";
}

QWidget *row(const LedgerEntry &entry, const Currency &currency)
{
    auto *card = new QFrame;
    Parts::setRole(*card, "card");
    auto *layout = new QVBoxLayout(card);
    layout->setContentsMargins(20, 14, 20, 14);
    layout->setSpacing(4);
    layout->addWidget(Parts::label(whatText(entry), "caption"));
    layout->addWidget(Parts::label(OutcomeText::title(entry), outcomeRole(entry)));
    layout->addWidget(Parts::label(amountsText(entry, currency), "fact"));
    const QString explanation = OutcomeText::explanation(entry);
    if (!explanation.isEmpty())
        layout->addWidget(Parts::label(explanation, "fact"));
    // What the operator of the cash service asks for.
    if (!OutcomeText::isSettled(entry) && !entry.parkingSession.isEmpty())
        layout->addWidget(Parts::label(QStringLiteral("Парковочная сессия ") + entry.parkingSession, "fact"));
    return card;
}
} // namespace

LedgerList::LedgerList(QWidget *parent) : TouchScrollArea(new QWidget, parent)
{
    setObjectName(QStringLiteral("ledgerList"));
    setFrameShape(QFrame::NoFrame);
}

void LedgerList::setEntries(const QVector<LedgerEntry> &entries, const Currency &currency)
{
    auto *list = new QWidget;
    auto *layout = new QVBoxLayout(list);
    layout->setContentsMargins(0, 0, 8, 0);
    layout->setSpacing(12);
    for (const LedgerEntry &entry : entries)
        layout->addWidget(row(entry, currency));
    if (entries.isEmpty())
        layout->addWidget(Parts::label(QStringLiteral("Платежей в журнале нет."), "text"));
    layout->addStretch(1);
    setWidget(list);
}
} // namespace kiosk
