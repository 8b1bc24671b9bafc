// Shareholder quorum subsampling with 100 trials: classes of equal counts beside the textbook pool
// of specimens, for communities from 11 to 10^7 specimens.
#include <benchmark/benchmark.h>

#include <cmath>
#include <optional>
#include <string>

#include "bench/plain_sqs.h"
#include "bench/run_benchmarks.h"
#include "metrics/sqs.h"

namespace zorvel {
namespace {

struct Community {
    std::string name;
    CountsVector counts;
    double quota;
};

// Taxa whose counts spread evenly over the logarithms from 1 up, scaled to about the number of
// specimens.
CountsVector logUniform(std::size_t taxa, double specimens) {
    SeededRandom random(taxa);
    std::vector<double> sizes(taxa);
    double total = 0;
    for (double& size : sizes) {
        size = std::exp(random.bits32() / 4294967296.0 * 9);
        total += size;
    }
    CountsVector counts;
    for (const double size : sizes)
        counts.push_back(1 + static_cast<std::int64_t>(size / total * specimens));
    return counts;
}

CountsVector joined(CountsVector counts, std::size_t taxa, std::int64_t count) {
    counts.insert(counts.end(), taxa, count);
    return counts;
}

// 1, 2, .. largest: every taxon a count of its own.
CountsVector ladder(std::int64_t largest) {
    CountsVector counts;
    for (std::int64_t count = 1; count <= largest; ++count) counts.push_back(count);
    return counts;
}

std::vector<Community> communities() {
    return {{"11", {4, 3, 2, 1, 1}, 0.6},
            {"11_even", {3, 3, 3, 2}, 0.8},
            {"100", logUniform(20, 80), 0.8},
            {"100_low_quota", logUniform(40, 60), 0.2},
            {"1000", logUniform(100, 900), 0.8},
            {"1000_quota_0.99", CountsVector(20, 50), 0.99},
            {"1000_low_quota", logUniform(500, 500), 0.1},
            {"1000_ladder", ladder(44), 0.5},
            {"1000_ladder_0.99", ladder(44), 0.99},
            {"1000_rare", joined({500}, 250, 2), 0.7},
            {"1e5_ladder", ladder(446), 0.5},
            {"1e5_rare", joined({50'000}, 50'000, 1), 0.5},
            {"1e6", logUniform(1'000, 1e6), 0.8},
            {"1e6_20000_taxa", logUniform(20'000, 1e6), 0.8},
            {"1e6_quota_0.99", logUniform(5'000, 1e6), 0.99},
            {"1e6_rare", joined({200'000}, 200'000, 4), 0.95},
            {"1e7", logUniform(1'000, 1e7), 0.8},
            {"1e7_5000_taxa", logUniform(5'000, 1e7), 0.8},
            {"1e7_20000_taxa", logUniform(20'000, 1e7), 0.8}};
}

using Estimate = std::optional<double> (*)(CountsView, std::int64_t, double, RandomSource&);

void run(benchmark::State& state, const Community& community, Estimate estimate) {
    SeededRandom random(1);
    std::optional<double> last;
    for (auto unused : state) last = estimate(community.counts, 100, community.quota, random);
    state.counters["estimate"] = last.value_or(-1);
}

void addAll() {
    for (const Community& each : communities()) {
        for (const auto& [form, estimate] :
             {std::pair<const char*, Estimate>{"plain", plain::alroySQS}, {"classes", alroySQS}}) {
            const Estimate chosen = estimate;
            benchmark::RegisterBenchmark(
                ("sqs/" + each.name + "/" + form).c_str(),
                [each, chosen](benchmark::State& state) { run(state, each, chosen); })
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    zorvel::addAll();
    return zorvel::runBenchmarks(argc, argv);
}
