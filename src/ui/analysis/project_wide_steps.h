// The project-wide metrics, computed step by step in the order of their rows: each step is one job.
// Pure but for the random source and the console line of an SQS estimate that cannot be made; any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "metrics/random_source.h"
#include "model/metric_explanations.h"
#include "ui/analysis/project_wide_inputs.h"

namespace zorvel {

// All that the steps take; they run one after the other, so that they share the random source.
struct ProjectWideTask {
    std::shared_ptr<const ProjectWideInputs> inputs;
    std::int64_t size = 0;
    double quota = 0;
    std::shared_ptr<RandomSource> random;
};

struct ProjectWideResult {
    // Of the step's rows, as they are shown; absent where there is no estimate.
    std::vector<std::optional<std::string>> texts;
    ProjectMetricInputs explained;  // what is known now, this step's part included
};

struct ProjectWideStep {
    std::size_t firstRow;  // in projectWideRows()
    std::size_t rowCount;
    bool (*hasInput)(const ProjectWideInputs& inputs);
    // explained: what is known before.
    ProjectWideResult (*compute)(const ProjectWideTask& task, ProjectMetricInputs explained);
};
const std::vector<ProjectWideStep>& projectWideSteps();

}  // namespace zorvel
