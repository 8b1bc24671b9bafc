// The inputs of every analysis: abundances of taxa, without names; and sums of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "base/numbers.h"

namespace zorvel {

// One entry per taxon: its number of specimens. An entry below 1 is an absent taxon; the order has
// no meaning. A sum that does not fit in 64 bits saturates.
using CountsVector = std::vector<std::int64_t>;
using CountsView = std::span<const std::int64_t>;

// One row per census, one column per taxon name of the project; every row has the same length.
using CountsMatrix = std::vector<CountsVector>;

// A sum of 64-bit counts that never overflows: formed in 128 bits and clamped once at the end, so
// that the result does not depend on the order of the entries.
class SaturatingSum {
  public:
    void add(std::int64_t value) { sum_ += value; }

    [[nodiscard]] std::int64_t value() const {
        using Limits = std::numeric_limits<std::int64_t>;
        if (sum_ > Limits::max()) return Limits::max();
        if (sum_ < Limits::min()) return Limits::min();
        return static_cast<std::int64_t>(sum_);
    }

  private:
    Int128 sum_ = 0;
};

// A counts matrix without its zeros: the cells of each row in ascending order of their columns. It
// takes memory in proportion to the cells that are not 0; a CountsMatrix takes it for all cells.
// A plain value; safe to read on any thread.
class SparseCounts {
  public:
    using Column = std::uint32_t;

    SparseCounts() = default;
    // columns: the number of taxon names, one without any specimen included.
    explicit SparseCounts(std::size_t columns) : columns_(columns) {}

    // Room for that many rows and for all their cells that are not 0.
    void reserve(std::size_t rows, std::size_t cells) {
        rowEnds_.reserve(rows);
        cellColumns_.reserve(cells);
        cells_.reserve(cells);
    }
    // Appends a row. columns: ascending, each below columns(), as many as counts; zeros among the
    // counts are left out.
    void addRow(std::span<const Column> columns, CountsView counts) {
        for (std::size_t i = 0; i < counts.size(); ++i) {
            if (counts[i] == 0) continue;
            cellColumns_.push_back(columns[i]);
            cells_.push_back(counts[i]);
        }
        rowEnds_.push_back(cells_.size());
    }

    [[nodiscard]] std::size_t rows() const { return rowEnds_.size(); }
    [[nodiscard]] std::size_t columns() const { return columns_; }
    // The cells of a row that are not 0, and their columns.
    [[nodiscard]] CountsView row(std::size_t row) const { return ofRow(CountsView(cells_), row); }
    [[nodiscard]] std::span<const Column> columnsOfRow(std::size_t row) const {
        return ofRow(std::span(cellColumns_), row);
    }

  private:
    template <class T>
    [[nodiscard]] std::span<const T> ofRow(std::span<const T> cells, std::size_t row) const {
        const std::size_t begin = row == 0 ? 0 : rowEnds_[row - 1];
        return cells.subspan(begin, rowEnds_[row] - begin);
    }

    std::size_t columns_ = 0;
    std::vector<std::size_t> rowEnds_;
    std::vector<Column> cellColumns_;
    CountsVector cells_;
};

}  // namespace zorvel
