// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

namespace cash {
/// All that the program does with its command line. @return the exit status.
[[nodiscard]] int runProgram(int argc, const char *const *argv);
} // namespace cash
