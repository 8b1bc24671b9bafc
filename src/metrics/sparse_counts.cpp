#include "metrics/sparse_counts.h"

namespace zorvel {

void SparseCounts::reserve(std::size_t rows, std::size_t cells) {
    rowEnds_.reserve(rows);
    cellColumns_.reserve(cells);
    cells_.reserve(cells);
}

void SparseCounts::addRow(std::span<const Column> columns, CountsView counts) {
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0) continue;
        cellColumns_.push_back(columns[i]);
        cells_.push_back(counts[i]);
    }
    rowEnds_.push_back(cells_.size());
}

CountsView SparseCounts::row(std::size_t row) const {
    const std::size_t begin = rowBegin(row);
    return CountsView(cells_).subspan(begin, rowEnds_[row] - begin);
}

std::span<const SparseCounts::Column> SparseCounts::columnsOfRow(std::size_t row) const {
    const std::size_t begin = rowBegin(row);
    return std::span(cellColumns_).subspan(begin, rowEnds_[row] - begin);
}

}  // namespace zorvel
