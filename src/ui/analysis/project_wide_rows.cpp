#include "ui/analysis/project_wide_rows.h"

#include <algorithm>
#include <array>

namespace zorvel {
namespace {

struct Names {
    const char* explanation;
    const char* value;
    const char* label;
};

constexpr Names pooledNames[] = {
    {"pooledIndividuals", "abundanceValueTextField", "abundanceLabel"},
    {"pooledRichness", "richnessValueTextField", "richnessLabel"},
    {"chaoClassic", "chaoOneValueTextField", "chaoOneLabel"},
    {"shannonH", "shannonValueTextField", "shannonLabel"},
    {"fisherAlpha", "fisherValueTextField", "fisherLabel"},
    {"pielouJ", "pielouValueTextField", "pielouLabel"},
    {"simpsonD", "simpsonValueTextField", "simpsonLabel"},
    {"buzasE", "buzasValueTextField", "buzasLabel"},
    {"pooledRarefiedRichness", "rarefiedRichnessValueTextField", "rarefiedRichnessLabel"},
    {"alroySQS", "alroySqsValueTextField", "alroySQSLabel"},
};
constexpr Names averageNames[] = {
    {"averageAbundance", "averageAbundanceValueTextField", "averageAbundanceLabel"},
    {"averageRichness", "averageRichnessValueTextField", "averageRichnessLabel"},
    {"averageChaoClassic", "averageChaoOneValueTextField", "averageChaoOneLabel"},
    {"averageShannonH", "averageShannonValueTextField", "averageShannonLabel"},
    {"averageFisherAlpha", "averageFisherValueTextField", "averageFisherLabel"},
    {"averagePielouJ", "averagePielouValueTextField", "averagePielouLabel"},
    {"averageSimpsonD", "averageSimpsonValueTextField", "averageSimpsonLabel"},
    {"averageBuzasE", "averageBuzasValueTextField", "averageBuzasLabel"},
    {"averageRarefiedRichness", "averageRarefiedRichnessValueTextField",
     "averageRarefiedRichnessLabel"},
    {"averageAlroySQS", "averageAlroySqsValueTextField", "averageAlroySQSLabel"},
};
constexpr Names incidenceNames[] = {
    {"chaoTwo", "chaoTwoValueTextField", "chaoTwoLabel"},
    {"sampleBasedRarefiedRichness", "sampleBasedRarefactionValueTextField",
     "sampleBasedRarefactionLabel"},
};

template <std::size_t count>
void add(std::vector<ProjectWideRow>& rows, ProjectWideGroup group,
         const std::array<MetricCaption, count>& metrics, const Names (&names)[count]) {
    for (std::size_t i = 0; i < count; ++i) {
        rows.push_back({group, metrics[i], names[i].explanation, names[i].value, names[i].label});
    }
}

}  // namespace

const std::vector<ProjectWideRow>& projectWideRows() {
    static const std::vector<ProjectWideRow> all = [] {
        std::vector<ProjectWideRow> rows;
        add(rows, ProjectWideGroup::pooled, pooledMetricRows, pooledNames);
        add(rows, ProjectWideGroup::averages, averageMetricRows, averageNames);
        add(rows, ProjectWideGroup::incidence, incidenceMetricRows, incidenceNames);
        return rows;
    }();
    return all;
}

std::size_t firstRowOf(ProjectWideGroup group) {
    const std::vector<ProjectWideRow>& rows = projectWideRows();
    const auto first = std::find_if(rows.begin(), rows.end(), [group](const ProjectWideRow& row) {
        return row.group == group;
    });
    return static_cast<std::size_t>(first - rows.begin());
}

std::string projectWideCaption(const ProjectWideRow& row, std::int64_t size, double quota) {
    // Its group says that it counts censuses.
    if (row.metric.key == "sampleBasedRarefiedRichness") return rarefiedRichnessCaption(size);
    return metricCaption(row.metric, size, quota);
}

}  // namespace zorvel
