// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "serve.h"

#include "adminapi.h"
#include "parkingfile.h"
#include "server.h"
#include "text.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace cash {
namespace {
/// An option whose value cannot be used.
class OptionError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::pair<std::string, int> hostAndPort(const std::string &listen)
{
    const std::size_t colon = listen.rfind(':');
    std::string host = listen.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    const int port = numberFromText<int>(colon == std::string::npos ? "" : listen.substr(colon + 1)).value_or(-1);
    if (host.empty() || port < 0 || port > 65535)
        throw OptionError("--listen \"" + listen + "\" is no address; write HOST:PORT, for example 127.0.0.1:13006");
    return {host, port};
}

Clock clockFrom(const std::string &text)
{
    if (text.empty())
        return systemClock();
    const std::optional<Moment> moment = momentFromLocalText(text);
    if (!moment)
        throw OptionError("--clock \"" + text +
                          "\" is no local time; write one like 2024-03-07T14:05:09, of the years 2000 to 2099");
    return stoppedClock(*moment);
}

CarPark parkFrom(const std::string &file, Moment launch)
{
    return file.empty() ? seededCarPark(launch) : readParkingFile(file, launch);
}

std::string cardList()
{
    std::string list =
        "The cards of the seeded car park, by UID as people write it (decimal, as card readers give it):\n";
    for (const auto &[uid, card] : seededCarPark(0).cards)
        list += "  " + uidText(uid) + " (" + std::to_string(uid) + ")  " + card.note + "\n";
    return list;
}

void checkPath(const std::string &path)
{
    constexpr char allowed[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    if (path.find_first_not_of(allowed) != std::string::npos)
        throw OptionError("--path \"" + path + "\": write it of Latin letters, digits, \"-._~\" and \"/\"");
    if (AdminApi::isPath(path.rfind('/', 0) == 0 ? path : "/" + path))
        throw OptionError("--path \"" + path + "\": /admin is taken; write another, for example /api");
}

/// Of an option that may be left out: a value that a script has lost must not be taken for that.
CLI::Validator notEmpty()
{
    return {[](std::string &value) {
                return std::string(value.empty() ? "the value is empty; write one, or leave the option out" : "");
            },
            std::string(), "not empty"};
}

sigset_t endSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    return signals;
}

void waitForEnd()
{
    const sigset_t signals = endSignals();
    int signal = 0;
    sigwait(&signals, &signal);
}

void serveUntilEnd(const ServeOptions &options)
{
    const auto [host, port] = hostAndPort(options.listen);
    checkPath(options.path);
    const Clock clock = clockFrom(options.clock);
    std::vector<Fault> faults;
    for (const std::string &rule : options.faults)
        faults.push_back(faultFromRule(rule));
    CarPark park = parkFrom(options.parkingFile, clock());
    Ledger ledger(options.database);
    Service service(std::move(park), ledger, clock);
    for (const Fault &fault : faults)
        service.faults().add(fault);
    Server server(service, options.path);
    server.start(host, port);
    std::cout << "Listening on " << server.url() << std::endl;
    waitForEnd();
    server.stop();
}
} // namespace

void addServeOptions(CLI::App &app, ServeOptions &options)
{
    app.add_option("--listen", options.listen, "Address to listen on; port 0 takes a free one")
        ->type_name("HOST:PORT")
        ->capture_default_str();
    app.add_option("--path", options.path, "Path under which the operations are")
        ->type_name("PATH")
        ->capture_default_str();
    app.add_option("--db", options.database, "File that keeps the payments; in memory unless given")
        ->type_name("FILE")
        ->check(notEmpty());
    app.add_option("--parking", options.parkingFile, "Car park and tariff, in YAML")
        ->type_name("FILE")
        ->check(notEmpty());
    app.add_option("--clock", options.clock, "Local time at which the service's clock stands still")
        ->type_name("TIME")
        ->check(notEmpty());
    app.add_option("--fault", options.faults, "Something to do wrong on purpose; may be given more than once")
        ->type_name("RULE");
    app.footer("\n" + faultHelp() + "\n" + cardList() +
               "\nGET /admin on the same address says what can be seen and set while the service runs.\n");
}

int serve(const ServeOptions &options)
{
    // Before any thread is started, so that only sigwait() gets them.
    const sigset_t signals = endSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        serveUntilEnd(options);
        return 0;
    } catch (const DatabaseError &error) {
        std::cerr << "cash-service: --db \"" << options.database << "\" cannot be used: " << error.what() << std::endl;
    } catch (const std::runtime_error &error) {
        std::cerr << "cash-service: " << error.what() << std::endl;
    } catch (const FaultError &error) {
        std::cerr << "cash-service: " << error.what() << "\n\n" << faultHelp() << std::flush;
    }
    return 2;
}
} // namespace cash
