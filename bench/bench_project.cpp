// A project of 10,000 censuses and a million taxa: storing it, freezing it, reading its lists. The
// pooled counts stand beside the plain form, which scans the sorted names for each taxon.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "model/diversity_document.h"

namespace {

using namespace zorvel;

constexpr std::size_t censusCount = 10'000;
constexpr std::size_t taxaPerCensus = 100;
constexpr std::size_t nameCount = 5'000;

std::vector<MockCensus> mockCensuses(std::size_t count) {
    std::vector<SharedText> names;
    for (std::size_t i = 0; i < nameCount; ++i) {
        names.emplace_back((i % 10 == 0 ? "\u00C9chinops e\u0301trange " : "Genus species ") +
                           std::to_string(i));
    }
    std::mt19937 random(1);
    std::vector<MockCensus> censuses(count);
    for (std::size_t i = 0; i < count; ++i) {
        censuses[i].name = "Plot " + std::to_string(i);
        for (std::size_t j = 0; j < taxaPerCensus; ++j) {
            censuses[i].taxa.push_back(
                {static_cast<std::int64_t>(1 + random() % 50), names[random() % nameCount]});
        }
    }
    return censuses;
}

const DiversityDocument& project() {
    static const auto document = [] {
        auto filled = std::make_unique<DiversityDocument>();
        for (const MockCensus& census : mockCensuses(censusCount)) filled->storeCensus(census);
        return filled;
    }();
    return *document;
}

void storeCensuses(benchmark::State& state) {
    const auto censuses = mockCensuses(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        DiversityDocument document;
        for (const MockCensus& census : censuses) document.storeCensus(census);
        benchmark::DoNotOptimize(document.objectContext().censusCount());
    }
    state.SetComplexityN(state.range(0));
}

void frozenCopy(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(project().objectContext().frozenCopy());
}

void insertTaxon(benchmark::State& state) {
    ObjectContext context;
    const Census census = context.insertCensus();
    for (auto _ : state) context.setAbundance(context.insertTaxon(census), 1);
}

void readEveryAttribute(benchmark::State& state) {
    const std::vector<Zorvel> taxa = *project().fetchTaxa();
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const Zorvel& taxon : taxa) {
            sum += taxon.abundance() + static_cast<std::int64_t>(taxon.name()->view().size());
        }
        benchmark::DoNotOptimize(sum);
    }
}

void fetchNamesAndPooled(benchmark::State& state) {
    for (auto _ : state) {
        const std::vector<Zorvel> taxa = *project().fetchTaxa();
        benchmark::DoNotOptimize(projectTaxonNames(taxa));
        benchmark::DoNotOptimize(pooledCountsVector(taxa));
    }
}

// The first 10,000 taxa only: the plain scans take minutes over all.
std::vector<Zorvel> fewTaxa() {
    std::vector<Zorvel> taxa = *project().fetchTaxa();
    taxa.resize(10'000, taxa.front());
    return taxa;
}

void pooled(benchmark::State& state) {
    const std::vector<Zorvel> taxa = fewTaxa();
    for (auto _ : state) benchmark::DoNotOptimize(pooledCountsVector(taxa));
}

void plainPooled(benchmark::State& state) {
    const std::vector<Zorvel> taxa = fewTaxa();
    for (auto _ : state) {
        const NameList names = projectTaxonNames(taxa);
        CountsVector counts(names.size(), 0);
        for (const Zorvel& taxon : taxa) {
            const auto place = std::find(names.begin(), names.end(), taxon.name()->view());
            counts[static_cast<std::size_t>(place - names.begin())] += taxon.abundance();
        }
        benchmark::DoNotOptimize(counts);
    }
}

void countsMatrix(benchmark::State& state) {
    const std::vector<Zorvel> taxa = *project().fetchTaxa();
    std::vector<Census> censuses = *project().fetchCensuses();
    for (auto _ : state) benchmark::DoNotOptimize(buildCountsMatrix(taxa, censuses));
}

BENCHMARK(storeCensuses)->Arg(1000)->Arg(4000)->Arg(16000)->Unit(benchmark::kMillisecond);
BENCHMARK(frozenCopy)->Unit(benchmark::kMicrosecond);
BENCHMARK(insertTaxon)->Iterations(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readEveryAttribute)->Unit(benchmark::kMillisecond);
BENCHMARK(fetchNamesAndPooled)->Unit(benchmark::kMillisecond);
BENCHMARK(pooled)->Unit(benchmark::kMillisecond);
BENCHMARK(plainPooled)->Unit(benchmark::kMillisecond);
BENCHMARK(countsMatrix)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
