// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkinfopayresponse.h"

#include "responseproperties.h"

#include <QXmlStreamReader>

#include <utility>

ParkInfoPayResponse::ParkInfoPayResponse(int resultCode, const Properties &properties)
    : BaseParkomatResponse(resultCode)
{
    ParkInfoPayResponse::parseProperties(properties);
}

ParkInfoPayResponse::ParkInfoPayResponse(const QString &text)
{
    QXmlStreamReader reader(text);
    parseXml(&reader);
}

ParkInfoPayResponse::ParkInfoPayResponse(const QByteArray &data)
{
    QXmlStreamReader reader(data);
    parseXml(&reader);
}

ParkInfoPayResponse::ParkInfoPayResponse(ParkInfoPayResponse &&other) noexcept
    : BaseParkomatResponse(std::as_const(other)), m_partnerId(std::move(other.m_partnerId)),
      m_sessionId(std::move(other.m_sessionId)), m_externalSessionId(std::move(other.m_externalSessionId)),
      m_anticipatedStopTime(std::move(other.m_anticipatedStopTime)), m_responseTime(std::move(other.m_responseTime))
{}

ParkInfoPayResponse &ParkInfoPayResponse::operator=(ParkInfoPayResponse &&other) noexcept
{
    BaseParkomatResponse::operator=(std::as_const(other));
    m_partnerId = std::move(other.m_partnerId);
    m_sessionId = std::move(other.m_sessionId);
    m_externalSessionId = std::move(other.m_externalSessionId);
    m_anticipatedStopTime = std::move(other.m_anticipatedStopTime);
    m_responseTime = std::move(other.m_responseTime);
    return *this;
}

bool ParkInfoPayResponse::parseXml(QXmlStreamReader *reader)
{
    return parseOperation(reader, OPERATION);
}

bool ParkInfoPayResponse::parseProperties(const Properties &properties)
{
    const ResponseProperties property(properties);
    m_partnerId = property.text(QStringLiteral("PartnerId"));
    m_sessionId = property.text(QStringLiteral("SessionId"));
    m_externalSessionId = property.text(QStringLiteral("ExternalSessionId"));
    m_anticipatedStopTime = property.dateTime(QStringLiteral("AnticipatedStopTime"));
    m_responseTime = property.dateTime(QStringLiteral("AnswerTime"));
    setErrorInfo(property.text(QStringLiteral("ErrorInfo")));
    return resultCode() == SUCCESS;
}

bool operator==(const ParkInfoPayResponse &left, const ParkInfoPayResponse &right)
{
    using Base = BaseParkomatResponse;
    return static_cast<const Base &>(left) == static_cast<const Base &>(right) &&
           left.m_partnerId == right.m_partnerId && left.m_sessionId == right.m_sessionId &&
           left.m_externalSessionId == right.m_externalSessionId &&
           left.m_anticipatedStopTime == right.m_anticipatedStopTime && left.m_responseTime == right.m_responseTime;
}
