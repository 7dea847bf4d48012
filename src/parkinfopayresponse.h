// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "baseparkomatresponse.h"

#include <QDateTime>
#include <QMetaType>

/// What the cash service answers to a ParkInfoPayRequest: the payment is registered, or why it is not.
///
/// A field whose property is missing or malformed is empty or an invalid date-time. Nothing here compares the returned
/// identifiers with the request's. Whoever uses the fields looks at resultCode() first.
class ParkInfoPayResponse : public BaseParkomatResponse
{
public:
    /// The wire's name for this answer, in lower case.
    static inline const QLatin1String OPERATION = QLatin1String("parkinfopayresponse");

    /// Result code -1, everything else empty.
    ParkInfoPayResponse() = default;
    ParkInfoPayResponse(int resultCode, const Properties &properties);
    /// From a whole document; result code -1 and nothing else when it is no answer to a ParkInfoPay.
    explicit ParkInfoPayResponse(const QString &text);
    explicit ParkInfoPayResponse(const QByteArray &data);
    ParkInfoPayResponse(const ParkInfoPayResponse &) = default;
    /// Moves texts and date-times; @a other keeps its result code and error text.
    ParkInfoPayResponse(ParkInfoPayResponse &&other) noexcept;
    ParkInfoPayResponse &operator=(const ParkInfoPayResponse &) = default;
    ParkInfoPayResponse &operator=(ParkInfoPayResponse &&other) noexcept;
    ~ParkInfoPayResponse() override = default;

    /// Reads a document into this object. @return true only for an answer to a ParkInfoPay with result code 1.
    bool parseXml(QXmlStreamReader *reader);
    bool parseProperties(const Properties &properties) override;

    [[nodiscard]] QString partnerId() const { return m_partnerId; }
    void setPartnerId(const QString &partnerId) { m_partnerId = partnerId; }

    [[nodiscard]] QString sessionId() const { return m_sessionId; }
    void setSessionId(const QString &sessionId) { m_sessionId = sessionId; }

    [[nodiscard]] QString externalSessionId() const { return m_externalSessionId; }
    void setExternalSessionId(const QString &id) { m_externalSessionId = id; }

    [[nodiscard]] QDateTime anticipatedStopTime() const { return m_anticipatedStopTime; }
    void setAnticipatedStopTime(const QDateTime &time) { m_anticipatedStopTime = time; }

    /// When the service answered: the property "AnswerTime".
    [[nodiscard]] QDateTime responseTime() const { return m_responseTime; }
    void setResponseTime(const QDateTime &time) { m_responseTime = time; }

    /// Result code and every field; not the error text.
    friend bool operator==(const ParkInfoPayResponse &left, const ParkInfoPayResponse &right);
    friend bool operator!=(const ParkInfoPayResponse &left, const ParkInfoPayResponse &right)
    {
        return !(left == right);
    }

private:
    QString m_partnerId;
    QString m_sessionId;
    QString m_externalSessionId;
    QDateTime m_anticipatedStopTime;
    QDateTime m_responseTime;
};

Q_DECLARE_METATYPE(ParkInfoPayResponse)
