// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// Requests as a terminal sends them, made of the few things that tests change.
namespace Requests {
const char DEMO_CARD[] = "78563412";

struct Values
{
    QByteArray termId = "0042";
    QByteArray sessionId = "004224140509067001";
    QByteArray cardUid = DEMO_CARD;
    QByteArray uin = "1187";
    QByteArray amount = "15000";
    QByteArray type = "full";
};

inline QByteArray header(const Values &values)
{
    return "    <PartnerId>north</PartnerId>\n"
           "    <ParkingId>12</ParkingId>\n"
           "    <TermId>" +
           values.termId +
           "</TermId>\n"
           "    <SessionId>" +
           values.sessionId +
           "</SessionId>\n"
           "    <CardUid>" +
           values.cardUid +
           "</CardUid>\n"
           "    <CardId>000123456</CardId>\n"
           "    <RequestTime>2024-03-07T14:05:09+03:00</RequestTime>\n";
}

inline QByteArray parkingCheck(const Values &values = {})
{
    return "<?xml version=\"1.0\"?>\n"
           "<Request RecordVersion=\"2\" NumRequest=\"1\" Operation=\"ParkingCheck\" ResultCode=\"0\">\n" +
           header(values) + "</Request>\n";
}

inline QByteArray parkInfoPay(const Values &values = {})
{
    return "<?xml version=\"1.0\"?>\n"
           "<Request RecordVersion=\"2\" NumRequest=\"1\" Operation=\"ParkInfoPay\">\n" +
           header(values) +
           "    <Payments>\n"
           "        <Payment>\n"
           "            <Uin>" +
           values.uin +
           "</Uin>\n"
           "            <DateTime>2024-03-07T14:06:41+03:00</DateTime>\n"
           "            <Amount>" +
           values.amount +
           "</Amount>\n"
           "            <Type>" +
           values.type +
           "</Type>\n"
           "        </Payment>\n"
           "    </Payments>\n"
           "</Request>\n";
}

inline Values forCard(const QByteArray &cardUid)
{
    Values values;
    values.cardUid = cardUid;
    return values;
}

/// Payments of one session that differ in their number alone.
inline Values numbered(int uin)
{
    Values values;
    values.uin = QByteArray::number(uin);
    values.amount = "100";
    values.type = "partial";
    return values;
}
} // namespace Requests
