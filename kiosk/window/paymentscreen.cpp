// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/paymentscreen.h"

#include "window/amounttext.h"
#include "window/moneyline.h"

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
    return text + QStringLiteral(" Платёж завершится через %1 с.").arg(state.secondsLeft);
}

QString hintText(const PaymentScreen::State &state)
{
    if (state.isCommitting)
        return QStringLiteral("Платёж подтверждается. Пожалуйста, не отходите от терминала.");
    if (!state.hasDetails || !state.purchase.hasCash())
        return {};
    if (state.purchase.isNothingDue())
        return withSeconds(QStringLiteral("Деньги вернут по номеру платежа."), state);
    if (state.purchase.change() > FixNumber())
        return withSeconds(QStringLiteral("Сдачу вернут по номеру платежа."), state);
    return withSeconds(QStringLiteral("Отменить платёж уже нельзя."), state);
}

/// Whether the view that is up has buttons of its own that end it: a second one below would be one too many.
bool hasWayOut(const QWidget *form)
{
    const auto buttons = form != nullptr ? form->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
    return std::any_of(buttons.begin(), buttons.end(), [](const QAbstractButton *button) {
        const QStringList names = {QStringLiteral("okButton"), QStringLiteral("cancelButton"),
                                   QStringLiteral("noButton")};
        return button->isVisible() && names.contains(button->objectName());
    });
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
    m_hint->setText(hintText(state));
    m_hint->setAlignment(state.isCommitting ? Qt::AlignCenter : Qt::AlignLeft | Qt::AlignVCenter);
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
    m_money->setVisible(hasMoney);
    // Where there is nothing to pay and nothing was paid in, it would never do anything.
    m_pay->setVisible(hasMoney && (!m_state.purchase.isNothingDue() || m_state.purchase.hasCash()));
    m_cancel->setVisible(m_state.canCancel && !m_state.isCommitting && !isAsked);
    m_bar->setVisible(m_state.isCommitting || hasMoney || !m_cancel->isHidden());
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
