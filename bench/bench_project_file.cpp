// A project file of 10,000 censuses and a million taxa: made, opened and read, brought up to date
// after one edit. Making and reading stand beside bare loops over prepared statements.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/plain_project_file.h"
#include "bench/run_benchmarks.h"
#include "store/project_file.h"

namespace {

using namespace zorvel;

constexpr std::size_t censusCount = 10'000;
constexpr std::size_t taxaPerCensus = 100;
constexpr std::size_t taxonCount = censusCount * taxaPerCensus;
constexpr std::size_t nameCount = 5'000;

// In the working folder: a temporary folder may be in memory.
class Folder {
  public:
    Folder() : path_("bench-project-" + std::to_string(getpid())) {
        std::filesystem::create_directory(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] std::string operator/(const char* name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

const Folder& folder() {
    static const Folder only;
    return only;
}

ObjectContext& project() {
    static ObjectContext context;
    if (context.censusCount() > 0) return context;
    std::mt19937 random(1);
    std::vector<TaxonValues> taxa(taxaPerCensus);
    for (std::size_t i = 0; i < censusCount; ++i) {
        for (TaxonValues& taxon : taxa) {
            taxon.name = "Genus species " + std::to_string(random() % nameCount);
            taxon.abundance = 1 + random() % 50;
        }
        CensusAttributes attributes;
        attributes.name = "Plot " + std::to_string(i);
        attributes.latitude = 52.1 + 1e-4 * static_cast<double>(i);
        attributes.longitude = 4.9;
        context.insertCensus(attributes, taxa);
    }
    return context;
}

template <class T>
T required(FileResult<T> result) {
    if (result) return std::move(result).value();
    std::fprintf(stderr, "%s\n", result.problem().detail.c_str());
    std::abort();
}

std::unique_ptr<ProjectFile> create(const char* name) {
    return required(ProjectFile::create(folder() / name, project()));
}

void save(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(create("saved.zorvel"));
}

void plainSave(benchmark::State& state) {
    for (auto _ : state) plain::save(folder() / "plain.sqlite", project());
}

void load(benchmark::State& state) {
    create("saved.zorvel");
    for (auto _ : state) {
        const auto file = required(ProjectFile::open(folder() / "saved.zorvel"));
        benchmark::DoNotOptimize(required(file->load()));
    }
}

void openAlone(benchmark::State& state) {
    create("saved.zorvel");
    for (auto _ : state) {
        benchmark::DoNotOptimize(required(ProjectFile::open(folder() / "saved.zorvel")));
    }
}

void plainLoad(benchmark::State& state) {
    plain::save(folder() / "plain.sqlite", project());
    for (auto _ : state) benchmark::DoNotOptimize(plain::load(folder() / "plain.sqlite"));
}

// What the records take that were read, in bytes a taxon, names included.
void bytesPerTaxon(benchmark::State& state) {
    create("saved.zorvel");
    for (auto _ : state) {
        const auto file = required(ProjectFile::open(folder() / "saved.zorvel"));
        const std::size_t before = mallinfo2().uordblks;
        const ProjectRecords records = required(file->load());
        state.counters["bytes"] =
            static_cast<double>(mallinfo2().uordblks - before) / static_cast<double>(taxonCount);
    }
}

// One abundance; the file is synced at each.
void writeOneEdit(benchmark::State& state) {
    const auto file = create("saved.zorvel");
    const std::vector<Zorvel> taxa = project().taxa();
    std::size_t next = 0;
    for (auto _ : state) {
        const Zorvel& taxon = taxa[next = (next + 7919) % taxa.size()];
        project().setAbundance(taxon, taxon.abundance() + 1);
        if (file->write(project().frozenCopy())) std::abort();
    }
}

// The least that a commit costs on this disk: one row of a small database.
void plainCommit(benchmark::State& state) {
    plain::Database database(folder() / "small.sqlite");
    database.run("PRAGMA synchronous=EXTRA; CREATE TABLE IF NOT EXISTS a(b)");
    for (auto _ : state) database.run("INSERT INTO a VALUES(1)");
}

void check(benchmark::State& state, const char* pragma) {
    create("saved.zorvel");
    for (auto _ : state) {
        plain::Database database(folder() / "saved.zorvel");
        database.run(pragma);
    }
}

BENCHMARK(save)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(plainSave)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(load)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(plainLoad)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(openAlone)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(bytesPerTaxon)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(writeOneEdit)->Unit(benchmark::kMillisecond)->Iterations(30)->UseRealTime();
BENCHMARK(plainCommit)->Unit(benchmark::kMillisecond)->Iterations(30)->UseRealTime();
BENCHMARK_CAPTURE(check, quick, "PRAGMA quick_check")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK_CAPTURE(check, integrity, "PRAGMA integrity_check")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    return runBenchmarks(argc, argv);
}
