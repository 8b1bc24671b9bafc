// The metrics of a project: those of each census as a table, which the metrics export writes, and
// the project-wide ones, computed step by step in the order in which they are shown. Any thread.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "interchange/writers.h"
#include "metrics/counts.h"
#include "metrics/metric_table.h"
#include "metrics/random_source.h"
#include "model/diversity_document.h"
#include "model/metric_explanations.h"

namespace zorvel {

// Three lists: one row and one name per census, in the given order, and the column titles.
struct MetricsTable {
    std::vector<MetricRow> rows;
    std::vector<const char*> columnTitles;
    NameList censusNames;
};

// All taxa of the census take part, whatever their include flag. SQS at the fixed quota 0.8; 0
// if there is no estimate.
MetricRow metricRow(const Census& census, RandomSource& random);

// Each census has its own source, so that with a seed its row does not depend on the other
// censuses. goesOn() is called before each census; absent if it returns false.
std::optional<MetricsTable> buildMetricsTable(const std::vector<Census>& censuses,
                                              const RandomSourceMaker& makeRandom,
                                              const std::function<bool()>& goesOn);

// What the project-wide metrics are computed from; a group whose counts are absent has no values.
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
