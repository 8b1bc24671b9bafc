// The window of one rarefaction curve. It belongs to whoever makes it, and to no project. Main
// thread.
#pragma once

#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/kit/placed_window.h"

namespace zorvel {

class RarefactionWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // Queue and panels must outlive the window.
    RarefactionWindowController(RarefactionKind kind, JobQueue& jobs, const Panels& panels);

    [[nodiscard]] RarefactionViewController& viewController() const { return *viewController_; }

  private:
    RarefactionViewController* viewController_;
};

}  // namespace zorvel
