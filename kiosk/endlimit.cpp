// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "endlimit.h"

#include <atomic>
#include <csignal>

#include <unistd.h>

namespace kiosk {
namespace {
std::atomic<unsigned> secondsLeft = 60;
std::atomic_bool hasBegun = false;

/// The plugin has this thread and gives it to nobody: neither log nor ledger can be asked.
void end(int /*signal*/)
{
    const char words[] = "terminal.kiosk: the plugin does not return, the program ends without it: a payment that was "
                         "being registered is unconfirmed\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, words, sizeof words - 1);
    ::_exit(EndLimit::STATUS);
}
} // namespace

void EndLimit::setPatience(std::chrono::seconds patience)
{
    secondsLeft = static_cast<unsigned>(patience.count());
    if (hasBegun)
        ::alarm(secondsLeft);
}

void EndLimit::begin()
{
    if (hasBegun.exchange(true))
        return;
    struct sigaction action = {};
    action.sa_handler = end;
    ::sigaction(SIGALRM, &action, nullptr);
    ::alarm(secondsLeft);
}

void EndLimit::cancel()
{
    ::alarm(0);
}
} // namespace kiosk
