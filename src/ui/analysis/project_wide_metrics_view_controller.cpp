#include "ui/analysis/project_wide_metrics_view_controller.h"

#include <utility>

namespace zorvel {

ProjectWideMetricsViewController::ProjectWideMetricsViewController(JobQueue& jobs,
                                                                   RandomSourceMaker makeRandom,
                                                                   QWidget* parent)
    : QWidget(parent), jobs_(jobs), makeRandom_(std::move(makeRandom)) {}

ProjectWideMetricsViewController::~ProjectWideMetricsViewController() = default;

void ProjectWideMetricsViewController::setInputs(ProjectWideInputs inputs) {
    inputs_ = std::make_shared<const ProjectWideInputs>(std::move(inputs));
}

}  // namespace zorvel
