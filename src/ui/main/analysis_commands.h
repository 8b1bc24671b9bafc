// The analyses that have windows of their own: how many censuses each needs, what the person reads
// when there are fewer, and the opening of the window. An analysis is of the records as they stand
// when the command is given: its job has a frozen copy, or the counts themselves. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

#include "metrics/random_source.h"
#include "metrics/rarefaction.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/kit/panels.h"

namespace zorvel {

class DiversityDocument;
class JobQueue;
class MainViewController;

enum class Analysis { projectWideMetrics, individualBasedRarefaction, sampleBasedRarefaction };

class AnalysisCommands : public QObject {
    Q_OBJECT
  public:
    // All must outlive the commands; queue and panels the windows as well.
    AnalysisCommands(MainViewController& view, const DiversityDocument& document, JobQueue& jobs,
                     RandomSourceMaker makeRandom, const Panels& panels);

    // A warning tells of too few censuses. Individual-based rarefaction is that of the selected
    // census, and does nothing without one. The project-wide window is there at once and fills
    // later, whatever becomes of the project; a curve that comes when the project is closed is
    // dropped.
    void run(Analysis analysis);

    void setProjectName(const QString& name) { projectName_ = name; }
    [[nodiscard]] const QString& projectName() const { return projectName_; }

    // The newest that are still there, or null.
    [[nodiscard]] ProjectWideMetricsWindowController* projectWideMetricsWindowController() const {
        return projectWideMetricsWindowController_;
    }
    [[nodiscard]] RarefactionWindowController* rarefactionWindowController() const {
        return rarefactionWindowController_;
    }

  private:
    using Curve = std::vector<Rarefaction>;

    void warnOfTooFew(Analysis analysis);
    void calculateProjectWideMetrics();
    void individualBasedRarefaction();
    void sampleBasedRarefaction();
    // work() makes the curve on a worker, and must own all that it reads.
    void startRarefaction(RarefactionKind kind, const QString& subject,
                          std::function<Curve()> work);
    void openRarefaction(RarefactionKind kind, const QString& subject, Curve curve);
    // The name of the progress that has begun.
    QString startProgress(const QString& text);

    MainViewController& view_;
    const DiversityDocument& document_;
    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    Panels panels_;
    QString projectName_;
    QPointer<ProjectWideMetricsWindowController> projectWideMetricsWindowController_;
    QPointer<RarefactionWindowController> rarefactionWindowController_;
    std::uint64_t started_ = 0;  // analyses, for the names of their progress
};

}  // namespace zorvel
