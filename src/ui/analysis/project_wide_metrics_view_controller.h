// The metrics of a whole project, each a caption and a value: the content of a window that outlives
// the project. The values are computed one after the other in the background, in the order in which
// they stand, and never change once they are there. Main thread.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <cstddef>
#include <memory>

#include "model/metric_explanations.h"
#include "ui/analysis/project_wide_inputs.h"
#include "ui/analysis/project_wide_layout.h"
#include "ui/analysis/project_wide_steps.h"
#include "ui/kit/explanation_text.h"
#include "ui/kit/printed_sheet.h"

class QKeySequence;
class QPushButton;

namespace zorvel {

class JobQueue;
class MetricSheet;

class ProjectWideMetricsViewController : public QWidget {
    Q_OBJECT
  public:
    // The queue must outlive the controller.
    ProjectWideMetricsViewController(JobQueue& jobs, RandomSourceMaker makeRandom,
                                     QWidget* parent = nullptr);
    ~ProjectWideMetricsViewController() override;

    // Once; the window may be there before, and fills from then on, or from when it is first shown.
    // Groups whose input is absent stay empty.
    void setInputs(ProjectWideInputs inputs);

    // The values for paper, as they stand.
    [[nodiscard]] PrintedSheet printedSheet() const;

  signals:
    // Once the values are there.
    void printRequested();
    // The last value that can be had is there.
    void didFill();

  protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void viewWillAppear();
    void nameRows();
    void showSecondaryTexts();
    void showHead();
    void compute();
    void startStep(std::size_t step);
    void showResult(const ProjectWideStep& step, const ProjectWideResult& result);
    void noteCensusesWithSqs();
    void finish();
    void addNote(const QString& note);
    [[nodiscard]] MetricDetails detailsOf(int row) const;
    [[nodiscard]] QString caption(std::size_t row) const;
    void setKey(QPushButton& button, const QString& meaning, const QKeySequence& key);

    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    ProjectWideWidgets widgets_;
    MetricSheet* sheet_;
    // Shared with the jobs, until the last has ended.
    std::shared_ptr<const ProjectWideInputs> inputs_;
    ProjectWideTask task_;
    ProjectMetricInputs explained_;
    QStringList notes_;  // on the values
    bool appeared_ = false;
};

}  // namespace zorvel
