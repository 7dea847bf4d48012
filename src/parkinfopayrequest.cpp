// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkinfopayrequest.h"

#include "parkomatrequestwriter.h"
#include "parkomatsettings.h"

QString ParkInfoPayRequest::toXml() const
{
    const FixNumber total = m_pay.total();
    ParkomatRequestWriter writer;
    writer.writeStart(ParkomatSettings::PARK_INFO_PAY);
    writer.writeHeader(m_card);
    writer.writeStartElement(QStringLiteral("Payments"));
    writer.writeStartElement(QStringLiteral("Payment"));
    writer.writeTextElement(QStringLiteral("Uin"), QString::number(m_pay.uid()));
    writer.writeTimeElement(QStringLiteral("DateTime"), m_pay.created());
    writer.writeTextElement(QStringLiteral("Amount"), QString::number(total.value()));
    writer.writeTextElement(QStringLiteral("Type"),
                            m_totalCharge <= total ? QStringLiteral("full") : QStringLiteral("partial"));
    return writer.finish();
}
