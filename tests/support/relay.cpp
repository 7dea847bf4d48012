// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/relay.h"

#include <QNetworkProxy>
#include <QStringList>
#include <QTcpSocket>

#include <algorithm>
#include <memory>
#include <utility>

namespace {
const QByteArray HEAD_END = QByteArrayLiteral("\r\n\r\n");
}

Relay::Relay(quint16 servicePort, Change change) : m_servicePort(servicePort), m_change(std::move(change))
{
    m_server.planForAll(RawAnswer::held());
    connect(&m_server, &RawServer::received, this, [this] { pass(m_server.requests().constLast()); });
}

void Relay::askForName(const QByteArray &user, const QByteArray &password)
{
    m_authorization = "Basic " + (user + ':' + password).toBase64();
}

void Relay::pass(const RawRequest &request)
{
    const int connection = request.connection;
    if (!m_authorization.isEmpty() && request.header("Proxy-Authorization") != QList<QByteArray>{m_authorization}) {
        m_server.send(connection, {RawAnswer::http("407 Proxy", {}, {"Proxy-Authenticate: Basic realm=\"relay\""})});
        return;
    }
    auto *const socket = new QTcpSocket(this);
    socket->setProxy(QNetworkProxy::NoProxy);
    const auto answer = std::make_shared<QByteArray>();
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, answer, connection] {
        *answer += socket->readAll();
        if (passBack(connection, *answer)) {
            socket->disconnect(this);
            socket->deleteLater();
        }
    });
    // Refused, closed or reset.
    connect(socket, &QTcpSocket::errorOccurred, this, [this, socket, connection] {
        ++m_unanswered;
        m_server.send(connection, {{}, RawAnswer::Then::Close});
        socket->disconnect(this);
        socket->deleteLater();
    });
    socket->connectToHost(QHostAddress::LocalHost, m_servicePort);
    socket->write(forService(request));
}

QByteArray Relay::forService(const RawRequest &request) const
{
    QList<QByteArray> lines = request.head.split('\n');
    if (!m_authorization.isEmpty()) {
        // "POST http://host:80/path HTTP/1.1"
        const int host = lines.constFirst().indexOf("://") + 3;
        const int method = lines.constFirst().indexOf(' ') + 1;
        lines.first().remove(method, lines.constFirst().indexOf('/', host) - method);
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const QByteArray &line) { return line.toLower().startsWith("proxy-"); }),
                    lines.end());
        if (lines.constLast().endsWith('\r'))
            lines.last().chop(1);
    }
    return lines.join('\n') + HEAD_END + request.body;
}

bool Relay::passBack(int connection, const QByteArray &answer)
{
    const int headSize = answer.indexOf(HEAD_END);
    if (headSize < 0)
        return false;
    const QList<QByteArray> lengths = RawRequest{connection, answer.left(headSize), {}}.header("Content-Length");
    if (lengths.size() != 1)
        m_complaints.append(QStringLiteral("an answer with %1 lengths").arg(lengths.size()));
    const int size = headSize + HEAD_END.size() + lengths.value(0).toInt();
    if (answer.size() < size)
        return false;
    if (answer.size() > size)
        m_complaints.append(QStringLiteral("bytes behind an answer's end: ") + QString::fromUtf8(answer.mid(size)));
    m_server.send(connection, m_change(answer.left(size)));
    return true;
}

QString Relay::complaint() const
{
    return (QStringList(m_server.complaint()) + m_complaints).join(QLatin1Char('\n')).trimmed();
}
