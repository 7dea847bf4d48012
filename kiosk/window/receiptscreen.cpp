// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/receiptscreen.h"

#include "window/amounttext.h"
#include "window/facts.h"
#include "window/outcometext.h"
#include "window/statusicon.h"
#include "window/turningbox.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QTimerEvent>

namespace kiosk {
namespace {
/// Seconds to read it; longer where there is something to write down, or nobody may be standing there yet.
int secondsToRead(const Receipt &receipt)
{
    if (receipt.isRecovered)
        return 120;
    return OutcomeText::isSettled(receipt.payment) && receipt.payment.change <= FixNumber() ? 20 : 60;
}

StatusIcon::Kind iconKind(const LedgerEntry &payment)
{
    if (OutcomeText::isSettled(payment))
        return StatusIcon::Kind::Good;
    return payment.outcome == Outcome::Interrupted ? StatusIcon::Kind::Bad : StatusIcon::Kind::Doubtful;
}
} // namespace

ReceiptScreen::ReceiptScreen(QWidget *parent)
    : QWidget(parent),
      m_recovered(Parts::label(QStringLiteral("Терминал перезапускался во время этого платежа."), "noticeDoubtful")),
      m_icon(new StatusIcon(StatusIcon::Kind::Good)), m_title(Parts::label({}, "title")),
      m_amount(Parts::line({}, "amount")), m_text(Parts::label({}, "text")), m_advice(Parts::label({}, "textStrong")),
      m_facts(new Facts), m_countdown(Parts::label({}, "hint"))
{
    m_title->setObjectName(QStringLiteral("receiptTitle"));
    m_text->setObjectName(QStringLiteral("receiptText"));
    m_countdown->setObjectName(QStringLiteral("receiptCountdown"));
    auto *heading = new QHBoxLayout;
    heading->setSpacing(24);
    heading->addWidget(m_icon);
    heading->addWidget(m_title, 1);
    auto *said = new QVBoxLayout;
    said->setSpacing(16);
    said->addWidget(m_amount);
    said->addWidget(m_text);
    said->addWidget(m_advice);
    said->addStretch(1);
    auto *facts = new QVBoxLayout;
    facts->addWidget(m_facts);
    facts->addStretch(1);

    auto *content = new QVBoxLayout;
    content->setContentsMargins(56, 16, 56, 12);
    content->setSpacing(12);
    content->addStretch(1);
    content->addWidget(m_recovered);
    content->addLayout(heading);
    content->addWidget(new TurningBox(said, 1, facts, 1));
    content->addStretch(2);
    QPushButton *done = Parts::button(QStringLiteral("Готово"), "receiptButton", "primary");
    connect(done, &QPushButton::clicked, this, &ReceiptScreen::closeWanted);
    auto *bar = new QFrame;
    bar->setObjectName(QStringLiteral("bottomBar"));
    auto *buttons = new QHBoxLayout(bar);
    buttons->setContentsMargins(32, 16, 32, 16);
    buttons->setSpacing(24);
    buttons->addWidget(m_countdown, 1);
    buttons->addWidget(done);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(content, 1);
    layout->addWidget(bar);
}

void ReceiptScreen::setReceipt(const Receipt &receipt, const Currency &currency)
{
    const LedgerEntry &payment = receipt.payment;
    m_recovered->setVisible(receipt.isRecovered);
    m_icon->setKind(iconKind(payment));
    m_title->setText(OutcomeText::title(payment));
    m_amount->setText(amountText(payment.total, currency));
    m_amount->setVisible(payment.outcome == Outcome::Confirmed && payment.total > FixNumber());
    m_text->setText(OutcomeText::explanation(payment));
    m_text->setVisible(!m_text->text().isEmpty());
    m_advice->setText(OutcomeText::advice(payment, receipt.phone));
    m_advice->setVisible(!m_advice->text().isEmpty());
    showFacts(receipt, currency);
    m_seconds = secondsToRead(receipt);
    showSeconds();
    m_timer.start(1000, this);
}

void ReceiptScreen::stop()
{
    m_timer.stop();
}

void ReceiptScreen::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    --m_seconds;
    showSeconds();
    if (m_seconds > 0)
        return;
    m_timer.stop();
    Q_EMIT closeWanted();
}

void ReceiptScreen::showFacts(const Receipt &receipt, const Currency &currency)
{
    m_facts->clear();
    const LedgerEntry &payment = receipt.payment;
    const auto addAmount = [&](const QString &caption, const FixNumber &amount, const char *role) {
        if (amount > FixNumber())
            m_facts->addRow(caption, amountText(amount, currency), role);
    };
    m_facts->addRow(QStringLiteral("Номер платежа"), QString::number(payment.uid), "valueStrong");
    m_facts->addRow(QStringLiteral("Время"), payment.created.toString(QStringLiteral("dd.MM.yyyy HH:mm")));
    if (!payment.cardNumber.isEmpty())
        m_facts->addRow(QStringLiteral("Карта"), payment.cardNumber);
    addAmount(QStringLiteral("Внесено"), payment.cash, "value");
    addAmount(QStringLiteral("За парковку"), payment.summ, "value");
    addAmount(QStringLiteral("Комиссия"), payment.comission, "value");
    addAmount(OutcomeText::changeCaption(payment), payment.change, "valueOwed");
    if (payment.outcome == Outcome::Interrupted)
        return;
    // What is to be paid now stands out; as long as that is not known, nothing is.
    const bool isKnown = payment.outcome == Outcome::Confirmed;
    addAmount(OutcomeText::remainderCaption(payment), payment.remainder, isKnown ? "valueOwed" : "value");
}

void ReceiptScreen::showSeconds()
{
    m_countdown->setText(QStringLiteral("Экран закроется через %1 с").arg(m_seconds));
}
} // namespace kiosk
