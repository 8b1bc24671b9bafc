// The curve of sample-based rarefaction beside two plain forms: the steps as stated for a point,
// each reading the matrix again, and the same with the matrix read once a curve. The plain forms'
// time is that of one point, at T / 2: a curve takes T - 1 times that.
#include <benchmark/benchmark.h>

#include <cmath>
#include <numeric>
#include <string>

#include "bench/plain_rarefaction.h"
#include "bench/run_benchmarks.h"
#include "metrics/random_source.h"
#include "metrics/rarefaction.h"

namespace zorvel {
namespace {

// Occupancies of the names spread evenly over the logarithms, from one census to all.
CountsMatrix project(std::size_t censuses, std::size_t names) {
    SeededRandom random(censuses);
    CountsMatrix matrix(censuses, CountsVector(names, 0));
    for (std::size_t j = 0; j < names; ++j) {
        const double share =
            std::pow(static_cast<double>(censuses), random.bits32() / 4294967296.0 - 1);
        for (CountsVector& row : matrix) {
            if (random.bits32() < share * 4294967296.0) row[j] = 1 + random.bits32() % 9;
        }
    }
    return matrix;
}

void plainPoint(benchmark::State& state, const CountsMatrix& matrix) {
    const std::vector<double> lf = plain::logFactorials(10'000);
    for (auto unused : state)
        benchmark::DoNotOptimize(plain::sampleBasedPoint(lf, matrix, matrix.size() / 2).variance);
}

void plainPointOfKnownIncidence(benchmark::State& state, const CountsMatrix& matrix) {
    const std::vector<double> lf = plain::logFactorials(10'000);
    const plain::Incidence known = plain::incidence(matrix);
    for (auto unused : state)
        benchmark::DoNotOptimize(plain::tau(lf, known, matrix.size() / 2).variance);
}

void curve(benchmark::State& state, const CountsMatrix& matrix) {
    std::vector<SparseCounts::Column> columns(matrix.front().size());
    std::iota(columns.begin(), columns.end(), 0U);
    SparseCounts counts(columns.size());
    for (const CountsVector& row : matrix) counts.addRow(columns, row);
    for (auto unused : state) {
        const IncidenceSummary summary = summariseIncidence(counts);
        benchmark::DoNotOptimize(sharedCalculator().sampleBasedCurve(summary).data());
    }
}

template <typename Run>
void add(const std::string& name, std::size_t censuses, std::size_t names, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& s) {
        run(s, project(censuses, names));
    })->Unit(benchmark::kMicrosecond);
}

void addAll() {
    for (const auto& [censuses, names] : {std::pair{500, 300}, std::pair{5'000, 1'000}}) {
        const auto rows = static_cast<std::size_t>(censuses);
        const auto columns = static_cast<std::size_t>(names);
        const std::string prefix = "sample_based/" + std::to_string(rows);
        add(prefix + "/plain_point", rows, columns, plainPoint);
        add(prefix + "/plain_point_known", rows, columns, plainPointOfKnownIncidence);
        add(prefix + "/curve", rows, columns, curve);
    }
}

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    zorvel::addAll();
    return zorvel::runBenchmarks(argc, argv);
}
