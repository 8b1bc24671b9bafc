// All values of a project of 10,000 censuses, a million taxa and 50,000 names, and of one a tenth
// of it, from its records to the last of them, step by step. The counter peakMB is the most memory
// that the process has had up to then: run one benchmark alone to learn its own.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>
#include <map>
#include <memory>
#include <string>

#include "bench/run_benchmarks.h"
#include "metrics/project_wide.h"
#include "metrics/sqs.h"
#include "model/diversity_document.h"
#include "model/project_metrics.h"

namespace zorvel {
namespace {

struct Size {
    std::size_t censuses;
    std::size_t taxa;  // of each census
    std::size_t names;
};

// Names are taken more often the lower their number; most abundances are low.
std::shared_ptr<const ObjectContext> makeProject(const Size& size) {
    SeededRandom random(size.censuses);
    std::vector<SharedText> names;
    for (std::size_t i = 0; i < size.names; ++i)
        names.emplace_back("Genus species " + std::to_string(i));
    ObjectContext context;
    for (std::size_t i = 0; i < size.censuses; ++i) {
        CensusAttributes attributes;
        attributes.name = "Plot " + std::to_string(i);
        std::map<std::size_t, std::int64_t> taxa;
        while (taxa.size() < size.taxa) {
            const double share = random.bits32() / 4294967296.0;
            const auto name =
                static_cast<std::size_t>(share * share * static_cast<double>(size.names));
            const double logarithm = 4.6 * random.bits32() / 4294967296.0;
            taxa[name] = static_cast<std::int64_t>(std::exp(logarithm));
        }
        std::vector<TaxonValues> values;
        for (const auto& [name, abundance] : taxa) values.push_back({names[name], abundance, true});
        context.insertCensus(attributes, std::move(values));
    }
    return context.frozenCopy();
}

constexpr Size large = {10'000, 100, 50'000};
constexpr Size fit = {1'000, 100, 5'000};

const ObjectContext& project(const Size& size) {
    static std::map<std::size_t, std::shared_ptr<const ObjectContext>> projects;
    auto& made = projects[size.censuses];
    if (!made) made = makeProject(size);
    return *made;
}

const SparseCountsResult& built(const Size& size) {
    static std::map<std::size_t, SparseCountsResult> results;
    const auto place = results.find(size.censuses);
    if (place != results.end()) return place->second;
    return results.emplace(size.censuses, buildSparseCounts(project(size))).first->second;
}

void countPeak(benchmark::State& state) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peakMB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}

// What the random numbers are does not matter, but that they are the same each time.
double allValues(const Size& size) {
    SparseCountsResult result = buildSparseCounts(project(size));
    const ProjectCounts counts{std::move(result.pooled), std::move(result.counts)};
    SeededRandom random(1);
    ProjectMetrics metrics;
    metrics.inputs.parameters = {50, 0.8};
    for (const ProjectStep& step : projectSteps()) step.compute(counts, random, metrics);
    return std::get<double>(metrics.values.back().second);
}

template <class Step>
void add(const char* name, Step step) {
    benchmark::RegisterBenchmark(name,
                                 [step](benchmark::State& state) {
                                     step();  // what is made once is made before the clock runs
                                     for (auto unused : state) benchmark::DoNotOptimize(step());
                                     countPeak(state);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void addSteps() {
    add("large/build", [] { return buildSparseCounts(project(large)).replacedTaxa; });
    add("large/pooled", [] {
        SeededRandom random(1);
        const CountsVector& pooled = built(large).pooled;
        return censusMetrics(pooled).number(Metric::fisherAlpha) +
               *alroySQS(pooled, 100, 0.8, random) +
               sharedCalculator().individualBasedPoint(pooled, 50).estimate;
    });
    add("large/averages",
        [] { return averageMetrics(built(large).counts).number(Metric::shannonH); });
    add("large/average_rarefied",
        [] { return averageRarefiedRichness(built(large).counts, 50, sharedCalculator()); });
    for (const unsigned threads : {1U, 2U}) {
        const std::string name = "large/average_sqs/threads:" + std::to_string(threads);
        add(name.c_str(), [threads] {
            SeededRandom random(1);
            return averageAlroySQS(built(large).counts, 0.8, random, threads).censuses;
        });
    }
    add("large/incidence", [] {
        const IncidenceSummary summary = summariseIncidence(built(large).counts);
        return chaoTwo(summary) + sharedCalculator().sampleBasedPoint(summary, 50).estimate;
    });
}

void addAll() {
    add("fit/all", [] { return allValues(fit); });
    add("large/all", [] { return allValues(large); });
    addSteps();
}

}  // namespace
}  // namespace zorvel

int main(int argc, char** argv) {
    zorvel::addAll();
    return zorvel::runBenchmarks(argc, argv);
}
