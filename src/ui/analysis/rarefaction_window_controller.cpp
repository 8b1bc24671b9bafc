#include "ui/analysis/rarefaction_window_controller.h"

#include "ui/kit/fitting_size.h"

namespace zorvel {

RarefactionWindowController::RarefactionWindowController(RarefactionKind kind, JobQueue& jobs,
                                                         const Panels& panels)
    : PlacedWindow(120, 120),
      viewController_(new RarefactionViewController(kind, jobs, panels, this)) {
    setObjectName("rarefactionWindow");
    setCentralWidget(viewController_);
    resizeToFit(*this, {720, 560}, {120, 120});
}

}  // namespace zorvel
