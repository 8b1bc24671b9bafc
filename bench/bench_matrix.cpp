// The census matrix of 2,000 censuses by 20,000 taxa, one cell in twenty present (81 MB of text):
// read from memory and written, beside the plain form. Freeing the records is not timed.
#include <benchmark/benchmark.h>

#include <chrono>
#include <numeric>
#include <random>

#include "bench/plain_matrix.h"
#include "interchange/parsers.h"
#include "interchange/writers.h"

namespace {

using namespace zorvel;

struct Matrix {
    CountsMatrix counts;
    SparseCounts sparse;
    std::vector<std::string> taxonNames;
    std::vector<std::string> censusNames;
    std::string text;
};

Matrix makeMatrix(std::size_t censuses, std::size_t taxa) {
    std::mt19937_64 random(20240229);
    std::bernoulli_distribution present(0.05);
    std::geometric_distribution<std::int64_t> abundance(0.2);
    Matrix matrix;
    for (std::size_t i = 0; i < taxa; ++i) {
        matrix.taxonNames.push_back("Genus species " + std::to_string(100000 + i));
    }
    matrix.counts.assign(censuses, CountsVector(taxa, 0));
    for (std::size_t i = 0; i < censuses; ++i) {
        matrix.censusNames.push_back("Census " + std::to_string(i));
        for (std::int64_t& count : matrix.counts[i]) {
            if (present(random)) count = 1 + abundance(random);
        }
    }
    matrix.sparse = SparseCounts(taxa);
    std::vector<SparseCounts::Column> columns(taxa);
    std::iota(columns.begin(), columns.end(), 0U);
    for (const CountsVector& row : matrix.counts) matrix.sparse.addRow(columns, row);
    matrix.text = plain::writeCensusMatrix(matrix.counts, matrix.taxonNames, matrix.censusNames);
    return matrix;
}

const Matrix& matrix() {
    static const Matrix made = makeMatrix(2000, 20000);
    return made;
}

template <class Work>
void timeEach(benchmark::State& state, Work work) {
    matrix();
    for ([[maybe_unused]] auto iteration : state) {
        const auto begin = std::chrono::steady_clock::now();
        const auto made = work();
        const auto end = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(&made);
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(matrix().text.size()));
}

void parsePlain(benchmark::State& state) {
    timeEach(state, [] { return plain::parseCensusMatrix(matrix().text); });
}
void parse(benchmark::State& state) {
    timeEach(state, [] { return parseCensusMatrix(matrix().text); });
}
void writePlain(benchmark::State& state) {
    timeEach(state, [] {
        return plain::writeCensusMatrix(matrix().counts, matrix().taxonNames, matrix().censusNames);
    });
}
void write(benchmark::State& state) {
    timeEach(state, [] {
        std::string text;
        writeCensusMatrix(matrix().sparse, matrix().taxonNames, matrix().censusNames,
                          [&text](std::string_view piece) {
                              text += piece;
                              return true;
                          });
        return text;
    });
}

BENCHMARK(parsePlain)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(parse)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);
BENCHMARK(writePlain)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(write)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

}  // namespace

BENCHMARK_MAIN();
