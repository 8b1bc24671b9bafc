// The main() of the benchmarks that are registered by name at start-up.
#pragma once

#include <benchmark/benchmark.h>

namespace zorvel {

inline int runBenchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace zorvel
