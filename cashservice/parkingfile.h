// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "carpark.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace cash {
/// What is wrong with a parking file: every mistake with its place, "FILE:LINE:COLUMN: …" a line.
class ParkingFileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads a car park from YAML; parking.yaml beside this file shows how one looks. A card's entry "… before launch"
/// counts from @a launch. @throw ParkingFileError
[[nodiscard]] CarPark readParkingFile(const std::string &path, Moment launch);
} // namespace cash
