// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/rawserver.h"

#include <QStringList>
#include <QTcpSocket>

#include <algorithm>
#include <utility>

#include <sys/socket.h>

namespace {
const QByteArray HEAD_END = QByteArrayLiteral("\r\n\r\n");

/// The connection ends with a reset instead of a farewell.
void reset(QTcpSocket *socket)
{
    const linger atOnce = {1, 0};
    ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    socket->abort();
}
} // namespace

QByteArray RawAnswer::http(const QByteArray &status, const QByteArray &body, const QList<QByteArray> &headers)
{
    QByteArray bytes = "HTTP/1.1 " + status + "\r\n";
    for (const QByteArray &header : headers)
        bytes += header + "\r\n";
    return bytes + "Content-Length: " + QByteArray::number(body.size()) + HEAD_END + body;
}

QByteArray RawRequest::line() const
{
    return head.left(head.indexOf("\r\n"));
}

QList<QByteArray> RawRequest::header(const QByteArray &name) const
{
    QList<QByteArray> values;
    QList<QByteArray> lines = head.split('\n');
    lines.removeFirst();
    for (const QByteArray &line : lines) {
        const int colon = line.indexOf(':');
        if (line.left(colon).toLower() == name.toLower())
            values.append(line.mid(colon + 1).trimmed());
    }
    return values;
}

RawServer::RawServer(QObject *parent) : QObject(parent)
{
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("no free port: %s", qPrintable(m_server.errorString()));
    connect(&m_server, &QTcpServer::newConnection, this, &RawServer::accept);
}

RawServer::~RawServer()
{
    // What the sockets still have to say would reach a half-destroyed server.
    for (const Connection &connection : qAsConst(m_sockets))
        connection.socket->disconnect(this);
}

void RawServer::planForAll(const RawAnswer &answer)
{
    m_planForAll = {answer};
}

void RawServer::accept()
{
    while (QTcpSocket *const socket = m_server.nextPendingConnection()) {
        const int number = m_sockets.size();
        socket->setParent(this);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_sockets.insert(number, {socket, {}, {}, false});
        connect(socket, &QTcpSocket::readyRead, this, [this, number] { read(number); });
        connect(socket, &QTcpSocket::bytesWritten, this, [this, number] { write(number); });
        Connection &connection = m_sockets[number];
        const QList<RawAnswer> &next = m_plans.isEmpty() ? m_planForAll : m_plans;
        if (!next.isEmpty() && next.constFirst().when == RawAnswer::When::Connected && takePlan(connection))
            write(number);
    }
}

bool RawServer::takePlan(Connection &connection)
{
    if (m_plans.isEmpty() && m_planForAll.isEmpty()) {
        complain(QStringLiteral("a request that nothing was planned for"));
        return false;
    }
    connection.answer = m_plans.isEmpty() ? m_planForAll.constFirst() : m_plans.takeFirst();
    connection.isPlanned = true;
    return true;
}

void RawServer::read(int number)
{
    Connection &connection = m_sockets[number];
    connection.input += connection.socket->readAll();
    const int headSize = connection.input.indexOf(HEAD_END);
    if (headSize < 0)
        return;
    if (!connection.isPlanned && !takePlan(connection))
        return;
    if (connection.answer.when == RawAnswer::When::HeadRead) {
        write(number);
        return;
    }
    const RawRequest request = {number, connection.input.left(headSize), {}};
    const QList<QByteArray> lengths = request.header("Content-Length");
    const bool isConnect = request.head.startsWith("CONNECT ");
    if (lengths.size() != 1 && !isConnect)
        complain(QStringLiteral("a request with %1 lengths").arg(lengths.size()));
    const int bodySize = lengths.isEmpty() ? 0 : lengths.constFirst().toInt();
    if (connection.input.size() >= headSize + HEAD_END.size() + bodySize)
        take(number, headSize, bodySize);
}

void RawServer::take(int number, int headSize, int bodySize)
{
    Connection &connection = m_sockets[number];
    const int bodyStart = headSize + HEAD_END.size();
    m_requests.append({number, connection.input.left(headSize), connection.input.mid(bodyStart, bodySize)});
    connection.input.remove(0, bodyStart + bodySize);
    if (!connection.input.isEmpty())
        complain(QStringLiteral("bytes behind a request's end: ") + QString::fromUtf8(connection.input));
    connection.isPlanned = false;
    write(number);
    Q_EMIT received(number);
}

void RawServer::send(int number, const RawAnswer &answer)
{
    m_sockets[number].answer = answer;
    write(number);
}

void RawServer::write(int number)
{
    Connection &connection = m_sockets[number];
    RawAnswer &answer = connection.answer;
    if (connection.socket->state() != QAbstractSocket::ConnectedState || connection.socket->bytesToWrite() > 0)
        return;
    if (!answer.bytes.isEmpty()) {
        const int size = answer.pieceSize > 0 ? std::min(answer.pieceSize, answer.bytes.size()) : answer.bytes.size();
        const QByteArray piece = answer.bytes.left(size);
        answer.bytes.remove(0, size);
        connection.socket->write(piece);
        return;
    }
    const RawAnswer::Then then = std::exchange(answer.then, RawAnswer::Then::StayOpen);
    if (then == RawAnswer::Then::Close)
        connection.socket->disconnectFromHost();
    else if (then == RawAnswer::Then::Reset)
        reset(connection.socket);
}

int RawServer::openConnections() const
{
    return static_cast<int>(std::count_if(m_sockets.cbegin(), m_sockets.cend(), [](const Connection &connection) {
        return connection.socket->state() == QAbstractSocket::ConnectedState;
    }));
}

bool RawServer::isOpen(int number) const
{
    return m_sockets.value(number).socket->state() == QAbstractSocket::ConnectedState;
}

QString RawServer::complaint() const
{
    QStringList all = m_complaints;
    if (!m_plans.isEmpty())
        all.append(QStringLiteral("%1 planned answers that nobody asked for").arg(m_plans.size()));
    return all.join(QLatin1Char('\n'));
}
