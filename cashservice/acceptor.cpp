// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "acceptor.h"

#include "connection.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>

namespace cash {
namespace {
int spareDescriptor()
{
    return eventfd(0, EFD_CLOEXEC);
}

/// Says so and closes, without waiting for anything.
void refuse(int socket)
{
    const std::string answer = refusalText(503);
    std::array<char, 4096> unread = {};
    // What lies unread when a socket is closed may cost the client the answer.
    (void)recv(socket, unread.data(), unread.size(), MSG_DONTWAIT);
    (void)send(socket, answer.data(), answer.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    shutdown(socket, SHUT_WR);
    close(socket);
}
} // namespace

Acceptor::Acceptor(int listening, int stop, ConnectionThreads &threads)
    : m_listening(listening), m_stop(stop), m_threads(threads), m_spare(spareDescriptor())
{
    // A client that is gone before it is taken must not hold up those behind it, nor the end.
    fcntl(listening, F_SETFL, fcntl(listening, F_GETFL) | O_NONBLOCK);
    m_thread = std::thread([this] { run(); });
}

Acceptor::~Acceptor()
{
    m_thread.join();
    close(m_spare);
}

void Acceptor::run()
{
    while (waitForClient())
        takeOne();
}

bool Acceptor::waitForClient() const
{
    std::array<pollfd, 2> polled = {{{m_stop, POLLIN, 0}, {m_listening, POLLIN, 0}}};
    poll(polled.data(), polled.size(), -1);
    return polled[0].revents == 0;
}

void Acceptor::pause() const
{
    constexpr int milliseconds = 10;
    pollfd polled = {m_stop, POLLIN, 0};
    poll(&polled, 1, milliseconds);
}

void Acceptor::takeOne()
{
    const int socket = accept();
    if (socket >= 0)
        serve(socket);
    else if (errno == EMFILE || errno == ENFILE)
        refuseWithoutDescriptor();
    else
        pause(); // it may be the client that is gone, or memory that is short
}

int Acceptor::accept() const
{
    return accept4(m_listening, nullptr, nullptr, SOCK_CLOEXEC);
}

void Acceptor::serve(int socket)
{
    if (m_threads.take(socket))
        return;
    complain("no thread can be started for another connection");
    refuse(socket);
}

void Acceptor::refuseWithoutDescriptor()
{
    complain("no descriptor is left for another connection");
    close(m_spare);
    const int socket = accept();
    if (socket >= 0)
        refuse(socket);
    else
        pause();
    m_spare = spareDescriptor();
}

void Acceptor::complain(const std::string &what)
{
    if (m_complaints.insert(what).second)
        std::cerr << "cash-service: " << what << "; it was refused, and so will be others, without a word here"
                  << std::endl;
}
} // namespace cash
