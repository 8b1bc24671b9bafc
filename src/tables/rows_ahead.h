// Reads the rows of a table on another thread while the caller works on those before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/threads.h"
#include "tables/rows.h"

namespace zorvel {

// Rows that follow each other, with their texts.
class RowBatch {
  public:
    // Empties the batch and makes room for as much as is usually read at once.
    void begin();
    // Always for the first row.
    [[nodiscard]] bool hasRoomFor(const SparseRow& row) const;
    // The first row makes the room that it needs.
    void add(const SparseRow& row);
    [[nodiscard]] const std::vector<SparseRow>& rows() const { return rows_; }

  private:
    // Rows refer to cells and these to texts, so that neither grows while there is a row.
    std::vector<SparseRow> rows_;
    std::vector<std::string_view> cells_;
    std::vector<std::uint32_t> columns_;
    std::vector<char> texts_;
};

class RowsAhead {
  public:
    // The source is used by the other thread alone while this object lives, and not beyond the last
    // row (0: to its end).
    explicit RowsAhead(RowSource& source, std::size_t lastRow = 0);

    // Valid until the next call; null after the last.
    const SparseRow* next();

  private:
    const RowBatch* batch_ = nullptr;
    std::size_t at_ = 0;
    MadeAhead<RowBatch> batches_;
};

}  // namespace zorvel
