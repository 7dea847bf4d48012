// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/paymentscreen.h"

#include "window/amounttext.h"
#include "window/moneyline.h"
#include "window/outcometext.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>

#include <algorithm>

namespace kiosk {
namespace {
/// What happens by itself is said before it does.
QString withSeconds(const QString &text, const PaymentScreen::State &state)
{
    if (state.secondsLeft <= 0)
        return text;
    return text + QStringLiteral(" Платёж завершится через\u00A0%1\u00A0с.").arg(state.secondsLeft);
}

QString moneyHint(const PaymentScreen::State &state)
{
    if (!state.hasDetails || !state.purchase.hasCash())
        return {};
    if (state.purchase.isNothingDue())
        return withSeconds(QStringLiteral("Деньги вернут по номеру платежа."), state);
    if (state.purchase.change() > FixNumber())
        return withSeconds(QStringLiteral("Сдачу вернут по номеру платежа."), state);
    return withSeconds(QStringLiteral("Отменить платёж уже нельзя."), state);
}

/// Under an error that the plugin shows: what its button does, and who else can help.
QString errorHint(const PaymentScreen::State &state)
{
    if (state.isCommitting)
        return QStringLiteral("Деньги приняты. Нажмите «ОК» и дождитесь квитанции.");
    if (state.purchase.hasCash() && state.purchase.isNothingDue())
        return QStringLiteral("Нажмите «ОК». Деньги вернут по номеру платежа.");
    if (state.purchase.hasCash())
        return QStringLiteral("Нажмите «ОК»: платёж завершится с внесённой суммой.");
    return QStringLiteral("Нажмите «ОК». Нужна помощь — ") + OutcomeText::call(state.phone);
}

/// Under a question of the plugin's, to which "yes" ends the payment: the question knows nothing of the money, and
/// counts down by itself.
QString questionHint(const PaymentScreen::State &state)
{
    if (!state.purchase.hasCash())
        return {};
    const QString text = state.purchase.isNothingDue()
                             ? QStringLiteral("Внесено %1 — «Да» завершит платёж, деньги вернут по его номеру.")
                             : QStringLiteral("Внесено %1 — «Да» завершит платёж с этой суммой.");
    return text.arg(amountText(state.purchase.cash(), state.currency));
}

bool hasUp(const QWidget *form, const char *name)
{
    const auto parts = form != nullptr ? form->findChildren<QWidget *>(QLatin1String(name)) : QList<QWidget *>();
    return std::any_of(parts.begin(), parts.end(), [](const QWidget *part) { return part->isVisible(); });
}

/// Whether it is an error that is up, and not a question over it.
bool hasError(const QWidget *form)
{
    return hasUp(form, "errorMark") && !hasUp(form, "noButton");
}

/// Whether the error that is up has no text.
bool isMute(const QWidget *form)
{
    if (!hasError(form))
        return false;
    const auto texts =
        form != nullptr ? form->findChildren<QLabel *>(QStringLiteral("messageText")) : QList<QLabel *>();
    return std::any_of(texts.begin(), texts.end(),
                       [](const QLabel *text) { return text->isVisible() && text->text().trimmed().isEmpty(); });
}

/// Whether the view that is up has buttons of its own that end it: a second one below would be one too many.
bool hasWayOut(const QWidget *form)
{
    return hasUp(form, "okButton") || hasUp(form, "cancelButton") || hasUp(form, "noButton");
}

/// Where both buttons are up the message asks for something else: "enter it by hand" is no answer to press in passing.
void calmPrompt(QWidget *form)
{
    const auto buttons =
        form != nullptr ? form->findChildren<QPushButton *>(QStringLiteral("okButton")) : QList<QPushButton *>();
    for (QPushButton *button : buttons)
        Parts::setRole(*button, hasUp(button->parentWidget(), "cancelButton") ? "alternative" : "");
}

QString payText(const PaymentScreen::State &state)
{
    if (state.purchase.isNothingDue())
        return QStringLiteral("Завершить");
    // What the button does with part of the sum must be plain before it is touched.
    if (state.purchase.hasCash() && state.purchase.toPayIn() > FixNumber())
        return QStringLiteral("Оплатить ") + amountText(state.purchase.cash(), state.currency);
    return QStringLiteral("Оплатить");
}
} // namespace

PaymentScreen::PaymentScreen(QWidget *parent)
    : QWidget(parent), m_formPlace(new QVBoxLayout), m_money(new MoneyLine), m_bar(new QFrame),
      m_hint(Parts::label({}, "hint")), m_cancel(Parts::button({}, "cancelButton", "secondary")),
      m_pay(Parts::button({}, "payButton", "primary"))
{
    connect(m_cancel, &QPushButton::clicked, this, &PaymentScreen::cancelWanted);
    connect(m_pay, &QPushButton::clicked, this, &PaymentScreen::payWanted);
    connect(this, &PaymentScreen::formViewChanged, this, &PaymentScreen::showBar);

    m_bar->setObjectName(QStringLiteral("bottomBar"));
    auto *buttons = new QHBoxLayout(m_bar);
    buttons->setContentsMargins(32, 16, 32, 16);
    buttons->setSpacing(24);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_hint, 1);
    buttons->addWidget(m_pay);

    // Forms cover all of what they are in.
    auto *form = new QWidget;
    form->setLayout(m_formPlace);
    m_formPlace->setContentsMargins(0, 0, 0, 0);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(form, 1);
    layout->addWidget(m_money);
    layout->addWidget(m_bar);
    setState(State());
    // Messages come and go in the form without a word to who holds it.
    qApp->installEventFilter(this);
}

PaymentScreen::~PaymentScreen()
{
    releaseForm();
}

void PaymentScreen::setForm(QWidget *form)
{
    if (form == m_form && (form == nullptr || m_formPlace->indexOf(form) >= 0))
        return;
    releaseForm();
    m_form = form;
    if (form == nullptr)
        return;
    m_formPlace->addWidget(form);
    form->show();
}

void PaymentScreen::setState(const State &state)
{
    m_state = state;
    m_money->setPurchase(state.purchase, state.currency, state.acceptsCash);
    m_pay->setEnabled(state.canPay);
    m_pay->setText(payText(state));
    m_cancel->setText(state.hasDetails && state.purchase.isNothingDue() ? QStringLiteral("Закончить")
                                                                        : QStringLiteral("Отменить платёж"));
    showBar();
}

void PaymentScreen::showBar()
{
    const bool isAsked = hasWayOut(m_form);
    const bool hasMoney = m_state.hasDetails && !m_state.isCommitting && !isAsked;
    calmPrompt(m_form);
    m_hint->setText(hint());
    // Behind the plugin's last message it is all that tells why to wait; at others it tells what the plugin does not.
    const bool isWaitedFor = m_state.isCommitting && !hasUp(m_form, "messageText");
    const bool isQuestionOfMoney = hasUp(m_form, "noButton") && !m_hint->text().isEmpty();
    Parts::setRole(*m_hint, isWaitedFor || isQuestionOfMoney || isMute(m_form) ? "textStrong" : "hint");
    m_money->setVisible(hasMoney);
    // Where there is nothing to pay and nothing was paid in, it would never do anything.
    m_pay->setVisible(hasMoney && (!m_state.purchase.isNothingDue() || m_state.purchase.hasCash()));
    m_cancel->setVisible(m_state.canCancel && !m_state.isCommitting && !isAsked);
    m_hint->setAlignment(m_cancel->isHidden() && m_pay->isHidden() ? Qt::AlignCenter
                                                                   : Qt::AlignLeft | Qt::AlignVCenter);
    m_bar->setVisible(hasMoney || !m_cancel->isHidden() || !m_hint->text().isEmpty());
}

QString PaymentScreen::hint() const
{
    if (hasError(m_form))
        return (isMute(m_form) ? QStringLiteral("Произошла ошибка. ") : QString()) + errorHint(m_state);
    if (m_state.isCommitting)
        return QStringLiteral("Платёж подтверждается. Пожалуйста, не отходите от терминала.");
    if (hasUp(m_form, "noButton"))
        return questionHint(m_state);
    return hasWayOut(m_form) ? QString() : moneyHint(m_state);
}

bool PaymentScreen::eventFilter(QObject *watched, QEvent *event)
{
    const bool isTold = event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent;
    if (isTold && m_form && m_form->isAncestorOf(qobject_cast<QWidget *>(watched)))
        QMetaObject::invokeMethod(this, &PaymentScreen::formViewChanged, Qt::QueuedConnection);
    return false;
}

void PaymentScreen::releaseForm()
{
    // Without a parent it is hidden; the plugin deletes it.
    if (m_form)
        m_form->setParent(nullptr);
    m_form = nullptr;
}
} // namespace kiosk
