// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkingcheckresponse.h"

#include <QByteArray>

#include <memory>

/// The answer to a ParkingCheck, read with other XML libraries into the same fields: each gathers the properties its
/// own way and leaves them to the same constructor. None of them writes to the log.
///
/// All return null when the body is no answer to a ParkingCheck.
namespace PeerParsers {
using Response = std::unique_ptr<ParkingCheckResponse>;

/// By expat's call-backs.
[[nodiscard]] Response readWithExpat(const QByteArray &body);
/// From libxml2's document tree.
[[nodiscard]] Response readWithLibxml2(const QByteArray &body);
/// From pugixml's document tree.
[[nodiscard]] Response readWithPugixml(const QByteArray &body);
} // namespace PeerParsers
