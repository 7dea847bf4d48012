// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "signalwatch.h"

#include "endlimit.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace kiosk {
namespace {
constexpr std::array<int, 3> SIGNALS = {SIGTERM, SIGINT, SIGHUP};

/// Read end and write end. A handler may do no more than write.
std::array<int, 2> pipeEnds = {-1, -1};

void noteSignal(int /*signal*/)
{
    // Here, since there may be no event loop any more that would be told.
    EndLimit::begin();
    const char mark = 0;
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &mark, 1);
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : SIGNALS)
        ::sigaction(signal, &action, nullptr);
}
} // namespace

SignalWatch::SignalWatch(QObject *parent) : QObject(parent)
{
    if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("there is no pipe for signals");
    m_notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> marks = {};
        while (::read(pipeEnds[0], marks.data(), marks.size()) > 0) {
        }
        Q_EMIT endWanted();
    });
    setHandler(noteSignal);
}

SignalWatch::~SignalWatch()
{
    setHandler(SIG_DFL);
    delete m_notifier;
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}
} // namespace kiosk
