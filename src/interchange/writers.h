// The text exports. Nothing is quoted or escaped; lines end with a line feed; numbers are the same
// under every locale. The writers never fail.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "metrics/counts.h"
#include "metrics/metric_table.h"
#include "metrics/rarefaction.h"
#include "metrics/sparse_counts.h"

namespace zorvel {

// One row per census, one column per taxon name, in pieces that never grow beyond a row. False once
// the sink takes no more.
bool writeCensusMatrix(const SparseCounts& matrix, const std::vector<std::string>& taxonNames,
                       const std::vector<std::string>& censusNames, const ByteSink& sink);

// The values of one census by metricColumns.
using MetricRow = std::array<double, metricColumns.size()>;
inline constexpr auto metricColumnTitles = [] {
    std::array<const char*, metricColumns.size()> titles{};
    for (std::size_t i = 0; i < titles.size(); ++i)
        titles[i] = descriptorOf(metricColumns[i]).column;
    return titles;
}();

std::string writeMetricsTable(std::span<const MetricRow> rows,
                              std::span<const char* const> columnTitles,
                              std::span<const std::string> censusNames);

std::string writeRarefactionTable(std::span<const Rarefaction> curve);

}  // namespace zorvel
