// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/payment.h"
#include "parkomatcarddata.h"

#include <QString>

/// The requests' text put together by hand, piece by piece, without an XML writer: nothing is escaped.
namespace PlainRequests {
/// What every request begins with.
struct Header
{
    QString recordVersion;
    QString partnerId;
    QString parkingId;
    QString termId;
    QString sessionId;
    QString cardUid;
    QString cardId;
    QString requestTime;
};

/// What a payment is told by.
struct PaymentTexts
{
    QString uin;
    QString dateTime;
    QString amount;
    QString type;
};

/// The values that the plugin's request would draw now.
[[nodiscard]] Header drawHeader(const ParkomatCardData &card);
[[nodiscard]] PaymentTexts drawPayment(const Payment &payment, const FixNumber &totalCharge);

[[nodiscard]] QString parkingCheck(const Header &header);
[[nodiscard]] QString parkInfoPay(const Header &header, const PaymentTexts &payment);
} // namespace PlainRequests
