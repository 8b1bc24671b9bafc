// Diversity at equal coverage beside its printed formulas: the curve of order 1 at 100 sizes, the
// profile of 8 orders, and the limits of a whole window. Of three published samples and two made
// ones. The printed profile takes a time in proportion to specimens times taxa: two minutes for
// 10^6 specimens. It is left out for more.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "bench/plain_diversity.h"
#include "bench/run_benchmarks.h"
#include "metrics/diversity_limits.h"
#include "metrics/random_source.h"

namespace zorvel {
namespace {

// A sample of the file of expected values.
CountsVector published(const std::string& name) {
    std::ifstream file(ZORVEL_SOURCE_DIR "/tests/data/diversity/expected.txt");
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string word;
        std::string sample;
        std::int64_t censuses = 0;
        if (!(words >> word >> sample >> censuses) || word != "sample" || sample != name) continue;
        CountsVector counts;
        for (std::int64_t count = 0; words >> count;) counts.push_back(count);
        return counts;
    }
    std::cerr << "The file of expected values has no sample " << name << ".\n";
    std::abort();
}

// Counts that fall geometrically, as those of many communities do, with a tail of rare taxa.
CountsVector community(std::size_t taxa, double specimens) {
    CountsVector counts;
    const double ratio = std::pow(1e-3, 1.0 / static_cast<double>(taxa));
    double share = (1 - ratio) * specimens;
    for (std::size_t i = 0; i < taxa; ++i) {
        counts.push_back(std::max<std::int64_t>(1, std::llround(share)));
        share *= ratio;
    }
    return counts;
}

std::vector<double> hundredSizes(double n) {
    std::vector<double> sizes;
    for (int i = 1; i <= 100; ++i) sizes.push_back(std::max(1.0, std::floor(n * i / 100)));
    return sizes;
}

void curve(benchmark::State& state, const CountsVector& counts) {
    const DiversityEstimator estimator(abundanceFrequencies(counts));
    const std::vector<double> sizes = hundredSizes(estimator.sample().size);
    for (auto unused : state) {
        for (const double size : sizes) {
            benchmark::DoNotOptimize(estimator.atSize(size)->diversity[1]);
        }
    }
}

void plainCurve(benchmark::State& state, const CountsVector& counts) {
    const double n = abundanceFrequencies(counts).size;
    const std::vector<double> logs = plain::logFactorialsUpTo(static_cast<std::int64_t>(n));
    for (auto unused : state) {
        for (const double size : hundredSizes(n)) {
            benchmark::DoNotOptimize(
                plain::shannonDiversityOfSubsample(logs, counts, static_cast<std::int64_t>(size)));
        }
    }
}

const std::vector<double> orders{0.25, 0.5, 0.75, 1.25, 1.5, 1.75, 1.9, 0.1};

void profile(benchmark::State& state, const CountsVector& counts) {
    for (auto unused : state) {
        const DiversityEstimator estimator(abundanceFrequencies(counts));
        for (const double q : orders) benchmark::DoNotOptimize(*estimator.estimated(q));
    }
}

void plainProfile(benchmark::State& state, const CountsVector& counts) {
    for (auto unused : state) {
        for (const double q : orders) {
            benchmark::DoNotOptimize(plain::estimatedDiversity(counts, q));
        }
    }
}

// 200 replicates on one thread, at 41 sizes and at their coverages.
void limits(benchmark::State& state, const CountsVector& counts) {
    const DiversityEstimator estimator(abundanceFrequencies(counts));
    BootstrapPlan plan;
    plan.threads = 1;
    plan.sizes = standardSizes(estimator.sample().size);
    for (const double size : plan.sizes) {
        plan.coverages.push_back(estimator.atSize(size)->coverage);
    }
    for (auto unused : state) benchmark::DoNotOptimize(bootstrapErrors(estimator, plan));
}

void addAll() {
    const struct {
        std::string name;
        CountsVector counts;
        bool plainProfileToo;
    } samples[] = {
        {"spider_Girdled", published("spider_Girdled"), true},
        {"BCI_Plot_1", published("BCI_Plot_1"), true},
        {"BCI_pooled", published("BCI_pooled"), true},
        {"5000_taxa/1e6", community(5'000, 1e6), true},
        {"20000_taxa/1e7", community(20'000, 1e7), false},
    };
    for (const auto& sample : samples) {
        const auto add = [&](const std::string& name, auto function) {
            benchmark::RegisterBenchmark((name + '/' + sample.name).c_str(), function,
                                         sample.counts)
                ->Unit(benchmark::kMillisecond);
        };
        add("curve/plain", plainCurve);
        add("curve", curve);
        if (sample.plainProfileToo) add("profile/plain", plainProfile);
        add("profile", profile);
        add("limits", limits);
    }
}

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    zorvel::addAll();
    return zorvel::runBenchmarks(argc, argv);
}
