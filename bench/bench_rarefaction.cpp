// Individual-based rarefaction: whole curves and single points beside the plain form. The plain
// form's time is that of one point, at N / 10: its curve takes 101 times that.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "bench/plain_rarefaction.h"
#include "bench/run_benchmarks.h"
#include "metrics/census_metrics.h"
#include "metrics/random_source.h"
#include "metrics/rarefaction.h"

namespace zorvel {
namespace {

struct Community {
    std::string name;
    CountsVector counts;
};

// A sample of a lognormal community: standard deviation 2 of the logarithms of the counts.
CountsVector logNormal(std::size_t taxa, std::int64_t specimens) {
    SeededRandom random(taxa);
    const auto uniform = [&random] { return (random.bits32() + 0.5) / 4294967296.0; };
    std::vector<double> sizes(taxa);
    double total = 0;
    for (double& size : sizes) {
        const double normal = std::sqrt(-2 * std::log(uniform())) * std::cos(6.283185 * uniform());
        size = std::exp(2 * normal);
        total += size;
    }
    CountsVector counts;
    const auto extra = static_cast<double>(specimens) - static_cast<double>(taxa);
    for (const double size : sizes)
        counts.push_back(1 + static_cast<std::int64_t>(size / total * extra));
    *std::max_element(counts.begin(), counts.end()) += specimens - individuals(counts);
    return counts;
}

std::vector<Community> communities() {
    return {{"1000_taxa/1e5", logNormal(1'000, 100'000)},
            {"5000_taxa/1e6", logNormal(5'000, 1'000'000)},
            {"20000_taxa/1e7", logNormal(20'000, 10'000'000)}};
}

void plainPoint(benchmark::State& state, const CountsVector& counts, std::int64_t n) {
    const std::vector<double> lf = plain::logFactorials(individuals(counts) + 1);
    for (auto unused : state)
        benchmark::DoNotOptimize(plain::individualBasedPoint(lf, counts, n).variance);
}

void point(benchmark::State& state, const CountsVector& counts, std::int64_t n) {
    sharedCalculator().individualBasedPoint(counts, 2);  // the table stands
    for (auto unused : state)
        benchmark::DoNotOptimize(sharedCalculator().individualBasedPoint(counts, n).variance);
}

void curve(benchmark::State& state, const CountsVector& counts) {
    sharedCalculator().individualBasedPoint(counts, 2);
    for (auto unused : state)
        benchmark::DoNotOptimize(sharedCalculator().individualBasedCurve(counts).data());
}

template <typename Run>
void add(const std::string& name, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMicrosecond);
}

void addAll() {
    for (const Community& each : communities()) {
        const CountsVector counts = each.counts;
        const std::int64_t tenth = individuals(counts) / 10;
        const auto at = [&](const char* form) { return "rarefaction/" + each.name + form; };
        add(at("/plain_point"), [=](benchmark::State& s) { plainPoint(s, counts, tenth); });
        add(at("/curve"), [=](benchmark::State& s) { curve(s, counts); });
        add(at("/point_tenth"), [=](benchmark::State& s) { point(s, counts, tenth); });
        add(at("/point_50"), [=](benchmark::State& s) { point(s, counts, 50); });
    }
}

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    zorvel::addAll();
    return zorvel::runBenchmarks(argc, argv);
}
