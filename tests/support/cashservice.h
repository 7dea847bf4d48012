// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "cashservice/serviceprocess.h"

#include <QJsonArray>

/// The cash service's program on a free port, with its seeded car park and the faults given: what it saw and what it
/// keeps, by its own account. The test's target needs CASH_SERVICE_PROGRAM.
class CashService
{
public:
    explicit CashService(const QStringList &arguments = {}) : m_process(arguments) {}

    [[nodiscard]] quint16 port() const { return static_cast<quint16>(m_process.port()); }

    /// Bodies of the requests so far of an operation ("ParkingCheck" or "ParkInfoPay"), in order.
    [[nodiscard]] QStringList requests(const QString &operation) const
    {
        const QString startLine = QStringLiteral("POST /api/%1 HTTP/1.1").arg(operation);
        QStringList bodies;
        const QJsonArray all = admin("requests").value(QStringLiteral("requests")).toArray();
        for (const QJsonValue &each : all) {
            const QJsonObject request = each[QStringLiteral("request")].toObject();
            if (request.value(QStringLiteral("startLine")).toString() == startLine)
                bodies.append(request.value(QStringLiteral("body")).toString());
        }
        return bodies;
    }

    /// How many requests there were, of whatever kind.
    [[nodiscard]] int exchanges() const { return admin("requests").value(QStringLiteral("count")).toInt(); }

    /// The registered payments, in order: see "uin", "cardUid", "amount" (hundredths), "type" and "outcome".
    [[nodiscard]] QJsonArray payments() const { return admin("payments").value(QStringLiteral("payments")).toArray(); }

    /// What a card still owes, in hundredths. @param uid hexadecimal, as a person reads it: "12345678".
    [[nodiscard]] int owed(const QString &uid) const { return session(uid).value(QStringLiteral("owed")).toInt(-1); }
    /// When it came, in local time.
    [[nodiscard]] QString entered(const QString &uid) const
    {
        return session(uid).value(QStringLiteral("entered")).toString();
    }

    /// Sets one more fault. @return whether the service took the rule.
    [[nodiscard]] bool setFault(const QString &rule) const
    {
        const QByteArray json = QJsonDocument(QJsonObject{{QStringLiteral("rule"), rule}}).toJson();
        return HttpClient::exchange(m_process.port(), "POST", "/admin/faults", json).status < 300;
    }

    /// It is gone at once, and its port refuses.
    void kill() { m_process.kill(); }
    /// Ends it by a signal. @return its exit status, or -1 when it did not end by itself.
    [[nodiscard]] int endBy(int signal) { return m_process.endBy(signal); }

private:
    [[nodiscard]] QJsonObject session(const QString &uid) const
    {
        const QJsonArray sessions = admin("sessions").value(QStringLiteral("sessions")).toArray();
        for (const QJsonValue &each : sessions) {
            if (each[QStringLiteral("uid")].toString() == uid)
                return each.toObject();
        }
        return QJsonObject();
    }

    [[nodiscard]] QJsonObject admin(const char *what) const
    {
        return adminJson(m_process.port(), QByteArray("/admin/") + what);
    }

    ServiceProcess m_process;
};
