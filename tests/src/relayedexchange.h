// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "serviceexchange.h"
#include "support/relay.h"

/// Rows of what becomes of the cash service's own answers on their way, and one exchange that verifies a row.
namespace RelayedExchange {
struct Row
{
    ServiceKind kind;
    Relay::Change change;
    QString seen;
    /// How often Qt may post; if more than once, then it does so twice at least.
    int mostTimes = 1;
};

/// An answer of the service in its parts.
struct Parts
{
    explicit Parts(const QByteArray &answer)
        : head(answer.left(answer.indexOf("\r\n\r\n"))), body(answer.mid(head.size() + 4))
    {}

    /// The whole with another status, length or body than it had.
    [[nodiscard]] QByteArray as(const QByteArray &status, const QByteArray &newBody,
                                const QList<QByteArray> &lengths) const
    {
        QList<QByteArray> lines = {"HTTP/1.1 " + status};
        const QList<QByteArray> old = head.split('\n');
        for (const QByteArray &line : old.mid(1)) {
            if (!line.toLower().startsWith("content-length:"))
                lines.append(line.trimmed());
        }
        return (lines + lengths).join("\r\n") + "\r\n\r\n" + newBody;
    }
    [[nodiscard]] QByteArray with(const QByteArray &newBody, const QList<QByteArray> &headers = {}) const
    {
        return as("200 OK", newBody, headers + QList<QByteArray>{lengthOf(newBody)});
    }
    /// Up to where an answer has just become one.
    [[nodiscard]] QByteArray cut() const { return body.left(body.indexOf("<SessionId>") + 4); }

    [[nodiscard]] static QByteArray lengthOf(const QByteArray &body)
    {
        return "Content-Length: " + QByteArray::number(body.size());
    }

    QByteArray head;
    QByteArray body;
};

/// Posts once through a relay and verifies that there is one signal, that every request came to the service, and that
/// this registered the payment once, however often it came and whatever became of its answer.
inline void verify(const Row &row)
{
    const CashService service;
    const Relay relay(service.port(), row.change);
    useService(relay.port());
    ServiceExchange(row.kind).verify(row.seen);
    WAIT_FOR(relay.openConnections(), 0);
    QCOMPARE(relay.complaint(), QString());
    QCOMPARE(relay.unanswered(), 0);
    const int times = relay.requests().size();
    QVERIFY2(times >= (row.mostTimes > 1 ? 2 : 1) && times <= row.mostTimes, qPrintable(QString::number(times)));
    QCOMPARE(service.requests(row.kind.operation()).size(), times);
    QCOMPARE(service.payments().size(), row.kind.isRegistered() ? 1 : 0);
}
} // namespace RelayedExchange

Q_DECLARE_METATYPE(RelayedExchange::Row)
