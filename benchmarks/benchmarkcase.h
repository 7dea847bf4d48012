// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// The most that a case may cost in multiples of another one.
struct RatioBound
{
    std::string floor;
    double most;
};

/// One thing that is measured, on its own or beside other ways of doing the same.
struct BenchmarkCase
{
    using Operation = std::function<void()>;

    /// Cases of one group do the same; the first one is the plugin's, the others are compared with it.
    std::string group;
    /// Unique.
    std::string name;
    /// The most instructions that one operation may take.
    std::optional<int> bound;
    /// Called once, with the terminal in its initial state. @return what is measured, again and again.
    /// @throws std::runtime_error when the operation does not do what the group's others do.
    std::function<Operation()> prepare;
    /// The most instructions beside those of another case of the same run.
    std::optional<RatioBound> ratioBound = std::nullopt;
    /// How many operations are counted; their mean is what one of them takes.
    int times = 500;
};

using BenchmarkCases = std::vector<BenchmarkCase>;

BenchmarkCases parsingCases();
BenchmarkCases renderingCases();
BenchmarkCases cardCases();
BenchmarkCases sessionCases();
BenchmarkCases clientCases();
BenchmarkCases paymentCases();
BenchmarkCases loadingCases();
