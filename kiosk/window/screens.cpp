// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/screens.h"

#include "window/brokenscreen.h"
#include "window/headerbar.h"
#include "window/idlescreen.h"
#include "window/paymentscreen.h"
#include "window/receiptscreen.h"
#include "window/servicescreen.h"
#include "window/startingscreen.h"

#include <QStackedWidget>
#include <QVBoxLayout>

namespace kiosk {
Screens::Screens(const TrelmInfo &info, QWidget *parent)
    : QWidget(parent), m_header(new HeaderBar(info)), m_stack(new QStackedWidget), m_idle(new IdleScreen),
      m_payment(new PaymentScreen), m_receipt(new ReceiptScreen), m_service(new ServiceScreen),
      m_broken(new BrokenScreen), m_starting(new StartingScreen)
{
    // What the style sheet goes by.
    setObjectName(QStringLiteral("screens"));
    setAttribute(Qt::WA_StyledBackground);
    for (QWidget *screen : QList<QWidget *>{m_idle, m_payment, m_receipt, m_service, m_broken, m_starting})
        m_stack->addWidget(screen);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(m_stack, 1);
}

void Screens::showScreen(QWidget &screen)
{
    // A payment needs all the room there is.
    m_header->setVisible(&screen != m_payment);
    m_stack->setCurrentWidget(&screen);
}
} // namespace kiosk
