// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>

/// A plain client over a socket: it sends what it is told and waits for what comes, without an event loop, so that each
/// thread of a test can have its own.
class HttpClient
{
public:
    struct Answer
    {
        /// 0: none came.
        int status = 0;
        QByteArray head;
        QByteArray body;
    };

    explicit HttpClient(int port, const QString &host = QStringLiteral("127.0.0.1"))
    {
        m_socket.connectToHost(host, static_cast<quint16>(port));
        m_socket.waitForConnected(LIMIT);
    }

    [[nodiscard]] bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }

    void send(const QByteArray &bytes)
    {
        m_socket.write(bytes);
        while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(LIMIT)) {
        }
    }

    [[nodiscard]] Answer read(int limit = LIMIT)
    {
        const QDeadlineTimer deadline(limit);
        qint64 end = -1;
        while ((end = m_received.indexOf("\r\n\r\n")) < 0) {
            if (!receive(deadline))
                return {};
        }
        Answer answer;
        answer.head = m_received.left(static_cast<int>(end) + 4);
        answer.status = answer.head.mid(9, 3).toInt();
        const int size = header(answer.head, "content-length").toInt();
        while (m_received.size() < answer.head.size() + size) {
            if (!receive(deadline))
                return {};
        }
        answer.body = m_received.mid(answer.head.size(), size);
        m_received.remove(0, answer.head.size() + size);
        return answer;
    }

    /// Whether the service closes the connection without sending more.
    [[nodiscard]] bool isClosedByService()
    {
        const QDeadlineTimer deadline(LIMIT);
        while (receive(deadline)) {
        }
        return m_received.isEmpty() && m_socket.state() == QAbstractSocket::UnconnectedState;
    }

    [[nodiscard]] static QByteArray header(const QByteArray &head, const QByteArray &name)
    {
        for (const QByteArray &line : head.split('\n')) {
            const int colon = line.indexOf(':');
            if (line.left(colon).toLower() == name)
                return line.mid(colon + 1).trimmed();
        }
        return QByteArray();
    }

    [[nodiscard]] static QByteArray request(const QByteArray &method, const QByteArray &path, const QByteArray &body,
                                            const QByteArray &contentType = "application/soap+xml")
    {
        QByteArray bytes = method + " " + path + " HTTP/1.1\r\nHost: localhost\r\n";
        if (method != "GET")
            bytes += "Content-Type: " + contentType + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n";
        return bytes + "\r\n" + body;
    }

    [[nodiscard]] static Answer exchange(int port, const QByteArray &method, const QByteArray &path,
                                         const QByteArray &body = QByteArray())
    {
        HttpClient client(port);
        client.send(request(method, path, body));
        return client.read();
    }

    [[nodiscard]] static Answer parkingCheck(int port, const QByteArray &body)
    {
        return exchange(port, "POST", "/api/ParkingCheck", body);
    }

    [[nodiscard]] static Answer parkInfoPay(int port, const QByteArray &body)
    {
        return exchange(port, "POST", "/api/ParkInfoPay", body);
    }

private:
    static constexpr int LIMIT = 60'000;

    bool receive(const QDeadlineTimer &deadline)
    {
        if (m_socket.bytesAvailable() == 0 && !m_socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            return false;
        m_received += m_socket.readAll();
        return true;
    }

    QTcpSocket m_socket;
    QByteArray m_received;
};

/// Of a ParkingCheck, but for the length of the body and the empty line.
const QByteArray CHECK_HEAD =
    "POST /api/ParkingCheck HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/soap+xml\r\n";

[[nodiscard]] inline QJsonObject jsonOf(const HttpClient::Answer &answer)
{
    return QJsonDocument::fromJson(answer.body).object();
}

/// What /admin says.
[[nodiscard]] inline QJsonObject adminJson(int port, const QByteArray &path)
{
    return jsonOf(HttpClient::exchange(port, "GET", path));
}
