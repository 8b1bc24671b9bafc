// The project-wide metrics, computed step by step in the order in which they are shown. Safe on any
// thread.
#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "metrics/counts.h"
#include "metrics/metric_table.h"
#include "metrics/random_source.h"
#include "metrics/sparse_counts.h"
#include "model/metric_explanations.h"

namespace zorvel {

// What they are computed from; a group whose counts are absent has no values.
struct ProjectCounts {
    std::optional<CountsVector> countsVector;  // pooled: one entry per taxon name
    std::optional<SparseCounts> countsMatrix;  // a row per census, a column per taxon name

    [[nodiscard]] bool has(MetricGroup group) const {
        return group == MetricGroup::pooled ? countsVector.has_value() : countsMatrix.has_value();
    }
};

struct ProjectMetrics {
    // An SQS that cannot be estimated is absent.
    std::vector<std::pair<ShownMetric, MetricValue>> values;
    MetricInputs inputs;  // what went into the values so far
};

// A step adds some values of one group, whose counts must be there. The parameters must be among
// the inputs. The warning of a pooled SQS goes to the console.
struct ProjectStep {
    MetricGroup group;
    void (*compute)(const ProjectCounts& counts, RandomSource& random, ProjectMetrics& metrics);
};
std::span<const ProjectStep> projectSteps();

}  // namespace zorvel
