// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/handlerbench.h"
#include "support/rawserver.h"

#include <QXmlStreamReader>

/// Text of the first element of that name; a null text where there is none.
[[nodiscard]] inline QString elementText(const QString &xml, const QString &name)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == name)
            return reader.readElementText();
    }
    return QString();
}

/// A cash service whose answers the test arranges one by one. It is strict: see complaint().
class ScriptedService
{
public:
    ScriptedService() { HandlerBench::useService(m_server.port()); }

    /// Answer to a ParkingCheck. @param fields more elements, as XML.
    [[nodiscard]] static QByteArray check(qint64 totalCharge = 15'000, const QByteArray &fields = QByteArray())
    {
        return "<Response Operation=\"ParkingCheckResponse\" "
               "ResultCode=\"1\"><SessionId>uin-1</SessionId><TotalCharge>" +
               QByteArray::number(totalCharge) + "</TotalCharge>" + fields + "</Response>";
    }
    [[nodiscard]] static QByteArray pay()
    {
        return QByteArrayLiteral("<Response Operation=\"ParkInfoPayResponse\" ResultCode=\"1\"/>");
    }
    /// Result code 4. To which operation makes no difference.
    [[nodiscard]] static QByteArray refusal(const QByteArray &text)
    {
        return "<Response Operation=\"ParkingCheckResponse\" ResultCode=\"4\"><ErrorInfo>" + text +
               "</ErrorInfo></Response>";
    }

    /// The next request gets this answer.
    void plan(const QByteArray &body) { m_server.plan({RawAnswer::http("200 OK", body)}); }
    /// The next request gets none until release().
    void hold() { m_server.plan(RawAnswer::held()); }
    /// Answers a request that was held. @param request counted from 0.
    void release(int request, const QByteArray &body)
    {
        m_server.send(m_server.requests().at(request).connection, {RawAnswer::http("200 OK", body)});
    }

    [[nodiscard]] int requests() const { return m_server.requests().size(); }
    /// "ParkingCheck" and "ParkInfoPay" in the order in which they came.
    [[nodiscard]] QStringList operations() const
    {
        QStringList all;
        for (const RawRequest &request : m_server.requests())
            all.append(QString::fromUtf8(request.line()).section(QLatin1Char(' '), 1, 1).section(QLatin1Char('/'), -1));
        return all;
    }
    /// The text of an element of a request that came.
    [[nodiscard]] QString sent(int request, const QString &element) const
    {
        return elementText(QString::fromUtf8(m_server.requests().at(request).body), element);
    }

    /// Empty when each request was planned for, and each plan had its request.
    [[nodiscard]] QString complaint() const { return m_server.complaint(); }

private:
    RawServer m_server;
};
