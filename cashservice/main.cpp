// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "check/checkcommand.h"
#include "serve.h"

#include <CLI/CLI.hpp>

#include <iostream>

int main(int argc, char **argv)
{
    CLI::App app{"A parking operator's cash service, to develop, demonstrate and test terminals against.",
                 "cash-service"};
    app.failure_message([](const CLI::App *failed, const CLI::Error &error) {
        return "cash-service: " + CLI::FailureMessage::simple(failed, error);
    });
    cash::ServeOptions options;
    cash::addServeOptions(app, options);
    CheckOptions checkOptions;
    const CLI::App *const check = addCheckCommand(app, checkOptions);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return check->parsed() ? runCheck(checkOptions, std::cout) : cash::serve(options);
}
