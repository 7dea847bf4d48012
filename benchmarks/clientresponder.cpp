// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientresponder.h"

#include "parkomatsettings.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

namespace {
const std::string HEAD_END = "\r\n\r\n";

/// The answer in a file of the benchmarks' data; empty when it cannot be read.
std::string answer(const char *file)
{
    QFile data(QStringLiteral(BENCHMARK_DATA "/") + QLatin1String(file));
    if (!data.open(QIODevice::ReadOnly))
        return {};
    const QByteArray body = data.readAll();
    return "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nContent-Length: " + std::to_string(body.size()) + HEAD_END +
           body.toStdString();
}

/// The size of the request that @a input begins with; 0 while it is not whole.
size_t requestSize(const std::string &input)
{
    const size_t headEnd = input.find(HEAD_END);
    const size_t length = input.find("Content-Length: ");
    if (headEnd == std::string::npos || length == std::string::npos)
        return 0;
    const size_t size = headEnd + HEAD_END.size() + std::stoul(input.substr(length + 16));
    return input.size() >= size ? size : 0;
}

/// One answer an operation.
struct Answers
{
    std::string check = answer("parkingcheck-answer.xml");
    std::string pay = answer("parkinfopay-answer.xml");
};

void answerEveryRequest(int socket, const Answers &answers)
{
    std::string input;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(socket, buffer, sizeof buffer)) > 0) {
        input.append(buffer, static_cast<size_t>(count));
        while (const size_t size = requestSize(input)) {
            const bool isPayment = input.find("/ParkInfoPay ") < input.find('\r');
            const std::string &bytes = isPayment ? answers.pay : answers.check;
            input.erase(0, size);
            if (::write(socket, bytes.data(), bytes.size()) < 0)
                break;
        }
    }
    ::close(socket);
}

/// Listens on a free port. @return the socket, or -1.
int listenSomewhere(quint16 &port)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    if (listener < 0 || ::bind(listener, generic, size) != 0 || ::listen(listener, SOMAXCONN) != 0 ||
        ::getsockname(listener, generic, &size) != 0)
        return -1;
    port = ntohs(address.sin_port);
    return listener;
}
} // namespace

ClientResponder::ClientResponder()
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--serve")});
    if (!m_process.waitForStarted())
        throw std::runtime_error("the responder does not start");
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead())
            throw std::runtime_error("the responder does not name its port");
    }
    m_port = m_process.readLine().trimmed().toUShort();
}

ClientResponder::~ClientResponder()
{
    m_process.kill();
    m_process.waitForFinished();
}

void ClientResponder::configure() const
{
    ParkomatSettings settings;
    settings.setCashServiceHost(QStringLiteral("127.0.0.1"));
    settings.setCashServicePort(m_port);
}

int ClientResponder::serve()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGPIPE, SIG_IGN);
    const Answers answers;
    quint16 port = 0;
    const int listener = listenSomewhere(port);
    if (listener < 0 || answers.check.empty() || answers.pay.empty())
        return 1;
    std::printf("%d\n", port);
    std::fflush(stdout);
    for (;;) {
        const int socket = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return 1;
        const int noDelay = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
        std::thread(answerEveryRequest, socket, std::cref(answers)).detach();
    }
}
