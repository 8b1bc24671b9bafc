// The metrics of 10,000 censuses of 200 taxa: all from one tally of the census, beside the textbook
// form of each.
#include <benchmark/benchmark.h>

#include <cmath>

#include "bench/plain_census_metrics.h"
#include "metrics/metric_table.h"
#include "metrics/random_source.h"

namespace zorvel {
namespace {

// Counts spread evenly over the logarithms from below 1 to largest; a census lacks about a third of
// its taxa.
CountsMatrix censuses(double largest) {
    SeededRandom random(1);
    CountsMatrix matrix(10'000, CountsVector(200));
    for (CountsVector& census : matrix)
        for (std::int64_t& count : census) {
            const double uniform = random.bits32() / 4294967296.0;
            const bool absent = random.below(3) == 0;
            count = absent ? 0 : static_cast<std::int64_t>(std::exp(uniform * std::log(largest)));
        }
    return matrix;
}

template <auto compute>
void allCensuses(benchmark::State& state) {
    const CountsMatrix matrix = censuses(static_cast<double>(state.range(0)));
    for (auto unused : state) {
        for (const CountsVector& census : matrix) benchmark::DoNotOptimize(compute(census));
    }
}

BENCHMARK(allCensuses<plain::censusMetrics>)
    ->Name("census_metrics/plain")
    ->Arg(20)
    ->Arg(200)
    ->Arg(20'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(allCensuses<censusMetrics>)
    ->Name("census_metrics/tally")
    ->Arg(20)
    ->Arg(200)
    ->Arg(20'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zorvel

BENCHMARK_MAIN();
