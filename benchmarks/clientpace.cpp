// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "clientpace.h"

#include "bareexchange.h"
#include "clientexchange.h"
#include "clientresponder.h"
#include "parkingcheckrequest.h"
#include "terminal.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace {
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int ROUNDS = 15;
constexpr int EXCHANGES = 20;
constexpr double MOST = 3.0;

Milliseconds timeOf(const std::function<void()> &exchange)
{
    const auto start = Clock::now();
    exchange();
    return Clock::now() - start;
}

/// Each by a client of its own, as each payment has one.
Milliseconds secondExchange(const QString &text)
{
    Milliseconds sum(0);
    for (int i = 0; i < EXCHANGES; ++i) {
        ParkomatAccessManager client;
        ClientExchange::run(client, text);
        sum += timeOf([&] { ClientExchange::run(client, text); });
    }
    return sum / EXCHANGES;
}

Milliseconds bareExchange(const BareExchange &exchange)
{
    Milliseconds sum(0);
    for (int i = 0; i < EXCHANGES; ++i)
        sum += timeOf([&] { exchange.run(); });
    return sum / EXCHANGES;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}
} // namespace

int ClientPace::print()
{
    Terminal::reset();
    const ClientResponder responder;
    responder.configure();
    const QString text = ParkingCheckRequest(ParkomatCardData(QVariant(Terminal::cardMap()))).toXml();
    const BareExchange exchange(responder.port(), QStringLiteral("ParkingCheck"), text);
    std::vector<double> seconds;
    std::vector<double> bares;
    std::vector<double> ratios;
    for (int i = 0; i < ROUNDS; ++i) {
        seconds.push_back(secondExchange(text).count());
        bares.push_back(bareExchange(exchange).count());
        ratios.push_back(seconds.back() / bares.back());
    }
    const double ratio = median(ratios);
    std::printf("second exchange of a payment %.2f ms   bare exchange %.2f ms   ratio %.2f   at most %.2f\n",
                median(seconds), median(bares), ratio, MOST);
    if (ratio <= MOST)
        return 0;
    std::fprintf(stderr, "the second exchange of a payment takes %.2f times the bare one's time, its bound is %.2f\n",
                 ratio, MOST);
    return 1;
}
