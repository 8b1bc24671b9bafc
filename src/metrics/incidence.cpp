#include "metrics/incidence.h"

#include <algorithm>

#include "metrics/saturating_sum.h"

namespace zorvel {

namespace {

// A cell of the incidence matrix; cells below 1 stay as they are.
std::int64_t presence(std::int64_t cell) {
    return cell > 1 ? 1 : cell;
}

std::vector<std::int64_t> saturated(const std::vector<SaturatingSum>& sums) {
    std::vector<std::int64_t> values;
    values.reserve(sums.size());
    for (const SaturatingSum& sum : sums) values.push_back(sum.value());
    return values;
}

template <typename Cell>
std::vector<std::int64_t> columnSums(const CountsMatrix& matrix, Cell cell) {
    if (matrix.empty()) return {};
    std::vector<SaturatingSum> sums(matrix.front().size());
    for (const CountsVector& row : matrix) {
        const std::size_t width = std::min(row.size(), sums.size());
        for (std::size_t j = 0; j < width; ++j) sums[j].add(cell(row[j]));
    }
    return saturated(sums);
}

// Column sums of the incidence matrix where no cell is negative; empty where one is. A loop that
// the compiler turns into vector instructions: on a large project the reading of the matrix counts.
std::vector<std::int64_t> presencesOfCounts(const CountsMatrix& matrix) {
    std::vector<std::int64_t> sums(matrix.empty() ? 0 : matrix.front().size());
    std::int64_t signs = 0;
    for (const CountsVector& row : matrix) {
        const std::size_t width = std::min(row.size(), sums.size());
        for (std::size_t j = 0; j < width; ++j) {
            // The sign of -cell: 1 for every cell above 0, without a comparison.
            sums[j] += static_cast<std::int64_t>((0 - static_cast<std::uint64_t>(row[j])) >> 63);
            signs |= row[j];
        }
    }
    if (signs < 0) sums.clear();
    return sums;
}

std::vector<std::int64_t> presences(const CountsMatrix& matrix) {
    std::vector<std::int64_t> sums = presencesOfCounts(matrix);
    return sums.empty() ? columnSums(matrix, presence) : sums;
}

// A cell that is not there is 0 and adds nothing. Negative cells may be as low as they like, but
// there is room for billions of them: each sum is formed like a SaturatingSum.
std::vector<std::int64_t> presences(const SparseCounts& counts) {
    std::vector<SaturatingSum> sums(counts.rows() == 0 ? 0 : counts.columns());
    for (std::size_t i = 0; i < counts.rows(); ++i) {
        const CountsView row = counts.row(i);
        const auto columns = counts.columnsOfRow(i);
        for (std::size_t k = 0; k < row.size(); ++k) sums[columns[k]].add(presence(row[k]));
    }
    return saturated(sums);
}

IncidenceSummary summaryOf(std::size_t censuses, const std::vector<std::int64_t>& frequencies) {
    IncidenceSummary summary;
    summary.censuses = static_cast<std::int64_t>(censuses);
    summary.frequencyCounts.assign(censuses + 1, 0);
    for (const std::int64_t frequency : frequencies) {
        if (frequency >= 0) ++summary.frequencyCounts[static_cast<std::size_t>(frequency)];
        ++summary.taxonNames;
    }
    return summary;
}

}  // namespace

CountsMatrix incidenceMatrix(const CountsMatrix& matrix) {
    CountsMatrix incidence = matrix;
    for (CountsVector& row : incidence) {
        for (std::int64_t& cell : row) cell = presence(cell);
    }
    return incidence;
}

std::vector<std::int64_t> incidenceFrequencies(const CountsMatrix& matrix) {
    return columnSums(matrix, [](std::int64_t cell) { return cell; });
}

std::vector<std::int64_t> incidenceFrequencyCounts(const CountsMatrix& matrix) {
    return summariseIncidence(matrix).frequencyCounts;
}

IncidenceSummary summariseIncidence(const CountsMatrix& matrix) {
    return summaryOf(matrix.size(), presences(matrix));
}

IncidenceSummary summariseIncidence(const SparseCounts& counts) {
    return summaryOf(counts.rows(), presences(counts));
}

double chaoTwo(const CountsMatrix& matrix) {
    return chaoTwo(summariseIncidence(matrix));
}

double chaoTwo(const SparseCounts& counts) {
    return chaoTwo(summariseIncidence(counts));
}

double chaoTwo(const IncidenceSummary& summary) {
    if (summary.censuses < 2) return 0;
    const auto t = static_cast<double>(summary.censuses);
    const auto q1 = static_cast<double>(summary.taxaIn(1));
    const auto q2 = static_cast<double>(summary.taxaIn(2));
    return static_cast<double>(summary.taxonNames) + (q1 * (t - 1)) * q1 / (2 * t * q2);
}

}  // namespace zorvel
