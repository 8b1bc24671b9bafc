// Imports into a shown main view. Time is that from the command to the last table; the counter
// "longest" is the longest turn of the main thread meanwhile, in milliseconds of its processor
// time. The shapes marked large, of a gigabyte, take minutes and much memory: they are run by name.
#include <malloc.h>
#include <sys/resource.h>

#include <QApplication>
#include <QThread>
#include <algorithm>
#include <ctime>
#include <functional>
#include <memory>
#include <string>

#include "app/application_delegate.h"
#include "bench/bench_panels.h"
#include "bench/run_benchmarks.h"
#include "metrics/random_source.h"
#include "model/import.h"
#include "platform/job_queue.h"
#include "tests/support/offscreen_home.h"
#include "ui/main/main_view_controller.h"

namespace {

using namespace zorvel;

double mainThreadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// One cell in ten is a taxon.
std::string matrixText(int censuses, int species) {
    std::string text;
    for (int i = 0; i < species; ++i) text += ",Genus species " + std::to_string(i);
    std::string row;
    for (int i = 0; i < species; ++i) row += i % 10 == 0 ? ",7" : ",0";
    for (int i = 0; i < censuses; ++i) text += "\nPlot " + std::to_string(i) + row;
    return text + '\n';
}

std::string censusText(int species) {
    std::string text;
    for (int i = 0; i < species; ++i) text += "Genus species " + std::to_string(i) + ",7\n";
    return text;
}

struct Window {
    Window() {
        view = new MainViewController(
            jobs, [] { return std::make_unique<SeededRandom>(1); }, panels.all());
        view->showDocument(document);
        view->resize(1024, 700);
        view->show();
        QCoreApplication::processEvents();
    }
    ~Window() { delete view; }

    JobQueue jobs;
    BenchPanels panels;
    DiversityDocument document{[this](std::function<void()> action) {
        QMetaObject::invokeMethod(&jobs, std::move(action), Qt::QueuedConnection);
    }};
    MainViewController* view = nullptr;
};

double importInto(Window& window, FileKind kind, std::string text) {
    double longest = 0;
    bool ended = false;
    const auto startJob = [&window](std::function<void()> work, std::function<void()> done) {
        window.jobs.start(
            window.view,
            [work = std::move(work)] {
                work();
                return true;
            },
            [done = std::move(done)](bool) { done(); });
    };
    importDriver(kind)(std::move(text), window.document,
                       {startJob, {}, [&](const ImportReport&) { ended = true; }});
    for (int idle = 0; idle < 3;) {
        const double begun = mainThreadMilliseconds();
        QCoreApplication::processEvents();
        longest = std::max(longest, mainThreadMilliseconds() - begun);
        if (ended) ++idle;
        QThread::msleep(1);
    }
    return longest;
}

void import(benchmark::State& state, FileKind kind, const std::string& text) {
    double longest = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<Window>();
        std::string copy = text;
        state.ResumeTiming();
        longest = std::max(longest, importInto(*window, kind, std::move(copy)));
        state.PauseTiming();
        window.reset();
        malloc_trim(0);
        state.ResumeTiming();
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["longest"] = longest;
    state.counters["textMB"] = static_cast<double>(text.size()) / 1e6;
    state.counters["peakMB"] = static_cast<double>(usage.ru_maxrss) / 1e3;
}

void importMatrix(benchmark::State& state) {
    import(state, FileKind::matrix,
           matrixText(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
}
void importCensus(benchmark::State& state) {
    import(state, FileKind::census, censusText(static_cast<int>(state.range(0))));
}
BENCHMARK(importMatrix)
    ->Args({10'000, 1000})
    ->Args({1000, 10'000})  // a million taxa
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(importCensus)->Arg(1'000'000)->UseRealTime()->Unit(benchmark::kMillisecond);

void importLargeMatrix(benchmark::State& state) {
    importMatrix(state);
}
void importLargeCensus(benchmark::State& state) {
    importCensus(state);
}

bool isAskedFor(int argc, char** argv) {
    return std::any_of(argv + 1, argv + argc, [](const char* argument) {
        return std::string(argument).find("Large") != std::string::npos;
    });
}

}  // namespace

int main(int argc, char** argv) {
    const zorvel::OffscreenHome home;
    QApplication application(argc, argv);
    zorvel::setUpApplication();
    if (isAskedFor(argc, argv)) {
        benchmark::RegisterBenchmark("importLargeMatrix", importLargeMatrix)
            ->Args({50'000, 10'000})
            ->Iterations(1)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("importLargeCensus", importLargeCensus)
            ->Arg(42'000'000)
            ->Iterations(1)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    return zorvel::runBenchmarks(argc, argv);
}
