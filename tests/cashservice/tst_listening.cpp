// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "httpclient.h"
#include "program.h"
#include "requests.h"
#include "runningservice.h"
#include "support/testcase.h"

#include <QHostAddress>

#include <iostream>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
constexpr char ASKED_FOR[] = "asked for ";

std::string textOf(const sockaddr *address)
{
    const QString host = QHostAddress(address).toString();
    // The port is at the same place in addresses of both kinds.
    const int port = ntohs(reinterpret_cast<const sockaddr_in *>(address)->sin_port);
    return (address->sa_family == AF_INET6 ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2"))
        .arg(host)
        .arg(port)
        .toStdString();
}

int reallyBind(int socket, const void *address, std::size_t size)
{
    return static_cast<int>(::syscall(SYS_bind, socket, address, size));
}

int portOf(int socket)
{
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(reinterpret_cast<const sockaddr_in *>(&address)->sin_port);
}
} // namespace

/// The service finds this in place of the C library's: it says what was asked for, and gives a free port of 127.0.0.1.
/// So the port may be taken, and the system need not have IPv6 set up.
extern "C" int bind(int socket, const sockaddr *address, socklen_t) noexcept
{
    sockaddr_in v4 = {};
    v4.sin_family = AF_INET;
    v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr_in6 v6 = {};
    v6.sin6_family = AF_INET6;
    v6.sin6_addr = {{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff, 127, 0, 0, 1}}};
    const int result =
        address->sa_family == AF_INET6 ? reallyBind(socket, &v6, sizeof v6) : reallyBind(socket, &v4, sizeof v4);
    std::cout << ASKED_FOR << textOf(address) << " got " << portOf(socket) << std::endl;
    return result;
}

TEST_CHILD(serves)
{
    std::vector<QByteArray> texts = {"cash-service"};
    for (const QString &argument : arguments)
        texts.push_back(argument.toUtf8());
    std::vector<const char *> argv;
    for (const QByteArray &text : texts)
        argv.push_back(text.constData());
    return cash::runProgram(static_cast<int>(argv.size()), argv.data());
}

/// Where the program listens, and what it says of it.
class ListeningTest : public TestCase
{
    Q_OBJECT

private:
    static QByteArray nextLine(QProcess &process)
    {
        constexpr int limit = 60'000;
        while (!process.canReadLine() && process.waitForReadyRead(limit)) {
        }
        return process.readLine();
    }

private Q_SLOTS:
    void program_started_listensWhereItIsToldOrWhereTerminalsLook_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QByteArray>("url");
        const auto row = [](const char *listen, const char *address, const char *url) {
            QTest::newRow(listen) << QStringList{QStringLiteral("--listen"), QLatin1String(listen)}
                                  << QByteArray(address) << QByteArray(url);
        };
        QTest::newRow("no arguments") << QStringList() << QByteArray("127.0.0.1:13006")
                                      << QByteArray("http://127.0.0.1:13006/api");
        row("127.0.0.1:0", "127.0.0.1:0", "http://127.0.0.1:PORT/api");
        row("[::1]:0", "[::1]:0", "http://[::1]:PORT/api");
        row("::1:0", "[::1]:0", "http://[::1]:PORT/api");
        row("[::1]:13007", "[::1]:13007", "http://[::1]:13007/api");
    }

    void program_started_listensWhereItIsToldOrWhereTerminalsLook()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const QByteArray, address);
        QFETCH(QByteArray, url);
        const std::unique_ptr<QProcess> process = ChildProcess::start("serves", arguments);
        const QByteArray asked = nextLine(*process);
        const QByteArray port = asked.mid(asked.lastIndexOf(' ') + 1).trimmed();
        QCOMPARE(asked, ASKED_FOR + address + " got " + port + "\n");
        QCOMPARE(nextLine(*process), "Listening on " + url.replace("PORT", port) + "\n");
        const QByteArray answer = HttpClient::parkingCheck(port.toInt(), Requests::parkingCheck()).body;
        QCOMPARE(elementText(answer, "TotalCharge"), QByteArray("15000"));
        process->terminate();
        QCOMPARE(ChildProcess::finish(*process), 0);
        QCOMPARE(process->readAll(), QByteArray());
    }
};

TEST_MAIN(ListeningTest)
#include "tst_listening.moc"
