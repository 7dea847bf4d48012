// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

/// What clients leave in the process that are kept alive, one exchange behind each.
namespace ClientFootprint {
/// Makes a thousand of them and prints by how much descriptors, threads and heap grew with each, and the bound of the
/// last one.
/// @return 1 when descriptors or threads grew at all, or the heap beyond its bound; else 0.
[[nodiscard]] int print();
} // namespace ClientFootprint
