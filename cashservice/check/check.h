// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// What a cash service is tested with. All of it is the service's own business but the time limit, so all of it can be
/// chosen; the cards are those of the seeded car park unless others are given.
struct CheckOptions
{
    std::string url;                    ///< what stands before "/ParkingCheck"
    std::vector<std::string> cards;     ///< UID:ID, the UID as requests carry it: eight hexadecimal digits
    std::string partner = "dravik";     ///< PartnerId of the requests
    std::string parking;                ///< ParkingId of the requests
    std::vector<std::string> terminals; ///< TermId of two terminals, "0042" and "0043" for those not given
    int timeout = 10;                   ///< seconds for an answer
    bool payInFull = false;             ///< pay at last all that the card owes; it is of no use for the next run then
};

/// What runCheck() returns, and the program with it.
enum CheckResult
{
    ALL_HOLD = 0,
    SOMETHING_BREAKS = 1,
    COULD_NOT_TEST = 2
};

/// Holds a cash service against the protocol: a line for each check, each breach with requests that repeat it, and a
/// last line "RESULT: n of m checks hold". It registers payments of a few hundredths for one of the cards.
[[nodiscard]] int runCheck(const CheckOptions &options, std::ostream &out);

/// The sentences that runCheck() holds a service against, in its order.
[[nodiscard]] std::vector<std::string> checkNames(const CheckOptions &options);
