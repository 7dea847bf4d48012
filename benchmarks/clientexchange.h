// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomataccessmanager.h"

class ParkingCheckRequest;

/// One ParkingCheck through a client, from posting to its signal.
namespace ClientExchange {
/// @throws std::runtime_error when the client signals anything but the answer.
void run(ParkomatAccessManager &client, const QString &text);
void run(ParkomatAccessManager &client, const ParkingCheckRequest &request);
} // namespace ClientExchange
