#include "ui/main/analysis_commands.h"

#include <memory>
#include <optional>
#include <utility>

#include "metrics/incidence.h"
#include "model/diversity_document.h"
#include "platform/job_queue.h"
#include "ui/kit/alerts.h"
#include "ui/main/census_table_model.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/shared_name_texts.h"

namespace zorvel {

namespace {

using FrozenProject = std::shared_ptr<const ObjectContext>;

std::size_t fewestCensuses(Analysis analysis) {
    switch (analysis) {
        case Analysis::projectWideMetrics:
            return 3;
        case Analysis::individualBasedRarefaction:
            return 1;
        case Analysis::sampleBasedRarefaction:
            break;
    }
    return 5;
}

ProjectWideInputs projectWideInputs(const ObjectContext& project, const QString& name) {
    SparseCountsResult sparse = buildSparseCounts(project);
    const QString note = mergedNamesNote(sparse);
    return {std::move(sparse.pooled), std::move(sparse.counts), name, note};
}

}  // namespace

AnalysisCommands::AnalysisCommands(MainViewController& view, const DiversityDocument& document,
                                   JobQueue& jobs, RandomSourceMaker makeRandom,
                                   const Panels& panels)
    : QObject(&view),
      view_(view),
      document_(document),
      jobs_(jobs),
      makeRandom_(std::move(makeRandom)),
      panels_(panels) {}

void AnalysisCommands::run(Analysis analysis) {
    if (document_.objectContext().censusCount() < fewestCensuses(analysis)) {
        return warnOfTooFew(analysis);
    }
    switch (analysis) {
        case Analysis::projectWideMetrics:
            return calculateProjectWideMetrics();
        case Analysis::individualBasedRarefaction:
            return individualBasedRarefaction();
        case Analysis::sampleBasedRarefaction:
            return sampleBasedRarefaction();
    }
}

void AnalysisCommands::warnOfTooFew(Analysis analysis) {
    QString reason;
    switch (analysis) {
        case Analysis::projectWideMetrics:
            reason = tr("Must have at least three censuses to calculate project-wide metrics");
            break;
        case Analysis::individualBasedRarefaction:
            reason = tr("Must have at least one census to calculate individual-based rarefaction");
            break;
        case Analysis::sampleBasedRarefaction:
            reason = tr("Must have at least five censuses to calculate sample-based rarefaction");
            break;
    }
    panels_.alerts.warn(view_.window(), tr("Too few censuses"), reason);
}

QString AnalysisCommands::startProgress(const QString& text) {
    QString name = QStringLiteral("analysis %1").arg(++started_);
    view_.startProgress(name, text);
    return name;
}

// The window may be closed before its inputs are there, and so may the project: each of them goes
// its own way.
void AnalysisCommands::calculateProjectWideMetrics() {
    auto* window = new ProjectWideMetricsWindowController(jobs_, makeRandom_);
    window->setAttribute(Qt::WA_DeleteOnClose);
    projectWideMetricsWindowController_ = window;
    emit view_.analysisWindowDidOpen(window);
    window->show();
    const QString progress = startProgress(tr("calculating project-wide metrics..."));
    const QPointer<AnalysisCommands> self(this);
    connect(window, &QObject::destroyed, this, [=, this] { view_.stopProgress(progress); });
    jobs_.start(
        window,
        [project = document_.objectContext().frozenCopy(), name = projectName_] {
            return projectWideInputs(*project, name);
        },
        [self, window, progress](ProjectWideInputs inputs) {
            window->viewController().setInputs(std::move(inputs));
            if (self) self->view_.stopProgress(progress);
        });
}

void AnalysisCommands::individualBasedRarefaction() {
    const std::optional<Census> census = view_.selectedCensus();
    if (!census) return;
    startRarefaction(RarefactionKind::individualBased, shownName(census->name()),
                     [counts = includedCountsVector(*census)] {
                         return sharedCalculator().individualBasedCurve(counts);
                     });
}

void AnalysisCommands::sampleBasedRarefaction() {
    startRarefaction(RarefactionKind::sampleBased, projectName_,
                     [project = document_.objectContext().frozenCopy()] {
                         return sharedCalculator().sampleBasedCurve(
                             summariseIncidence(buildSparseCounts(*project).counts));
                     });
}

void AnalysisCommands::startRarefaction(RarefactionKind kind, const QString& subject,
                                        std::function<Curve()> work) {
    const QString progress = startProgress(tr("calculating rarefaction..."));
    jobs_.start(this, std::move(work), [=, this](Curve curve) {
        openRarefaction(kind, subject, std::move(curve));
        view_.stopProgress(progress);
    });
}

void AnalysisCommands::openRarefaction(RarefactionKind kind, const QString& subject, Curve curve) {
    auto* window = new RarefactionWindowController(kind, jobs_, panels_);
    window->setAttribute(Qt::WA_DeleteOnClose);
    rarefactionWindowController_ = window;
    window->viewController().setRarefactionData(std::move(curve), subject);
    window->setWindowTitle(kind == RarefactionKind::individualBased
                               ? tr("Individual-based Rarefaction")
                               : tr("Sample-based Rarefaction"));
    window->setWindowFilePath(view_.window()->windowFilePath());
    emit view_.analysisWindowDidOpen(window);
    window->show();
}

}  // namespace zorvel
