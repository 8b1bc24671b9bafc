// The inputs of a project's metrics from a full matrix of its counts.
#pragma once

#include <numeric>
#include <vector>

#include "metrics/counts.h"

namespace zorvel {

inline std::size_t columnsOf(const CountsMatrix& rows) {
    return rows.empty() ? 3 : rows.front().size();
}

inline SparseCounts withoutZeros(const CountsMatrix& rows) {
    std::vector<SparseCounts::Column> columns(columnsOf(rows));
    std::iota(columns.begin(), columns.end(), SparseCounts::Column{0});
    SparseCounts counts(columns.size());
    for (const CountsVector& row : rows) counts.addRow(columns, row);
    return counts;
}

inline CountsVector summed(const CountsMatrix& rows) {
    CountsVector sums(columnsOf(rows), 0);
    for (const CountsVector& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) sums[i] += row[i];
    return sums;
}

}  // namespace zorvel
