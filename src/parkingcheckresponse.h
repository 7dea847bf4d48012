// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "baseparkomatresponse.h"
#include "extension/fixnumber.h"

#include <QDateTime>
#include <QMetaType>

/// What the cash service answers to a ParkingCheckRequest: which parking session it is, since when, what is paid and
/// owed.
///
/// A field whose property is missing or malformed is empty, an invalid date-time, a zero amount or false. Whoever uses
/// the fields looks at resultCode() first.
class ParkingCheckResponse : public BaseParkomatResponse
{
public:
    /// The wire's name for this answer, in lower case.
    static inline const QLatin1String OPERATION = QLatin1String("parkingcheckresponse");

    /// Result code -1, everything else empty.
    ParkingCheckResponse() = default;
    ParkingCheckResponse(int resultCode, const Properties &properties);
    /// From a whole document; result code -1 and nothing else when it is no answer to a ParkingCheck.
    explicit ParkingCheckResponse(const QString &text);
    explicit ParkingCheckResponse(const QByteArray &data);
    ParkingCheckResponse(const ParkingCheckResponse &) = default;
    /// Moves texts and date-times; @a other keeps its result code, error text and amounts.
    ParkingCheckResponse(ParkingCheckResponse &&other) noexcept;
    ParkingCheckResponse &operator=(const ParkingCheckResponse &) = default;
    ParkingCheckResponse &operator=(ParkingCheckResponse &&other) noexcept;
    ~ParkingCheckResponse() override = default;

    /// Reads a document into this object. @return true only for an answer to a ParkingCheck with result code 1.
    bool parseXml(QXmlStreamReader *reader);
    bool parseProperties(const Properties &properties) override;

    [[nodiscard]] QString sessionId() const { return m_sessionId; }
    void setSessionId(const QString &sessionId) { m_sessionId = sessionId; }

    [[nodiscard]] QString externalSessionId() const { return m_externalSessionId; }
    void setExternalSessionId(const QString &id) { m_externalSessionId = id; }

    [[nodiscard]] QString parkingId() const { return m_parkingId; }
    void setParkingId(const QString &parkingId) { m_parkingId = parkingId; }

    /// When the stay began.
    [[nodiscard]] QDateTime startTime() const { return m_startTime; }
    void setStartTime(const QDateTime &time) { m_startTime = time; }

    [[nodiscard]] QDateTime anticipatedStopTime() const { return m_anticipatedStopTime; }
    void setAnticipatedStopTime(const QDateTime &time) { m_anticipatedStopTime = time; }

    [[nodiscard]] QDateTime lastChangeTime() const { return m_lastChangeTime; }
    void setLastChangeTime(const QDateTime &time) { m_lastChangeTime = time; }

    /// What is owed, in hundredths.
    [[nodiscard]] FixNumber totalCharge() const { return m_totalCharge; }
    void setTotalCharge(const FixNumber &amount) { m_totalCharge = amount; }

    /// What has been paid, in hundredths.
    [[nodiscard]] FixNumber amountSum() const { return m_amountSum; }
    void setAmountSum(const FixNumber &amount) { m_amountSum = amount; }

    [[nodiscard]] bool canExtend() const { return m_canExtend; }
    void setCanExtend(bool canExtend) { m_canExtend = canExtend; }

    [[nodiscard]] bool canStop() const { return m_canStop; }
    void setCanStop(bool canStop) { m_canStop = canStop; }

    /// When the service answered: the property "AnswerTime".
    [[nodiscard]] QDateTime responseTime() const { return m_responseTime; }
    void setResponseTime(const QDateTime &time) { m_responseTime = time; }

    /// Result code and every field; not the error text.
    friend bool operator==(const ParkingCheckResponse &left, const ParkingCheckResponse &right);
    friend bool operator!=(const ParkingCheckResponse &left, const ParkingCheckResponse &right)
    {
        return !(left == right);
    }

private:
    QString m_sessionId;
    QString m_externalSessionId;
    QString m_parkingId;
    QDateTime m_startTime;
    QDateTime m_anticipatedStopTime;
    QDateTime m_lastChangeTime;
    FixNumber m_totalCharge;
    FixNumber m_amountSum;
    bool m_canExtend = false;
    bool m_canStop = false;
    QDateTime m_responseTime;
};

Q_DECLARE_METATYPE(ParkingCheckResponse)
