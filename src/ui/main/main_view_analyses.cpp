// The analyses that the main view starts, their inputs, jobs and windows; and the line that shows
// the work that runs in the background.
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "metrics/rarefaction.h"
#include "platform/job_queue.h"
#include "ui/kit/alerts.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/record_names.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

// selected: empty for all censuses.
DiversityInputs diversityInputs(const ObjectContext& project, const std::vector<RecordId>& selected,
                                const QString& name) {
    DiversityInputs inputs;
    inputs.project = name;
    DiversityInputs::Group own{selected.empty() ? "All censuses" : "Selected censuses", {}};
    const std::vector<Census> censuses = project.censuses();
    const auto add = [&](const Census& census) {
        own.subjects.push_back(
            {shownName(census.name()), abundanceFrequencies(includedCountsVector(census))});
    };
    for (const RecordId id : selected) {
        if (const std::optional<Census> census = project.census(id)) add(*census);
    }
    if (selected.empty()) std::for_each(censuses.begin(), censuses.end(), add);
    const SparseCountsResult sparse = buildSparseCounts(project);
    inputs.groups = {std::move(own),
                     {"All pooled", {{"All pooled", abundanceFrequencies(sparse.pooled)}}}};
    if (censuses.size() >= 5) {
        const QString title = "Over the censuses";
        inputs.groups.push_back(
            {title, {{title, incidenceFrequencies(summariseIncidence(sparse.counts))}}});
    }
    return inputs;
}

}  // namespace

bool MainViewController::canAnalyse(std::size_t fewestCensuses, const QString& refusal) {
    if (!commitEditing()) return false;
    if (context().censusCount() >= fewestCensuses) return true;
    panels_.alerts.warn(window(), "Too few censuses", refusal);
    return false;
}

void MainViewController::openWindow(QWidget* window) {
    window->setAttribute(Qt::WA_DeleteOnClose);
    emit analysisWindowDidOpen(window);
    window->show();
}

// Both the window and the project may be closed before the inputs are there.
template <class Window, class Work>
void MainViewController::openAndFill(Window* window, const QString& progressText, Work work) {
    openWindow(window);
    const ProgressId progress = startProgress(progressText);
    connect(window, &QObject::destroyed, this, [=, this] { stopProgress(progress); });
    jobs_.start(window, std::move(work),
                [self = QPointer<MainViewController>(this), window, progress](auto inputs) {
                    window->viewController().setInputs(std::move(inputs));
                    if (self) self->stopProgress(progress);
                });
}

void MainViewController::calculateProjectWideMetrics() {
    if (!canAnalyse(3, "Must have at least three censuses to calculate project-wide metrics")) {
        return;
    }
    auto* metrics = new ProjectWideMetricsWindowController(jobs_, makeRandom_);
    projectWideMetricsWindowController_ = metrics;
    openAndFill(metrics, "calculating project-wide metrics...",
                [project = context().frozenCopy(), name = projectName_] {
                    SparseCountsResult sparse = buildSparseCounts(*project);
                    const QString note = mergedNamesNote(sparse);
                    return ProjectWideInputs{
                        {std::move(sparse.pooled), std::move(sparse.counts)}, name, note};
                });
}

void MainViewController::individualBasedRarefaction() {
    if (!canAnalyse(1, "Must have at least one census to calculate individual-based rarefaction")) {
        return;
    }
    const std::optional<Census> census = selectedCensus();
    if (!census) return;
    startRarefaction(RarefactionKind::individualBased, shownName(census->name()),
                     [counts = includedCountsVector(*census)] {
                         return sharedCalculator().individualBasedCurve(counts);
                     });
}

void MainViewController::sampleBasedRarefaction() {
    if (!canAnalyse(5, "Must have at least five censuses to calculate sample-based rarefaction")) {
        return;
    }
    startRarefaction(RarefactionKind::sampleBased, projectName_,
                     [project = context().frozenCopy()] {
                         return sharedCalculator().sampleBasedCurve(
                             summariseIncidence(buildSparseCounts(*project).counts));
                     });
}

// The selected censuses, or all of them where none is selected.
void MainViewController::diversityAtEqualCoverage() {
    if (!canAnalyse(1, "Must have at least one census to compare diversity")) return;
    auto* window = new DiversityWindowController(jobs_, panels_, diversityChoice_);
    window->setWindowFilePath(this->window()->windowFilePath());
    diversityWindowController_ = window;
    connect(&window->viewController(), &DiversityViewController::choiceDidChange, this,
            [this](const DiversityChoice& choice) { diversityChoice_ = choice; });
    std::vector<RecordId> selected;
    for (const Census& census : selectedCensuses()) selected.push_back(census.id());
    openAndFill(window, "calculating diversity...",
                [project = context().frozenCopy(), selected = std::move(selected),
                 name = projectName_] { return diversityInputs(*project, selected, name); });
}

// work runs on a worker thread, and must own all that it reads.
void MainViewController::startRarefaction(RarefactionKind kind, const QString& subject,
                                          std::function<std::vector<Rarefaction>()> work) {
    const ProgressId progress = startProgress("calculating rarefaction...");
    jobs_.start(this, std::move(work), [=, this](std::vector<Rarefaction> curve) {
        auto* plot = new RarefactionWindowController(kind, jobs_, panels_);
        rarefactionWindowController_ = plot;
        plot->viewController().setRarefactionData(std::move(curve), subject);
        plot->setWindowTitle(kind == RarefactionKind::individualBased
                                 ? "Individual-based Rarefaction"
                                 : "Sample-based Rarefaction");
        plot->setWindowFilePath(window()->windowFilePath());
        openWindow(plot);
        stopProgress(progress);
    });
}

// --- Progress ---

MainView::ProgressId MainViewController::startProgress(const QString& text,
                                                       std::function<void()> cancel,
                                                       bool isImport) {
    works_.append({++worksStarted_, text, std::move(cancel), isImport});
    showProgress();
    return worksStarted_;
}

MainView::ProgressId MainViewController::startImportProgress(const std::string& text,
                                                             std::function<void()> cancel) {
    return startProgress(QString::fromStdString(text), std::move(cancel), true);
}

void MainViewController::stopProgress(ProgressId progress) {
    works_.removeIf([progress](const RunningWork& work) { return work.number == progress; });
    showProgress();
}

bool MainViewController::isInProgressBeside(ProgressId progress) const {
    return std::any_of(works_.begin(), works_.end(),
                       [progress](const RunningWork& work) { return work.number != progress; });
}

bool MainViewController::isImporting() const {
    return std::any_of(works_.begin(), works_.end(),
                       [](const RunningWork& work) { return work.isImport; });
}

// Cancelling changes the list.
void MainViewController::cancelImports() {
    for (const RunningWork& work : QList<RunningWork>(works_)) {
        if (work.isImport && work.cancel) work.cancel();
    }
}

bool MainViewController::canCancelProgress() const {
    return !works_.isEmpty() && works_.back().cancel;
}

// Cancelling may end the work, and with it the function.
void MainViewController::cancelProgress() {
    if (!canCancelProgress()) return;
    const std::function<void()> cancel = works_.back().cancel;
    cancel();
}

// Only keys that the widget with the focus does not handle.
void MainViewController::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) && canCancelProgress()) return cancelProgress();
    QWidget::keyPressEvent(event);
}

void MainViewController::showProgress() {
    if (isInProgress()) {
        ui_->progressIndicator->startAnimation();
    } else {
        ui_->progressIndicator->stopAnimation();
    }
    ui_->progressLabel->setText(isInProgress() ? oneLine(works_.back().text) : QString());
    ui_->cancelProgressButton->setVisible(canCancelProgress());
    ui_->progressRow->setVisible(isInProgress());
    showRightPage();
}

}  // namespace zorvel
