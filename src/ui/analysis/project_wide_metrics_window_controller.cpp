#include "ui/analysis/project_wide_metrics_window_controller.h"

#include <utility>

#include "ui/kit/fitting_size.h"

namespace zorvel {

ProjectWideMetricsWindowController::ProjectWideMetricsWindowController(JobQueue& jobs,
                                                                       RandomSourceMaker makeRandom)
    : PlacedWindow(100, 100),
      viewController_(new ProjectWideMetricsViewController(jobs, std::move(makeRandom), this)) {
    setObjectName("projectWideMetricsWindow");
    setCentralWidget(viewController_);
    setWindowTitle(viewController_->windowTitle());
    connect(viewController_, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    resizeToFit(*this, {1000, 620}, {100, 100});
}

}  // namespace zorvel
