// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"
#include "parkomatcarddata.h"

#include <QString>

/// The request that registers a payment with the cash service. Rendered and posted by the HTTP client.
class ParkInfoPayRequest
{
public:
    /// @param totalCharge what was owed: a payment below it is a partial one.
    ParkInfoPayRequest(const ParkomatCardData &card, const Payment &pay, const FixNumber &totalCharge)
        : m_card(card), m_pay(pay), m_totalCharge(totalCharge)
    {}

    [[nodiscard]] ParkomatCardData card() const { return m_card; }
    void setCard(const ParkomatCardData &card) { m_card = card; }

    [[nodiscard]] Payment pay() const { return m_pay; }
    void setPay(const Payment &pay) { m_pay = pay; }

    [[nodiscard]] FixNumber totalCharge() const { return m_totalCharge; }
    void setTotalCharge(const FixNumber &totalCharge) { m_totalCharge = totalCharge; }

    /// The whole document. Settings, session identifier and time are drawn afresh, so no two renderings are alike.
    [[nodiscard]] QString toXml() const;

    friend bool operator==(const ParkInfoPayRequest &left, const ParkInfoPayRequest &right)
    {
        return left.m_card == right.m_card && left.m_pay == right.m_pay && left.m_totalCharge == right.m_totalCharge;
    }
    friend bool operator!=(const ParkInfoPayRequest &left, const ParkInfoPayRequest &right) { return !(left == right); }

private:
    ParkomatCardData m_card;
    Payment m_pay;
    FixNumber m_totalCharge;
};
