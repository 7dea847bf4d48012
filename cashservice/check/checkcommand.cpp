// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "checkcommand.h"

#include <CLI/CLI.hpp>

namespace {
/// What stands before "check" is for serving.
void refuseOptionsOf(const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options()) {
        if (option->count() > 0)
            throw CLI::ValidationError(option->get_name(), "means nothing to check; leave it out");
    }
}
} // namespace

const CLI::App *addCheckCommand(CLI::App &app, CheckOptions &options)
{
    CLI::App *const check = app.add_subcommand("check", "Holds another cash service against the protocol. It registers "
                                                        "payments of a few hundredths there: use a test installation.");
    check->add_option("URL", options.url, "Where the service is: what stands before /ParkingCheck")->required();
    check
        ->add_option("--card", options.cards,
                     "A card the service knows, the UID as requests carry it (78563412:000123456); may be given more "
                     "than once. One must owe at least 5.00. Without it: cards of the seeded car park")
        ->allow_extra_args(false) // the URL may come after it
        ->type_name("UID:ID");
    check->add_option("--partner", options.partner, "PartnerId of the requests")
        ->type_name("TEXT")
        ->capture_default_str();
    check->add_option("--parking", options.parking, "ParkingId of the requests")->type_name("TEXT");
    check
        ->add_option("--term", options.terminals,
                     "TermId of the requests; twice for two terminals, 0042 and 0043 "
                     "unless given")
        ->allow_extra_args(false)
        ->type_name("TEXT");
    check->add_option("--timeout", options.timeout, "Seconds to wait for an answer")
        ->check(CLI::Range(1, 3600))
        ->type_name("SECONDS")
        ->capture_default_str();
    check->add_flag("--pay-in-full", options.payInFull,
                    "At last pay all that the card owes; it is of no use for the next run then");
    check->callback([&app] { refuseOptionsOf(app); });
    check->footer("\nExit status: 0 all checks hold, 1 something breaks, 2 it could not test.");
    return check;
}
