// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkingcheckrequest.h"

#include "parkomatrequestwriter.h"
#include "parkomatsettings.h"

QString ParkingCheckRequest::toXml() const
{
    ParkomatRequestWriter writer;
    writer.writeStart(ParkomatSettings::PARKING_CHECK);
    // Only this request has the attribute; the other one goes without, as agreed with the cash service.
    writer.writeAttribute(QStringLiteral("ResultCode"), QStringLiteral("0"));
    writer.writeHeader(m_card);
    return writer.finish();
}
