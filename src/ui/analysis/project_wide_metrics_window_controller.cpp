#include "ui/analysis/project_wide_metrics_window_controller.h"

#include <utility>

namespace zorvel {

ProjectWideMetricsWindowController::ProjectWideMetricsWindowController(JobQueue& jobs,
                                                                       RandomSourceMaker makeRandom)
    : viewController_(new ProjectWideMetricsViewController(jobs, std::move(makeRandom), this)) {
    setCentralWidget(viewController_);
}

}  // namespace zorvel
