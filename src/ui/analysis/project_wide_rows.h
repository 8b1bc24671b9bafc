// The rows of the project-wide metrics, in the order in which they stand and are computed. Plain
// data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "metrics/metric_captions.h"

namespace zorvel {

enum class ProjectWideGroup { pooled, averages, incidence };

struct ProjectWideRow {
    ProjectWideGroup group;
    MetricCaption metric;
    std::string_view explanation;  // its key
    const char* value;             // the names of the field and of its label
    const char* label;
};

const std::vector<ProjectWideRow>& projectWideRows();
// The place of a group's first row.
std::size_t firstRowOf(ProjectWideGroup group);

// What the label says once the value is there: size and quota are those that it was computed with.
std::string projectWideCaption(const ProjectWideRow& row, std::int64_t size, double quota);

}  // namespace zorvel
