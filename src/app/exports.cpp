#include "app/exports.h"

#include <QFileInfo>
#include <algorithm>
#include <string>
#include <utility>

#include "app/project_windows.h"
#include "base/console.h"
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

}  // namespace

Exports::Exports(ProjectWindows& windows, RandomSourceMaker makeRandom)
    : windows_(windows), makeRandom_(std::move(makeRandom)) {}

Exports::~Exports() {
    for (const RunningExport& running : preparing_) running->stop.request_stop();
}

void Exports::exportCensusMatrix(MainWindowController* window) {
    start(window, "Export Census Matrix", "census matrix", "census matrix",
          [](const ObjectContext& project, const std::stop_token&) {
              return exportedMatrix(project);
          });
}

void Exports::exportMetrics(MainWindowController* window) {
    start(window, "Export Metrics", "metrics", "metrics matrix",
          [makeRandom = makeRandom_](const ObjectContext& project, const std::stop_token& stop) {
              return exportedMetrics(project, makeRandom, stop);
          });
}

void Exports::exportLongTable(MainWindowController* window) {
    start(window, "Export Long Table", "long table", "long table",
          [](const ObjectContext& project, const std::stop_token&) {
              const auto copy = std::shared_ptr<const ObjectContext>(project.frozenCopy());
              return ExportedFile{
                  [copy](const ByteSink& sink) { writeLongTable(copy->censuses(), sink); },
                  project.censusCount(),
                  {}};
          });
}

void Exports::exportDiversityTable(MainWindowController* window) {
    start(window, "Export Diversity Table", "diversity table", "diversity table",
          [](const ObjectContext& project,
             const std::stop_token& stop) -> std::optional<ExportedFile> {
              const std::vector<Census> censuses = project.censuses();
              std::optional<CommonCoverageTable> table = commonCoverageTable(censuses, stop);
              if (!table) return std::nullopt;
              const QString note = QString("%1: the table has no values.").arg(noCommonCoverage);
              return ExportedFile{
                  [text = std::move(table->text)](const ByteSink& sink) { sink(text); },
                  censuses.size(), table->hasCoverage ? QString() : note};
          });
}

Exports::ExportedFile Exports::exportedMatrix(const ObjectContext& project) {
    const auto counts = std::make_shared<const SparseCountsResult>(buildSparseCounts(project));
    const auto produce = [counts](const ByteSink& sink) {
        writeCensusMatrix(counts->counts, counts->taxonNames, counts->censusNames, sink);
    };
    return {produce, counts->censusNames.size(), matrixNote(*counts)};
}

std::optional<Exports::ExportedFile> Exports::exportedMetrics(const ObjectContext& project,
                                                              const RandomSourceMaker& makeRandom,
                                                              const std::stop_token& stop) {
    const std::optional<MetricsTable> table = buildMetricsTable(
        project.censuses(), makeRandom, [&stop] { return !stop.stop_requested(); });
    if (!table) return std::nullopt;
    const auto produce = [text = writeMetricsTable(table->rows, table->columnTitles,
                                                   table->censusNames)](const ByteSink& sink) {
        sink(text);
    };
    return ExportedFile{produce, table->rows.size(), withoutSqsNote(*table)};
}

void Exports::start(MainWindowController* window, const QString& title, const QString& what,
                    const std::string& whatOnConsole, Prepare prepare) {
    if (window == nullptr) {
        return writeConsoleLine("WARNING: Could not obtain document/window/view for " +
                                whatOnConsole + " export");
    }
    MainViewController& view = window->mainView();
    if (!view.commitEditing()) return;
    const auto running = std::make_shared<Running>(
        Running{title, asFileName(window->document().displayName()) + ' ' + what, window});
    preparing_.push_back(running);
    running->progress = view.startProgress(QString("preparing %1 export...").arg(what),
                                           [self = QPointer<Exports>(this), running] {
                                               if (self) self->cancel(running);
                                           });
    windows_.jobs().start(
        this,
        [prepare = std::move(prepare), stop = running->stop.get_token(),
         project = window->document().project().objectContext().frozenCopy()] {
            return prepare(*project, stop);
        },
        [this, running](const std::optional<ExportedFile>& file) {
            if (running->stop.stop_requested() || !file) return;
            endPreparing(running);
            saveTextFile(running, *file);
        });
}

void Exports::endPreparing(const RunningExport& running) {
    std::erase(preparing_, running);
    if (running->window) running->window->mainView().stopProgress(running->progress);
}

void Exports::cancel(const RunningExport& running) {
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
    for (const RunningExport& running : std::vector(preparing_)) cancel(running);
    return true;
}

void Exports::saveTextFile(const RunningExport& running, const ExportedFile& file) {
    const QPointer<Exports> self(this);
    const QString path = windows_.panels().save.chooseFile(
        running->window, running->title, running->suggestion, {{"Comma-separated table", ".csv"}});
    if (!self || path.isEmpty()) return;
    const QString name = QFileInfo(path).fileName();
    if (running->window) {
        running->progress =
            running->window->mainView().startProgress(QString("writing %1...").arg(name));
    }
    QString message =
        countText(file.censuses, "Exported one census to %1.", "Exported %1 censuses to %2.")
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
