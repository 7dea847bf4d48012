// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plainrequests.h"

#include "parkomatdatastorage.h"
#include "parkomatsettings.h"
#include "parkomattimestamp.h"

namespace {
// Longer than either request: the text is allocated once.
constexpr int LONGEST_REQUEST = 1000;

QString start(const PlainRequests::Header &header, QLatin1String operation, QLatin1String moreAttributes)
{
    QString text;
    text.reserve(LONGEST_REQUEST);
    text += QLatin1String("<?xml version=\"1.0\"?>\n<Request RecordVersion=\"");
    text += header.recordVersion;
    text += QLatin1String("\" NumRequest=\"1\" Operation=\"");
    text += operation;
    text += QLatin1Char('"');
    text += moreAttributes;
    text += QLatin1Char('>');
    return text;
}

void appendElement(QString &text, QLatin1String indent, QLatin1String name, const QString &value)
{
    text += indent;
    text += QLatin1Char('<');
    text += name;
    text += QLatin1Char('>');
    text += value;
    text += QLatin1String("</");
    text += name;
    text += QLatin1Char('>');
}

void appendHeader(QString &text, const PlainRequests::Header &header)
{
    const QLatin1String indent("\n    ");
    appendElement(text, indent, QLatin1String("PartnerId"), header.partnerId);
    appendElement(text, indent, QLatin1String("ParkingId"), header.parkingId);
    appendElement(text, indent, QLatin1String("TermId"), header.termId);
    appendElement(text, indent, QLatin1String("SessionId"), header.sessionId);
    appendElement(text, indent, QLatin1String("CardUid"), header.cardUid);
    appendElement(text, indent, QLatin1String("CardId"), header.cardId);
    appendElement(text, indent, QLatin1String("RequestTime"), header.requestTime);
}
} // namespace

PlainRequests::Header PlainRequests::drawHeader(const ParkomatCardData &card)
{
    const QDateTime now = QDateTime::currentDateTime();
    const ParkomatSettings settings;
    return {settings.recordVersion(),
            settings.partnerId(),
            settings.parkingId(),
            settings.termId(),
            ParkomatDataStorage().getNewSessionId(),
            card.uidHex(),
            card.id(),
            ParkomatTimeStamp::render(now, ParkomatTimeStamp::offset(now))};
}

PlainRequests::PaymentTexts PlainRequests::drawPayment(const Payment &payment, const FixNumber &totalCharge)
{
    const FixNumber total = payment.total();
    return {QString::number(payment.uid()),
            ParkomatTimeStamp::render(payment.created(), ParkomatTimeStamp::offset(QDateTime::currentDateTime())),
            QString::number(total.value()), totalCharge <= total ? QStringLiteral("full") : QStringLiteral("partial")};
}

QString PlainRequests::parkingCheck(const Header &header)
{
    QString text = start(header, QLatin1String("ParkingCheck"), QLatin1String(" ResultCode=\"0\""));
    appendHeader(text, header);
    text += QLatin1String("\n</Request>\n");
    return text;
}

QString PlainRequests::parkInfoPay(const Header &header, const PaymentTexts &payment)
{
    QString text = start(header, QLatin1String("ParkInfoPay"), QLatin1String());
    appendHeader(text, header);
    const QLatin1String indent("\n            ");
    text += QLatin1String("\n    <Payments>\n        <Payment>");
    appendElement(text, indent, QLatin1String("Uin"), payment.uin);
    appendElement(text, indent, QLatin1String("DateTime"), payment.dateTime);
    appendElement(text, indent, QLatin1String("Amount"), payment.amount);
    appendElement(text, indent, QLatin1String("Type"), payment.type);
    text += QLatin1String("\n        </Payment>\n    </Payments>\n</Request>\n");
    return text;
}
