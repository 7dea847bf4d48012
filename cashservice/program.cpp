// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "program.h"

#include "check/checkcommand.h"
#include "serve.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace cash {
int runProgram(int argc, const char *const *argv)
{
    CLI::App app{"A parking operator's cash service, to develop, demonstrate and test terminals against.",
                 "cash-service"};
    app.failure_message([](const CLI::App *failed, const CLI::Error &error) {
        return "cash-service: " + CLI::FailureMessage::simple(failed, error);
    });
    ServeOptions options;
    addServeOptions(app, options);
    CheckOptions checkOptions;
    const CLI::App *const check = addCheckCommand(app, checkOptions);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return check->parsed() ? runCheck(checkOptions, std::cout) : serve(options);
}
} // namespace cash
