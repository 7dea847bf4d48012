// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkingcheckresponse.h"

#include "responseproperties.h"

#include <QXmlStreamReader>

#include <utility>

ParkingCheckResponse::ParkingCheckResponse(int resultCode, const Properties &properties)
    : BaseParkomatResponse(resultCode)
{
    ParkingCheckResponse::parseProperties(properties);
}

ParkingCheckResponse::ParkingCheckResponse(const QString &text)
{
    QXmlStreamReader reader(text);
    parseXml(&reader);
}

ParkingCheckResponse::ParkingCheckResponse(const QByteArray &data)
{
    QXmlStreamReader reader(data);
    parseXml(&reader);
}

ParkingCheckResponse::ParkingCheckResponse(ParkingCheckResponse &&other) noexcept
    : BaseParkomatResponse(std::as_const(other)), m_sessionId(std::move(other.m_sessionId)),
      m_externalSessionId(std::move(other.m_externalSessionId)), m_parkingId(std::move(other.m_parkingId)),
      m_startTime(std::move(other.m_startTime)), m_anticipatedStopTime(std::move(other.m_anticipatedStopTime)),
      m_lastChangeTime(std::move(other.m_lastChangeTime)), m_totalCharge(other.m_totalCharge),
      m_amountSum(other.m_amountSum), m_canExtend(other.m_canExtend), m_canStop(other.m_canStop),
      m_responseTime(std::move(other.m_responseTime))
{}

ParkingCheckResponse &ParkingCheckResponse::operator=(ParkingCheckResponse &&other) noexcept
{
    BaseParkomatResponse::operator=(std::as_const(other));
    m_sessionId = std::move(other.m_sessionId);
    m_externalSessionId = std::move(other.m_externalSessionId);
    m_parkingId = std::move(other.m_parkingId);
    m_startTime = std::move(other.m_startTime);
    m_anticipatedStopTime = std::move(other.m_anticipatedStopTime);
    m_lastChangeTime = std::move(other.m_lastChangeTime);
    m_totalCharge = other.m_totalCharge;
    m_amountSum = other.m_amountSum;
    m_canExtend = other.m_canExtend;
    m_canStop = other.m_canStop;
    m_responseTime = std::move(other.m_responseTime);
    return *this;
}

bool ParkingCheckResponse::parseXml(QXmlStreamReader *reader)
{
    return parseOperation(reader, OPERATION);
}

bool ParkingCheckResponse::parseProperties(const Properties &properties)
{
    const ResponseProperties property(properties);
    m_sessionId = property.text(QStringLiteral("SessionId"));
    m_externalSessionId = property.text(QStringLiteral("ExternalSessionId"));
    m_parkingId = property.text(QStringLiteral("ParkingId"));
    m_startTime = property.dateTime(QStringLiteral("StartTime"));
    m_anticipatedStopTime = property.dateTime(QStringLiteral("AnticipatedStopTime"));
    m_lastChangeTime = property.dateTime(QStringLiteral("LastChangeTime"));
    m_totalCharge = property.amount(QStringLiteral("TotalCharge"));
    m_amountSum = property.amount(QStringLiteral("AmountSum"));
    m_canExtend = property.flag(QStringLiteral("CanExtend"));
    m_canStop = property.flag(QStringLiteral("CanStop"));
    m_responseTime = property.dateTime(QStringLiteral("AnswerTime"));
    setErrorInfo(property.text(QStringLiteral("ErrorInfo")));
    return resultCode() == SUCCESS;
}

bool operator==(const ParkingCheckResponse &left, const ParkingCheckResponse &right)
{
    using Base = BaseParkomatResponse;
    return static_cast<const Base &>(left) == static_cast<const Base &>(right) &&
           left.m_sessionId == right.m_sessionId && left.m_externalSessionId == right.m_externalSessionId &&
           left.m_parkingId == right.m_parkingId && left.m_startTime == right.m_startTime &&
           left.m_anticipatedStopTime == right.m_anticipatedStopTime &&
           left.m_lastChangeTime == right.m_lastChangeTime && left.m_totalCharge == right.m_totalCharge &&
           left.m_amountSum == right.m_amountSum && left.m_canExtend == right.m_canExtend &&
           left.m_canStop == right.m_canStop && left.m_responseTime == right.m_responseTime;
}
