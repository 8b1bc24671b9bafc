// The window of the project-wide metrics. It belongs to whoever makes it, and to no project. Main
// thread.
#pragma once

#include "ui/analysis/project_wide_metrics_view_controller.h"
#include "ui/kit/window_placement.h"

namespace zorvel {

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
