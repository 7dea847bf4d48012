// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "check.h"

namespace CLI {
class App;
}

/// Adds "check URL" to the program's command line. @return the subcommand: ask it whether it was parsed.
[[nodiscard]] const CLI::App *addCheckCommand(CLI::App &app, CheckOptions &options);
