#include "ui/analysis/project_wide_metrics_window_controller.h"

#include <utility>

namespace zorvel {

ProjectWideMetricsWindowController::ProjectWideMetricsWindowController(JobQueue& jobs,
                                                                       RandomSourceMaker makeRandom)
    : PlacedWindow(100, 100),
      viewController_(new ProjectWideMetricsViewController(jobs, std::move(makeRandom), this)) {
    setObjectName("projectWideMetricsWindow");
    setCentralWidget(viewController_);
    setWindowTitle(viewController_->windowTitle());
    connect(viewController_, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    resizeToFit({1000, 620});
}

}  // namespace zorvel
