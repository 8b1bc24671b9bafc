// The text exports. The matrix and the tables of metrics and rarefaction quote no cell; lines end
// with a line feed; numbers are the same under every locale. The writers never fail.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/time_stamp.h"
#include "metrics/counts.h"
#include "metrics/metric_table.h"
#include "metrics/rarefaction.h"

namespace zorvel {

// In quotes where the cell would otherwise come apart. separator: a comma or a tab.
void appendTableCell(std::string& text, std::string_view cell, char separator = ',');

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

// What a long table tells of a census.
struct LongTableCensus {
    std::string_view name;
    std::optional<TimeStamp> timeStamp;
    double latitude = 0;
    double longitude = 0;
    std::string_view notes;
};

// A row per taxon: census, date, latitude, longitude, notes, species, count, included. Cells are
// quoted where needed. A row without species and count begins a census: one without taxa, or one
// whose name, date and place are those of another before it.
class LongTableWriter {
  public:
    static constexpr std::string_view header =
        "census,date,latitude,longitude,notes,species,count,included";

    explicit LongTableWriter(ByteSink sink) : sink_(std::move(sink)), text_(header) {
        text_ += '\n';
    }

    // False once the sink takes no more.
    bool begin(const LongTableCensus& census, std::size_t taxa);
    void add(std::string_view species, std::int64_t count, bool included);
    bool finish();

  private:
    ByteSink sink_;
    std::string text_;
    std::string census_;                     // its cells, as each row begins
    std::unordered_set<std::string> known_;  // names, dates and places
};

}  // namespace zorvel
