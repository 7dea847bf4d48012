// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "benchmarkcase.h"
#include "clientfootprint.h"
#include "clientpace.h"
#include "clientresponder.h"
#include "terminal.h"

#include <QApplication>

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <stdexcept>

namespace {
// Enough for whatever is made once and kept.
constexpr int MOST_WARM_UPS = 20;

const char USAGE[] =
    "values-benchmark [Google Benchmark's options]   times every case\n"
    "values-benchmark --list                         group, name, bound of every case, what the bound is of, times\n"
    "values-benchmark --count NAME                   one case, to be counted by callgrind\n"
    "values-benchmark --clients                      what a thousand clients leave behind\n"
    "values-benchmark --pace                         a payment's second exchange on the clock\n";

BenchmarkCases allCases()
{
    BenchmarkCases all;
    for (const auto &cases :
         {parsingCases(), renderingCases(), cardCases(), sessionCases(), clientCases(), paymentCases(), loadingCases()})
        std::copy(cases.begin(), cases.end(), std::back_inserter(all));
    return all;
}

BenchmarkCase::Operation prepare(const BenchmarkCase &benchmarkCase)
{
    Terminal::reset();
    return benchmarkCase.prepare();
}

/// "190000", or "1.60x" of another case, or "-".
std::string bound(const BenchmarkCase &benchmarkCase)
{
    if (benchmarkCase.ratioBound)
        return QByteArray::number(benchmarkCase.ratioBound->most, 'f', 2).append('x').toStdString();
    return benchmarkCase.bound ? std::to_string(*benchmarkCase.bound) : "-";
}

int list()
{
    for (const BenchmarkCase &each : allCases())
        std::printf("%s\t%s\t%s\t%s\t%d\n", each.group.c_str(), each.name.c_str(), bound(each).c_str(),
                    each.ratioBound ? each.ratioBound->floor.c_str() : "-", each.times);
    return 0;
}

int count(const std::string &name)
{
    const BenchmarkCases cases = allCases();
    const auto found =
        std::find_if(cases.begin(), cases.end(), [&name](const BenchmarkCase &each) { return each.name == name; });
    if (found == cases.end())
        throw std::runtime_error("there is no such case");
    const BenchmarkCase::Operation operation = prepare(*found);
    for (int i = 0; i < std::min(MOST_WARM_UPS, found->times / 4); ++i)
        operation();
    CALLGRIND_START_INSTRUMENTATION;
    for (int i = 0; i < found->times; ++i)
        operation();
    CALLGRIND_STOP_INSTRUMENTATION;
    return 0;
}

void time(benchmark::State &state, const BenchmarkCase &benchmarkCase)
{
    const BenchmarkCase::Operation operation = prepare(benchmarkCase);
    for (auto iteration : state) {
        (void)iteration;
        operation();
    }
}

int timeAll(int argc, char **argv)
{
    for (const BenchmarkCase &each : allCases())
        benchmark::RegisterBenchmark((each.group + "/" + each.name).c_str(),
                                     [each](benchmark::State &state) { time(state, each); });
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        std::fputs(USAGE, stderr);
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

int run(int argc, char **argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "--list" && argc == 2)
        return list();
    if (mode == "--count" && argc == 3)
        return count(argv[2]);
    if (mode == "--clients" && argc == 2)
        return ClientFootprint::print();
    if (mode == "--pace" && argc == 2)
        return ClientPace::print();
    return timeAll(argc, argv);
}
} // namespace

int main(int argc, char **argv)
{
    // Widgets are made, and shown nowhere.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 2 && qstrcmp(argv[1], "--serve") == 0)
        return ClientResponder::serve();
    // Parts of the plugin take the work directory over while the program is loaded: it is too late to set it here.
    if (qEnvironmentVariableIsEmpty("TERMINAL_WORK_DIR")) {
        std::fputs("TERMINAL_WORK_DIR is not set: give an empty directory that may be written to.\n", stderr);
        return 2;
    }
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "values-benchmark: %s\n", error.what());
        return 1;
    }
}
