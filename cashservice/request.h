// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "money.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace cash {
enum class Operation
{
    ParkingCheck,
    ParkInfoPay
};
[[nodiscard]] std::string operationName(Operation operation);
constexpr std::array<Operation, 2> OPERATIONS = {Operation::ParkingCheck, Operation::ParkInfoPay};

/// A request that keeps the protocol.
struct Request
{
    Operation operation = Operation::ParkingCheck;
    std::string partnerId;
    std::string parkingId;
    std::string termId;
    std::string sessionId;
    /// As on the wire, lowest byte first; may be empty.
    std::string cardUid;
    std::string cardId;
    std::string requestTime;

    /// The rest is for ParkInfoPay alone.
    std::int64_t uin = 0;
    std::string paidAt;
    Hundredths amount = 0;
    std::string type;
};

/// The first thing in a request that breaks the protocol.
struct Breach
{
    /// The element or attribute; "XML" where the document cannot be read at all.
    std::string field;
    /// In Russian: the answer's text is made of it.
    std::string reason;
    /// As far as it was read: the answer carries it back.
    std::string sessionId;
};

/// Reads a request by the rules of docs/schema/request-*.xsd, which are written here by hand, and of the order of the
/// root's attributes.
[[nodiscard]] std::variant<Request, Breach> readRequest(Operation operation, std::string_view body);
} // namespace cash
