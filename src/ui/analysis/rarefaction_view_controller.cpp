#include "ui/analysis/rarefaction_view_controller.h"

#include <utility>

namespace zorvel {

RarefactionViewController::RarefactionViewController(RarefactionKind kind, JobQueue& jobs,
                                                     const Panels& panels, QWidget* parent)
    : QWidget(parent), kind_(kind), jobs_(jobs), panels_(panels) {}

RarefactionViewController::~RarefactionViewController() = default;

void RarefactionViewController::setRarefactionData(std::vector<Rarefaction> data,
                                                   const QString& /*subject*/) {
    rarefactionData_ = std::move(data);
}

}  // namespace zorvel
