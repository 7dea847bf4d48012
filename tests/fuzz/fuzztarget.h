// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>

/// What a fuzz target file defines: checks that what must hold for every input holds for these bytes. Called by
/// libFuzzer, or by the replay driver for each file of the corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
/// Called once before the first input: silences the log, which every input would fill.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

namespace FuzzTarget {
/// A copy of the input of exactly its size, so that reading past it is noticed.
[[nodiscard]] QByteArray bytes(const std::uint8_t *data, std::size_t size);
/// Ends the process, which the fuzzer takes for a crash, unless @a holds.
void require(bool holds, const char *condition, const char *file, int line);
} // namespace FuzzTarget

#define FUZZ_REQUIRE(condition) FuzzTarget::require((condition), #condition, __FILE__, __LINE__)
