// The main view on a project of 10,000 censuses and 1.1 million taxa, 100,000 of them in one
// census; real widgets without a display. The column CPU is the time of the main thread from what
// the person does until everything has been painted: under 16 ms nobody sees a delay.
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <algorithm>
#include <ctime>
#include <memory>
#include <random>
#include <string>

#include "app/application_delegate.h"
#include "bench/bench_panels.h"
#include "bench/run_benchmarks.h"
#include "metrics/random_source.h"
#include "platform/job_queue.h"
#include "tests/support/offscreen_home.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/record_tables.h"
#include "ui/main/species_table_model.h"

namespace {

using namespace zorvel;

constexpr int censusCount = 10'000;
constexpr int taxaPerCensus = 100;
constexpr int largeCensus = 100'000;
constexpr int nameCount = 5'000;

std::string nameOf(std::size_t number) {
    return (number % 10 == 0 ? "\u00C9chinops e\u0301trange " : "Genus species ") +
           std::to_string(number);
}

std::vector<TaxonValues> taxa(std::size_t count, std::size_t names, std::mt19937& random) {
    std::vector<TaxonValues> list(count);
    for (std::size_t i = 0; i < count; ++i) {
        list[i].name = SharedText(nameOf(names == count ? i : random() % names));
        list[i].abundance = 1 + random() % 50;
    }
    return list;
}

struct Window {
    Window() {
        std::mt19937 random(1);
        for (int i = 0; i < censusCount; ++i) {
            const bool large = i == 0;
            CensusAttributes attributes;
            attributes.name = SharedText("Plot " + std::to_string(i));
            document.objectContext().insertCensus(attributes,
                                                  large ? taxa(largeCensus, largeCensus, random)
                                                        : taxa(taxaPerCensus, nameCount, random));
        }
        document.objectContext().announceChanges();
        view = std::make_unique<MainViewController>(
            jobs, [] { return std::make_unique<SeededRandom>(1); }, panels.all());
        view->showDocument(document);
        view->resize(1024, 700);
        view->show();
        select(0);
    }
    void select(int row) {
        censuses().selectRows({row});
        QCoreApplication::processEvents();
    }
    RecordTableView& censuses() { return *view->findChild<CensusTableView*>("censusTable"); }
    RecordTableView& species() { return *view->findChild<SpeciesTableView*>("speciesTable"); }
    QLineEdit& search() { return *view->findChild<QLineEdit*>("searchBar"); }

    DiversityDocument document;
    JobQueue jobs;
    BenchPanels panels;
    std::unique_ptr<MainViewController> view;
};

Window& window() {
    static auto* only = new Window;  // as long as the application
    return *only;
}

// The longest turn, which is what a person may notice: the counter "longest", in milliseconds.
class Longest {
  public:
    explicit Longest(benchmark::State& state) : state_(state) {}
    ~Longest() { state_.counters["longest"] = longest_; }
    Longest(const Longest&) = delete;
    Longest& operator=(const Longest&) = delete;

    void begin() { begun_ = now(); }
    void end() { longest_ = std::max(longest_, now() - begun_); }

  private:
    static double now() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    benchmark::State& state_;
    double begun_ = 0;
    double longest_ = 0;
};

// The census of 100,000, or one of 100.
void selectOfSize(benchmark::State& state) {
    window().search().clear();
    window().select(state.range(0) == largeCensus ? 0 : 1);
}

void selectCensus(benchmark::State& state) {
    int row = 1;
    window().select(row);
    Longest longest(state);
    for (auto _ : state) {
        longest.begin();
        row = 1 + (row + 977) % (censusCount - 1);
        window().select(row);
        longest.end();
    }
}
BENCHMARK(selectCensus)->Unit(benchmark::kMillisecond);

void endAnEdit(benchmark::State& state) {
    selectOfSize(state);
    RecordTableView& table = window().species();
    int turn = 0;
    Longest longest(state);
    for (auto _ : state) {
        longest.begin();
        table.beginEditing(table.model()->index(turn % 50, SpeciesTableModel::abundanceColumn));
        auto* field = qobject_cast<QLineEdit*>(table.openEditor());
        if (field == nullptr) return state.SkipWithError("no editor");
        field->insert(QString::number(60 + ++turn % 1000));
        field->setModified(true);
        table.commitEditing();
        QCoreApplication::processEvents();
        longest.end();
    }
}
BENCHMARK(endAnEdit)->Arg(taxaPerCensus)->Arg(largeCensus)->Unit(benchmark::kMillisecond);

void press(QWidget& widget, int key, const QString& text) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&widget, &down);
    QCoreApplication::processEvents();
}

// Four letters, then each taken back: narrower and wider in turn.
void searchKeystroke(benchmark::State& state) {
    selectOfSize(state);
    const QString typed = "spec";
    int turn = 0;
    Longest longest(state);
    for (auto _ : state) {
        longest.begin();
        const int place = turn++ % 8;
        if (place < 4) {
            press(window().search(), Qt::Key_A, typed.mid(place, 1));
        } else {
            press(window().search(), Qt::Key_Backspace, {});
        }
        longest.end();
    }
    window().search().clear();
}
BENCHMARK(searchKeystroke)->Arg(taxaPerCensus)->Arg(largeCensus)->Unit(benchmark::kMillisecond);

void scrollAPage(benchmark::State& state) {
    selectOfSize(state);
    QScrollBar* bar = window().species().verticalScrollBar();
    for (auto _ : state) {
        if (bar->value() == bar->maximum()) bar->setValue(0);
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(scrollAPage)->Arg(largeCensus)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    const zorvel::OffscreenHome home;
    QApplication application(argc, argv);
    zorvel::setUpApplication();
    return zorvel::runBenchmarks(argc, argv);
}
