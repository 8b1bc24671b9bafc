// The metrics table of a list of censuses: what the metrics export writes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "interchange/writers.h"
#include "metrics/random_source.h"
#include "model/diversity_document.h"

namespace zorvel {

// Three lists: one row and one name per census, in the given order, and the column titles.
struct MetricsTable {
    std::vector<MetricRow> rows;
    std::vector<const char*> columnTitles;
    NameList censusNames;
};

// All taxa of the census take part, whatever their include flag. SQS at the fixed quota 0.8; 0
// where it gives no estimate.
MetricRow metricRow(const Census& census, RandomSource& random);

// Each census has a source of its own, so that a seed gives it the same row whatever stands before
// it. goesOn() is asked before each; absent where it is false.
std::optional<MetricsTable> buildMetricsTable(const std::vector<Census>& censuses,
                                              const RandomSourceMaker& makeRandom,
                                              const std::function<bool()>& goesOn);

}  // namespace zorvel
