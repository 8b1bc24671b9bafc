#include "ui/analysis/rarefaction_window_controller.h"

#include <QKeySequence>
#include <QShortcut>

namespace zorvel {

RarefactionWindowController::RarefactionWindowController(RarefactionKind kind, JobQueue& jobs,
                                                         const Panels& panels)
    : viewController_(new RarefactionViewController(kind, jobs, panels, this)) {
    setObjectName("rarefactionWindow");
    setCentralWidget(viewController_);
    resize(720, 560);
    auto* close = new QShortcut(QKeySequence::Close, this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
}

}  // namespace zorvel
