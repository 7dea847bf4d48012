// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/kioskwindow.h"

#include "terminal.h"
#include "window/brokenscreen.h"
#include "window/headerbar.h"
#include "window/idlescreen.h"
#include "window/look.h"
#include "window/outcometext.h"
#include "window/paymentscreen.h"
#include "window/receiptscreen.h"
#include "window/screens.h"
#include "window/servicescreen.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace kiosk {
KioskWindow::KioskWindow(Terminal &terminal, QWidget *parent)
    : QWidget(parent), m_terminal(terminal), m_screens(new Screens(terminal.info()))
{
    Look::setUp(*this);
    setFocusPolicy(Qt::ClickFocus);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_screens);

    connectScreens();
    connect(&m_terminal, &Terminal::screenChanged, this, &KioskWindow::showScreen);
    connect(&m_terminal, &Terminal::purchaseChanged, this, &KioskWindow::showPayment);
    connect(&m_terminal, &Terminal::committingChanged, this, &KioskWindow::showPayment);
    connect(&m_terminal, &Terminal::settingsSaved, &m_screens->service(), &ServiceScreen::setSaved);
    showScreen();
    // Seconds are counted down on the details.
    m_tick.start(1000, this);
}

void KioskWindow::timerEvent(QTimerEvent * /*event*/)
{
    if (m_terminal.screen() == Terminal::Screen::Details)
        showPayment();
}

void KioskWindow::connectScreens()
{
    connect(&m_screens->header(), &HeaderBar::serviceWanted, &m_terminal, &Terminal::openService);
    connect(&m_screens->idle(), &IdleScreen::startWanted, this, &KioskWindow::start);
    connect(&m_screens->payment(), &PaymentScreen::cancelWanted, &m_terminal, &Terminal::cancel);
    connect(&m_screens->payment(), &PaymentScreen::payWanted, &m_terminal, &Terminal::pay);
    connect(&m_screens->payment(), &PaymentScreen::formViewChanged, this, &KioskWindow::showPayment);
    connect(&m_screens->receipt(), &ReceiptScreen::closeWanted, &m_terminal, &Terminal::closeReceipt);
    connect(&m_screens->service(), &ServiceScreen::saveWanted, this, &KioskWindow::save);
    connect(&m_screens->service(), &ServiceScreen::closeWanted, &m_terminal, &Terminal::closeService);
}

void KioskWindow::showScreen()
{
    const Terminal::Screen screen = m_terminal.screen();
    m_screens->idle().setNotice({});
    m_screens->receipt().stop();
    if (screen != Terminal::Screen::Service)
        m_screens->service().leave();
    showPayment();
    // No frame around a button that nobody chose; forms see to the focus themselves.
    if (screen != Terminal::Screen::Form && screen != Terminal::Screen::Details)
        setFocus();
    switch (screen) {
    case Terminal::Screen::Idle:
        m_screens->showScreen(m_screens->idle());
        break;
    case Terminal::Screen::Form:
    case Terminal::Screen::Details:
        m_screens->showScreen(m_screens->payment());
        break;
    case Terminal::Screen::Receipt:
        m_screens->receipt().setReceipt(m_terminal.receipt(), m_terminal.currency());
        m_screens->showScreen(m_screens->receipt());
        break;
    case Terminal::Screen::Service:
        m_screens->service().open(m_terminal.settingsPage(), m_terminal.pluginIdentity(), m_terminal.entries(),
                                  m_terminal.currency());
        m_screens->service().setLedgerFault(m_terminal.ledgerFault());
        m_screens->showScreen(m_screens->service());
        break;
    case Terminal::Screen::Broken:
        m_screens->broken().setPluginFailure(m_terminal.brokenReason(), m_terminal.pluginIdentity(), m_terminal.info());
        m_screens->showScreen(m_screens->broken());
        break;
    }
}

void KioskWindow::showPayment()
{
    PaymentScreen::State state;
    state.hasDetails = m_terminal.screen() == Terminal::Screen::Details;
    state.isCommitting = m_terminal.isCommitting();
    state.canPay = m_terminal.canPay();
    state.canCancel = m_terminal.canCancel();
    state.acceptsCash = m_terminal.acceptsCash();
    state.secondsLeft = m_terminal.secondsToCommit();
    state.purchase = m_terminal.purchase();
    state.currency = m_terminal.currency();
    state.phone = m_terminal.info().phone;
    m_screens->payment().setForm(m_terminal.formWidget());
    m_screens->payment().setState(state);
}

void KioskWindow::start()
{
    // The reason is for the log; what the customer needs is what to do now.
    if (m_terminal.start().isEmpty() || m_terminal.screen() != Terminal::Screen::Idle)
        return;
    m_screens->idle().setNotice(QStringLiteral("Сейчас оплатить не получается. Попробуйте ещё раз или ") +
                                OutcomeText::call(m_terminal.info().phone));
}

void KioskWindow::save()
{
    // The reason is for kioskctl and its like; the screen sees it.
    if (!m_terminal.saveService().isEmpty())
        m_screens->service().setNotSaved();
}

void KioskWindow::closeEvent(QCloseEvent *event)
{
    // What was paid in is committed first; the program ends when the terminal says so.
    event->ignore();
    m_terminal.quit();
}
} // namespace kiosk
