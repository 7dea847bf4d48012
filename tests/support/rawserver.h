// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QTcpServer>

class QTcpSocket;

/// What the raw server does with one connection or request: it writes these bytes, whatever they are, and then does as
/// told. Nothing is added and nothing mended.
struct RawAnswer
{
    enum class When
    {
        Connected,
        HeadRead,
        RequestRead
    };
    enum class Then
    {
        StayOpen,
        Close,
        Reset
    };

    QByteArray bytes;
    Then then = Then::StayOpen;
    When when = When::RequestRead;
    /// Each piece leaves once the one before has; 0: all at once.
    int pieceSize = 0;

    /// A well-formed HTTP/1.1 answer with the length of @a body.
    [[nodiscard]] static QByteArray http(const QByteArray &status, const QByteArray &body,
                                         const QList<QByteArray> &headers = {});
    /// No answer, for the time being: see RawServer::send().
    [[nodiscard]] static RawAnswer held() { return {}; }
};

/// One request as it came over the wire.
struct RawRequest
{
    /// Counted from 0 in the order of arrival.
    int connection;
    /// Request line and header lines, without the empty line behind them.
    QByteArray head;
    QByteArray body;

    [[nodiscard]] QByteArray line() const;
    /// The values of the header lines of that name, in any case; none if there is none.
    [[nodiscard]] QList<QByteArray> header(const QByteArray &name) const;
};

/// A server on a free port of 127.0.0.1 that answers from a plan, without an HTTP library between: it can break the
/// protocol in every way. It works in the thread and event loop of its owner.
///
/// It is strict: a request without a plan, a plan without a request and bytes that belong to no request are complaints.
class RawServer : public QObject
{
    Q_OBJECT

public:
    explicit RawServer(QObject *parent = nullptr);
    ~RawServer() override;

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }

    /// The next request or connection that no earlier plan is for gets this answer.
    void plan(const RawAnswer &answer) { m_plans.append(answer); }
    /// Whatever no plan is for gets this answer, any number of times.
    void planForAll(const RawAnswer &answer);

    /// Answers on a connection now, as a rule one whose request was held.
    void send(int connection, const RawAnswer &answer);

    /// The whole requests read so far.
    [[nodiscard]] const QList<RawRequest> &requests() const { return m_requests; }
    /// The connections taken so far, and how many of them neither side has closed.
    [[nodiscard]] int connections() const { return m_sockets.size(); }
    [[nodiscard]] int openConnections() const;
    [[nodiscard]] bool isOpen(int connection) const;

    /// Empty when all went as planned.
    [[nodiscard]] QString complaint() const;

Q_SIGNALS:
    void received(int connection);

private:
    struct Connection
    {
        QTcpSocket *socket = nullptr;
        QByteArray input;
        RawAnswer answer;
        bool isPlanned = false;
    };

    void accept();
    void read(int connection);
    bool takePlan(Connection &connection);
    void take(int connection, int headSize, int bodySize);
    void write(int connection);
    void complain(const QString &what) { m_complaints.append(what); }

    QTcpServer m_server;
    QMap<int, Connection> m_sockets;
    QList<RawAnswer> m_plans;
    QList<RawAnswer> m_planForAll;
    QList<RawRequest> m_requests;
    QStringList m_complaints;
};
