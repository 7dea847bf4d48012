// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace cash {
/// What the command line says; the defaults are those of a terminal's plugin that nobody has configured.
struct ServeOptions
{
    std::string listen = "127.0.0.1:13006";
    std::string path = "/api";
    std::string database = ":memory:";
    /// Empty: the seeded car park.
    std::string parkingFile;
    /// Empty: the real time. Else the clock stands still there.
    std::string clock;
    std::vector<std::string> faults;
};

void addServeOptions(CLI::App &app, ServeOptions &options);

/// Serves until SIGTERM or SIGINT. The first line of standard output is the address; it stands there as soon as clients
/// can connect. @return the exit status: 2 where the service could not be started, and why is on standard error.
[[nodiscard]] int serve(const ServeOptions &options);
} // namespace cash
