// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QStackedWidget;
struct TrelmInfo;

namespace kiosk {
class BrokenScreen;
class HeaderBar;
class IdleScreen;
class PaymentScreen;
class ReceiptScreen;
class ServiceScreen;
class StartingScreen;

/// The terminal's screens, of which one is up, and the header above them. It knows nothing of the terminal.
class Screens : public QWidget
{
    Q_OBJECT

public:
    explicit Screens(const TrelmInfo &info, QWidget *parent = nullptr);

    [[nodiscard]] HeaderBar &header() { return *m_header; }
    [[nodiscard]] IdleScreen &idle() { return *m_idle; }
    [[nodiscard]] PaymentScreen &payment() { return *m_payment; }
    [[nodiscard]] ReceiptScreen &receipt() { return *m_receipt; }
    [[nodiscard]] ServiceScreen &service() { return *m_service; }
    [[nodiscard]] BrokenScreen &broken() { return *m_broken; }
    [[nodiscard]] StartingScreen &starting() { return *m_starting; }

    /// @param screen one of the above.
    void showScreen(QWidget &screen);

private:
    HeaderBar *m_header;
    QStackedWidget *m_stack;
    IdleScreen *m_idle;
    PaymentScreen *m_payment;
    ReceiptScreen *m_receipt;
    ServiceScreen *m_service;
    BrokenScreen *m_broken;
    StartingScreen *m_starting;
};
} // namespace kiosk
