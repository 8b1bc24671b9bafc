// The metrics of a whole project, each a caption and a value: the content of a window that outlives
// the project. The values are computed one after the other in the background, in the order in which
// they stand, and never change once they are there. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <optional>

#include "metrics/counts.h"
#include "metrics/random_source.h"
#include "metrics/sparse_counts.h"

namespace zorvel {

class JobQueue;

// What the values are computed from, as it was when the command was given.
struct ProjectWideInputs {
    std::optional<CountsVector> countsVector;  // pooled: one entry a taxon name
    std::optional<SparseCounts> countsMatrix;  // a row a census, a column a taxon name
    QString project;                           // its name
    QString note;  // what was merged because of equal names, in sentences; mostly empty
};

class ProjectWideMetricsViewController : public QWidget {
    Q_OBJECT
  public:
    // The queue must outlive the controller.
    ProjectWideMetricsViewController(JobQueue& jobs, RandomSourceMaker makeRandom,
                                     QWidget* parent = nullptr);
    ~ProjectWideMetricsViewController() override;

    // Once; the window may be there before, and fills from then on. Groups whose input is absent
    // stay empty.
    void setInputs(ProjectWideInputs inputs);

  private:
    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    std::shared_ptr<const ProjectWideInputs> inputs_;  // shared with the jobs
};

}  // namespace zorvel
