// A project of 10,000 censuses and a million taxa: storing it, editing and undoing, freezing it,
// reading its lists. The pooled counts stand beside the plain form, which scans the sorted names
// for each taxon. What is named "cold" runs after the processor's caches were filled with other
// things.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/plain_project_lists.h"
#include "model/diversity_document.h"
#include "tests/support/import_censuses.h"

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
        importCensuses(filled->objectContext(), mockCensuses(censusCount));
        return filled;
    }();
    return *document;
}

void storeCensuses(benchmark::State& state) {
    const auto censuses = mockCensuses(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        DiversityDocument document;
        for (const MockCensus& census : censuses) {
            importCensuses(document.objectContext(), {census});
        }
        benchmark::DoNotOptimize(document.objectContext().censusCount());
    }
    state.SetComplexityN(state.range(0));
}

void frozenCopy(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(project().objectContext().frozenCopy());
}

void fillCaches() {
    static std::vector<char> other(64U << 20U);
    for (std::size_t i = 0; i < other.size(); i += 64) ++other[i];
    benchmark::ClobberMemory();
}

// Times act() alone.
template <class Prepare, class Act>
void timeCold(benchmark::State& state, Prepare prepare, Act act) {
    for (auto _ : state) {
        prepare();
        fillCaches();
        const auto start = std::chrono::steady_clock::now();
        act();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
    }
}

// A project that was opened, with an observer that walks over what it hears.
struct Opened {
    Opened() {
        context.adopt(project().objectContext().records());
        context.addObserver([](const ChangeSet& changes) {
            for (const CensusChange& change : changes) benchmark::DoNotOptimize(change.census);
        });
        taxa = context.taxa();
    }
    void editOne() {
        const Zorvel& taxon = taxa[random() % taxa.size()];
        editAbundance(context, taxon, static_cast<std::int64_t>(random()));
        context.announceChanges();
    }
    ObjectContext context;
    std::vector<Zorvel> taxa;
    std::mt19937 random;
};

void memory(benchmark::State& state) {
    const auto inUse = [] {
        const auto info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    const auto censuses = mockCensuses(censusCount);
    for (auto _ : state) {
        const double before = inUse();
        DiversityDocument document;
        importCensuses(document.objectContext(), censuses);
        document.objectContext().announceChanges();
        state.counters["bytesPerTaxon"] = (inUse() - before) / (censusCount * taxaPerCensus);
    }
}

void frozenCopyCold(benchmark::State& state) {
    std::shared_ptr<const ObjectContext> copy;
    timeCold(
        state, [&] { copy = nullptr; }, [&] { copy = project().objectContext().frozenCopy(); });
}

void edit(benchmark::State& state) {
    Opened opened;
    for (auto _ : state) opened.editOne();
}

void editColdAfterCopy(benchmark::State& state) {
    Opened opened;
    std::shared_ptr<const ObjectContext> copy;
    timeCold(
        state, [&] { copy = opened.context.frozenCopy(); }, [&] { opened.editOne(); });
}

void undoEditCold(benchmark::State& state) {
    Opened opened;
    timeCold(
        state, [&] { opened.editOne(); },
        [&] {
            opened.context.undo();
            opened.context.announceChanges();
        });
}

void dropUndoneImport(benchmark::State& state) {
    const auto censuses = mockCensuses(censusCount);
    ObjectContext context;
    timeCold(
        state,
        [&] {
            importCensuses(context, censuses);
            context.undo();
        },
        [&] { addCensus(context); });
}

void undoAndRedo(benchmark::State& state, ObjectContext& context) {
    for (auto _ : state) {
        context.undo();
        context.announceChanges();
        context.redo();
        context.announceChanges();
    }
}

void undoAndRedoImport(benchmark::State& state) {
    ObjectContext context;
    importCensuses(context, mockCensuses(censusCount));
    undoAndRedo(state, context);
}

void undoAndRedoDeletion(benchmark::State& state) {
    Opened opened;
    deleteCensuses(opened.context, opened.context.censuses());
    undoAndRedo(state, opened.context);
}

void deleteEverything(benchmark::State& state) {
    Opened opened;
    const std::vector<Census> censuses = opened.context.censuses();
    timeCold(
        state, [&] { opened.context.undo(); },
        [&] {
            deleteCensuses(opened.context, censuses);
            opened.context.announceChanges();
        });
}

void deleteTaxaOfOneCensus(benchmark::State& state) {
    ObjectContext context;
    const Census census = context.insertCensus();
    const auto taxa = pasteTaxa(context, census, std::vector<TaxonValues>(100'000));
    for (auto _ : state) {
        deleteTaxa(context, taxa);
        context.announceChanges();
        context.undo();
    }
}

void leaveOutTaxaOfOneCensus(benchmark::State& state) {
    ObjectContext context;
    const Census census = context.insertCensus();
    const auto taxa = pasteTaxa(context, census, std::vector<TaxonValues>(100'000));
    for (auto _ : state) {
        editInclude(context, taxa, false);
        context.announceChanges();
        context.undo();
    }
}

void adopt(benchmark::State& state) {
    ProjectRecords records;
    std::unique_ptr<ObjectContext> context;
    timeCold(
        state,
        [&] {
            records = project().objectContext().records();
            context = std::make_unique<ObjectContext>();
        },
        [&] { context->adopt(std::move(records)); });
}

void insertTaxon(benchmark::State& state) {
    ObjectContext context;
    const Census census = context.insertCensus();
    for (auto _ : state) context.setAbundance(context.insertTaxon(census), 1);
}

void readEveryAttribute(benchmark::State& state) {
    const std::vector<Zorvel> taxa = project().fetchTaxa();
    for (auto _ : state) {
        std::int64_t sum = 0;
        for (const Zorvel& taxon : taxa) {
            sum += taxon.abundance() + static_cast<std::int64_t>(taxon.name()->view().size());
        }
        benchmark::DoNotOptimize(sum);
    }
}

void counts(benchmark::State& state) {
    const ObjectContext& context = project().objectContext();
    for (auto _ : state) benchmark::DoNotOptimize(buildSparseCounts(context));
}

// Of 100 censuses only: the plain scans take minutes over all.
const ObjectContext& fewCensuses() {
    static const auto document = [] {
        auto filled = std::make_unique<DiversityDocument>();
        importCensuses(filled->objectContext(), mockCensuses(100));
        return filled;
    }();
    return document->objectContext();
}

void pooled(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(buildSparseCounts(fewCensuses()).pooled);
}

void plainPooled(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(plain::pooledCountsVector(fewCensuses().taxa()));
}

BENCHMARK(storeCensuses)->Arg(1000)->Arg(4000)->Arg(16000)->Unit(benchmark::kMillisecond);
BENCHMARK(memory)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(frozenCopy)->Unit(benchmark::kMicrosecond);
BENCHMARK(frozenCopyCold)->Unit(benchmark::kMicrosecond)->UseManualTime()->Iterations(50);
BENCHMARK(edit)->Unit(benchmark::kMicrosecond);
BENCHMARK(editColdAfterCopy)->Unit(benchmark::kMicrosecond)->UseManualTime()->Iterations(50);
BENCHMARK(undoEditCold)->Unit(benchmark::kMicrosecond)->UseManualTime()->Iterations(50);
BENCHMARK(dropUndoneImport)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(undoAndRedoImport)->Unit(benchmark::kMillisecond);
BENCHMARK(undoAndRedoDeletion)->Unit(benchmark::kMillisecond);
BENCHMARK(deleteEverything)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);
BENCHMARK(deleteTaxaOfOneCensus)->Unit(benchmark::kMillisecond);
BENCHMARK(leaveOutTaxaOfOneCensus)->Unit(benchmark::kMillisecond);
BENCHMARK(adopt)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);
BENCHMARK(insertTaxon)->Iterations(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readEveryAttribute)->Unit(benchmark::kMillisecond);
BENCHMARK(counts)->Unit(benchmark::kMillisecond);
BENCHMARK(pooled)->Unit(benchmark::kMillisecond);
BENCHMARK(plainPooled)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
