// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/rawserver.h"

#include <functional>

/// Stands between a client and a service on this machine: what the client asks goes on byte for byte, and what the
/// service answers comes back as the test changes it. It works in the thread and event loop of its owner.
///
/// It is strict: what is no whole request, and an answer that does not end where its one length says, are complaints.
/// Where the service ends a connection without a whole answer, the client's is closed too.
class Relay : public QObject
{
    Q_OBJECT

public:
    /// What the client gets for an answer, which is a whole one.
    using Change = std::function<RawAnswer(const QByteArray &answer)>;

    explicit Relay(
        quint16 servicePort, Change change = [](const QByteArray &answer) { return RawAnswer{answer}; });

    /// From now on it is an HTTP proxy, which asks who has not told this name what it is (status 407, Basic), and takes
    /// from the others what is for a proxy alone: the host in the request line and the name.
    void askForName(const QByteArray &user, const QByteArray &password);

    [[nodiscard]] quint16 port() const { return m_server.port(); }
    /// The client's requests, those included that never came to the service.
    [[nodiscard]] const QList<RawRequest> &requests() const { return m_server.requests(); }
    [[nodiscard]] int openConnections() const { return m_server.openConnections(); }
    /// How many requests the service has not answered and never will.
    [[nodiscard]] int unanswered() const { return m_unanswered; }

    /// Empty when all went well.
    [[nodiscard]] QString complaint() const;

private:
    void pass(const RawRequest &request);
    [[nodiscard]] QByteArray forService(const RawRequest &request) const;
    /// @return whether the answer is whole, and the client has got its own.
    bool passBack(int connection, const QByteArray &answer);

    quint16 m_servicePort;
    Change m_change;
    RawServer m_server;
    QByteArray m_authorization;
    int m_unanswered = 0;
    QStringList m_complaints;
};
