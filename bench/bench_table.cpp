// Tables of 5,000 censuses by 2,600 species, half of the cells present, in every layout: guessed
// and read, beside the reader of matrices and the plain form of it on the same cells. Run each in a
// process of its own (--benchmark_filter), where the memory of its records is new, as it is for a
// user.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "bench/other_thread.h"
#include "bench/plain_matrix.h"
#include "tables/guess.h"
#include "tables/reader.h"

namespace {

using namespace zorvel;

struct Texts {
    std::string commas;
    std::string unknownNames;   // the same counts, as far as they are guessed
    std::string decimalCommas;  // likewise, as 3,0
    std::string semicolons;
    std::string speciesRows;
    std::string records;
};

Texts makeTexts(std::size_t censuses, std::size_t species) {
    std::mt19937_64 random(20240229);
    std::bernoulli_distribution present(0.5);
    std::geometric_distribution<int> abundance(0.2);
    const auto site = [](std::size_t i) { return "Site " + std::to_string(i); };
    const auto name = [](std::size_t i) { return "Genus species " + std::to_string(100000 + i); };
    Texts texts;
    texts.commas = "Site";
    texts.speciesRows = "Species";
    texts.records = "Site,Species,Count\n";
    texts.unknownNames = "Site";
    texts.decimalCommas = "Site";
    for (std::size_t j = 0; j < species; ++j) {
        texts.commas += ',' + name(j);
        texts.unknownNames += ",Genus" + std::to_string(j);
        texts.decimalCommas += ";Genus" + std::to_string(j);
    }
    std::vector<std::string> rows(species);
    for (std::size_t i = 0; i < censuses; ++i) {
        texts.speciesRows += ',' + site(i);
        texts.commas += '\n' + site(i);
        const bool isGuessed = texts.decimalCommas.size() < TableSample::mostBytes;
        if (isGuessed) texts.decimalCommas += '\n' + site(i);
        for (std::size_t j = 0; j < species; ++j) {
            const int count = present(random) ? 1 + abundance(random) : 0;
            const std::string cell = ',' + std::to_string(count);
            texts.commas += cell;
            rows[j] += cell;
            if (isGuessed) texts.decimalCommas += ';' + std::to_string(count) + ",0";
            if (count > 0) texts.records += site(i) + ',' + name(j) + cell + '\n';
        }
    }
    texts.commas += '\n';
    for (std::size_t j = 0; j < species; ++j) texts.speciesRows += '\n' + name(j) + rows[j];
    texts.unknownNames += texts.commas.substr(texts.commas.find('\n'), TableSample::mostBytes);
    texts.semicolons = texts.commas;
    for (char& c : texts.semicolons) c = c == ',' ? ';' : c;
    return texts;
}

const Texts& texts() {
    static const Texts made = makeTexts(5000, 2600);
    return made;
}

TableGuess guessOf(const std::string& text) {
    const std::string_view start = std::string_view(text).substr(0, TableSample::mostBytes);
    return guessTable(start, start.size() == text.size());
}

void read(benchmark::State& state, const std::string Texts::*text) {
    const TableGuess guess = guessOf(texts().*text);
    for ([[maybe_unused]] auto iteration : state) {
        TextRows rows(bytesOf(texts().*text), guess.reading.form);
        benchmark::DoNotOptimize(readTable(rows, guess.reading));
    }
}
void guess(benchmark::State& state, const std::string Texts::*text) {
    texts();  // made before the clock starts
    for ([[maybe_unused]] auto iteration : state) benchmark::DoNotOptimize(guessOf(texts().*text));
}
void matrix(benchmark::State& state) {
    texts();
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(parseCensusMatrix(texts().commas));
    }
}
void plainMatrix(benchmark::State& state) {
    texts();
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(plain::parseCensusMatrix(texts().commas));
    }
}

BENCHMARK(plainMatrix)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(matrix)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(guess, commas, &Texts::commas)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(guess, unknownNames, &Texts::unknownNames)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(guess, decimalCommas, &Texts::decimalCommas)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(read, commas, &Texts::commas)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(read, semicolons, &Texts::semicolons)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(read, speciesRows, &Texts::speciesRows)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(read, records, &Texts::records)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
