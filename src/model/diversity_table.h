// The table of diversity at one size or coverage, and words for diversity, as zorvel-cli and the
// desktop program write them. Any thread.
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "metrics/diversity_limits.h"
#include "store/object_context.h"

namespace zorvel {

// A sentence.
const char* diversityAbsenceText(DiversityAbsence absence, SampleKind kind);
inline constexpr const char* noCommonCoverage =
    "No census has the two specimens that coverage needs";
// "rarefied", "observed" or "extrapolated".
const char* sampleMethodName(SampleMethod method);

using TableCells = std::vector<std::string>;

// "-" where there is no value, or none that is finite.
std::string numberCell(const std::optional<double>& value, int digits);
std::string diversityCell(const std::optional<double>& value);
std::string coverageCell(const std::optional<double>& coverage);
std::string sizeCell(const std::optional<double>& size);  // whole as it is
// Lower and upper at 95%, lower and upper at 99%.
void addLimitCells(TableCells& cells, const std::optional<double>& estimate,
                   const std::optional<double>& standardError);
// The limits of a diversity.
ConfidenceLimits diversityLimits(double estimate, double standardError);

// coverage, sampleSize, method, and each order with its limits: the titles, and the cells of a
// sample.
TableCells diversityTitles();
TableCells diversityCells(const std::optional<DiversityPoint>& at,
                          const StandardErrors::Orders& errors);

// Cells in one line, with its line feed.
std::string tableLine(const TableCells& cells, char separator = ',');

struct CommonCoverage {
    double coverage = 0;
    std::size_t limitedBy = 0;  // the place of a sample
};
// The largest coverage that all samples reach at twice their size; those below size 2 do not count.
// Samples: each has an estimator.
template <class Samples>
std::optional<CommonCoverage> commonCoverage(const Samples& samples) {
    std::optional<CommonCoverage> common;
    std::size_t place = 0;
    for (const auto& sample : samples) {
        const std::optional<double> reached = sample.estimator.coverageAtTwice();
        if (reached && (!common || *reached < common->coverage)) {
            common = CommonCoverage{*reached, place};
        }
        ++place;
    }
    return common;
}

// A row per census, of its included taxa, at their common coverage. Without one, no row has a
// value. Absent if stopped.
struct CommonCoverageTable {
    std::string text;
    bool hasCoverage = false;
};
std::optional<CommonCoverageTable> commonCoverageTable(const std::vector<Census>& censuses,
                                                       const std::stop_token& stop);

}  // namespace zorvel
