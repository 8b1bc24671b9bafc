// The window of the project-wide metrics. It belongs to whoever makes it, and outlives its project.
// The values are computed one after the other in the background, in the order in which they stand,
// and never change once they are there. Main thread.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <cstddef>
#include <memory>

#include "metrics/random_source.h"
#include "model/project_metrics.h"
#include "ui/kit/printed_sheet.h"
#include "ui/kit/window_placement.h"

class QKeySequence;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace Ui {
class ProjectWidePage;
}

namespace zorvel {

class JobQueue;
class MetricSheet;

// The project as it was when the command was given.
struct ProjectWideInputs : ProjectCounts {
    QString project;  // its name
    QString note;     // what was merged because of equal names, in sentences; mostly empty
};

class ProjectWideMetricsViewController : public QWidget {
    Q_OBJECT
  public:
    // The queue must outlive the controller.
    ProjectWideMetricsViewController(JobQueue& jobs, RandomSourceMaker makeRandom,
                                     QWidget* parent = nullptr);
    ~ProjectWideMetricsViewController() override;

    // Once; the window may be there before, and fills from then on, or from when it is first shown.
    // Groups whose counts are absent stay empty.
    void setInputs(ProjectWideInputs inputs);

    // The values for paper, as they stand.
    [[nodiscard]] PrintedSheet printedSheet() const;

  signals:
    // Once the values are there.
    void printRequested();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void addShortcut(QPushButton& button, const QKeySequence& key);
    QVBoxLayout& addColumn(MetricGroup group);
    void addNotes(QVBoxLayout& column);
    void viewWillAppear();
    void showHead();
    void compute();
    void startStep(std::size_t step);
    void showResult(const ProjectMetrics& result);
    void finish();
    void addNote(const QString& note);

    std::unique_ptr<Ui::ProjectWidePage> ui_;
    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    MetricSheet* sheet_ = nullptr;
    QLabel* notesLabel_ = nullptr;
    // Shared with the jobs, until the last has ended. These run one after the other, so that they
    // share the random source.
    std::shared_ptr<const ProjectWideInputs> inputs_;
    std::shared_ptr<RandomSource> random_;
    QStringList notes_;  // on the values
    bool appeared_ = false;
};

class ProjectWideMetricsWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // The queue must outlive the window.
    ProjectWideMetricsWindowController(JobQueue& jobs, RandomSourceMaker makeRandom);

    [[nodiscard]] ProjectWideMetricsViewController& viewController() { return *viewController_; }

  private:
    ProjectWideMetricsViewController* viewController_;
};

}  // namespace zorvel
