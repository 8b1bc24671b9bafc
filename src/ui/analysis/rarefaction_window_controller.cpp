#include "ui/analysis/rarefaction_window_controller.h"

namespace zorvel {

RarefactionWindowController::RarefactionWindowController(RarefactionKind kind, JobQueue& jobs,
                                                         const Panels& panels)
    : PlacedWindow(120, 120),
      viewController_(new RarefactionViewController(kind, jobs, panels, this)) {
    setObjectName("rarefactionWindow");
    setCentralWidget(viewController_);
    resizeToFit({720, 560});
}

}  // namespace zorvel
