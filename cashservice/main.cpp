// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "program.h"

int main(int argc, char **argv)
{
    return cash::runProgram(argc, argv);
}
