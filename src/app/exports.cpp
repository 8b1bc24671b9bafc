#include "app/exports.h"

#include <QFileInfo>
#include <QPointer>
#include <QString>
#include <algorithm>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

#include "app/project_windows.h"
#include "base/console.h"
#include "base/files.h"
#include "interchange/writers.h"
#include "model/diversity_table.h"
#include "model/long_table.h"
#include "model/project_metrics.h"
#include "platform/document.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "ui/kit/panels.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_names.h"

namespace zorvel {

struct ExportedFile {
    ByteProducer produce;  // owns all that it reads
    QString note;          // on values that differ from those of the project; usually empty
};

struct RunningExport {
    QString title;       // of the panel
    QString suggestion;  // of the file's name
    QPointer<MainWindowController> window;
    std::size_t censuses = 0;
    std::stop_source stop = {};
    MainView::ProgressId progress = 0;
};

namespace {

// Where SQS has no estimate, its cell has a value that no estimate can have.
QString withoutSqsNote(const MetricsTable& table) {
    constexpr auto sqsColumn = static_cast<std::size_t>(
        std::find(metricColumns.begin(), metricColumns.end(), Metric::alroySQS) -
        metricColumns.begin());
    const auto missing = std::count_if(table.rows.begin(), table.rows.end(),
                                       [](const MetricRow& row) { return row[sqsColumn] == 0; });
    if (missing == 0) return {};
    return countText(static_cast<std::size_t>(missing),
                     "The SQS of one census, for which there is no estimate, is written as 0.0.",
                     "The SQS of %1 censuses, for which there is no estimate, is written as 0.0.");
}

ByteProducer textProducer(std::string text) {
    return [text = std::move(text)](const ByteSink& sink) { sink(text); };
}

// What a table is made from.
struct ExportInputs {
    std::shared_ptr<const ObjectContext> project;
    RandomSourceMaker makeRandom;
    std::stop_token stop;
};

std::optional<ExportedFile> matrixFile(const ExportInputs& inputs) {
    const auto counts =
        std::make_shared<const SparseCountsResult>(buildSparseCounts(*inputs.project));
    const auto produce = [counts](const ByteSink& sink) {
        writeCensusMatrix(counts->counts, counts->taxonNames, counts->censusNames, sink);
    };
    return ExportedFile{produce, matrixNote(*counts)};
}

std::optional<ExportedFile> metricsFile(const ExportInputs& inputs) {
    const std::optional<MetricsTable> table =
        buildMetricsTable(inputs.project->censuses(), inputs.makeRandom,
                          [&inputs] { return !inputs.stop.stop_requested(); });
    if (!table) return std::nullopt;
    return ExportedFile{
        textProducer(writeMetricsTable(table->rows, table->columnTitles, table->censusNames)),
        withoutSqsNote(*table)};
}

std::optional<ExportedFile> longTableFile(const ExportInputs& inputs) {
    const auto produce = [project = inputs.project](const ByteSink& sink) {
        writeLongTable(project->censuses(), sink);
    };
    return ExportedFile{produce, {}};
}

std::optional<ExportedFile> diversityFile(const ExportInputs& inputs) {
    std::optional<CommonCoverageTable> table =
        commonCoverageTable(inputs.project->censuses(), inputs.stop);
    if (!table) return std::nullopt;
    const QString note = QString("%1: the table has no values.").arg(noCommonCoverage);
    return ExportedFile{textProducer(std::move(table->text)),
                        table->hasCoverage ? QString() : note};
}

struct ExportKind {
    const char* title;  // of the panel
    const char* what;
    const char* whatOnConsole;
    // On a worker thread; absent if stopped.
    std::optional<ExportedFile> (*prepare)(const ExportInputs& inputs);
};

// In the order of Exports::Kind.
constexpr ExportKind exportKinds[] = {
    {"Export Census Matrix", "census matrix", "census matrix", matrixFile},
    {"Export Metrics", "metrics", "metrics matrix", metricsFile},
    {"Export Long Table", "long table", "long table", longTableFile},
    {"Export Diversity Table", "diversity table", "diversity table", diversityFile},
};

}  // namespace

Exports::Exports(ProjectWindows& windows, RandomSourceMaker makeRandom)
    : windows_(windows), makeRandom_(std::move(makeRandom)) {}

Exports::~Exports() {
    for (const auto& running : preparing_) running->stop.request_stop();
}

void Exports::start(Kind kind, MainWindowController* window) {
    const ExportKind& chosen = exportKinds[kind];
    if (window == nullptr) {
        return writeConsoleLine("WARNING: Could not obtain document/window/view for " +
                                std::string(chosen.whatOnConsole) + " export");
    }
    MainViewController& view = window->mainView();
    if (!view.commitEditing()) return;
    const auto project = window->document().project().objectContext().frozenCopy();
    const auto running = std::make_shared<RunningExport>(RunningExport{
        chosen.title, asFileName(window->document().displayName()) + ' ' + chosen.what, window,
        project->censusCount()});
    preparing_.push_back(running);
    running->progress = view.startProgress(QString("preparing %1 export...").arg(chosen.what),
                                           [self = QPointer<Exports>(this), running] {
                                               if (self) self->cancel(running);
                                           });
    windows_.jobs().start(
        this,
        [prepare = chosen.prepare,
         inputs = ExportInputs{project, makeRandom_, running->stop.get_token()}] {
            return prepare(inputs);
        },
        [this, running](const std::optional<ExportedFile>& file) {
            if (running->stop.stop_requested() || !file) return;
            endPreparing(running);
            saveTextFile(running, *file);
        });
}

void Exports::endPreparing(const std::shared_ptr<RunningExport>& running) {
    std::erase(preparing_, running);
    if (running->window) running->window->mainView().stopProgress(running->progress);
}

void Exports::cancel(const std::shared_ptr<RunningExport>& running) {
    running->stop.request_stop();
    endPreparing(running);
}

bool Exports::mayQuit() {
    if (preparing_.empty()) return true;
    const QPointer<Exports> self(this);
    const int answer = windows_.panels().alerts.ask(preparing_.back()->window,
                                                    {"An export is still being prepared",
                                                     "If you quit now, no file is written.",
                                                     {"Quit Anyway", "Cancel"},
                                                     0});
    if (!self || answer != 0) return false;
    for (const auto& running : std::vector(preparing_)) cancel(running);
    return true;
}

void Exports::saveTextFile(const std::shared_ptr<RunningExport>& running,
                           const ExportedFile& file) {
    const QPointer<Exports> self(this);
    const QString path = windows_.panels().save.chooseFile(
        running->window, running->title, running->suggestion, {"Comma-separated table", ".csv"});
    if (!self || path.isEmpty()) return;
    const QString name = QFileInfo(path).fileName();
    if (running->window) {
        running->progress =
            running->window->mainView().startProgress(QString("writing %1...").arg(name));
    }
    QString message =
        countText(running->censuses, "Exported one census to %1.", "Exported %1 censuses to %2.")
            .arg(name);
    if (!file.note.isEmpty()) message += ' ' + file.note;
    writeInBackground(windows_.jobs(), windows_.panels().alerts, running->window, path,
                      QString("“%1” could not be written").arg(name), file.produce,
                      [self, running, message](bool isWritten) {
                          if (!self) return;
                          if (running->window)
                              running->window->mainView().stopProgress(running->progress);
                          if (isWritten) {
                              self->windows_.tell(running->window, message,
                                                  MessageStrip::Tone::news);
                          }
                      });
}

}  // namespace zorvel
