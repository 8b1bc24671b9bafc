#include "tables/rows_ahead.h"

namespace zorvel {
namespace {

// Few enough for the caches of the processor, and enough to outweigh the waking of a thread.
constexpr std::size_t usualCells = 1 << 14;
constexpr std::size_t usualBytes = 1 << 18;

std::size_t textBytes(const SparseRow& row) {
    std::size_t size = 0;
    for (const std::string_view cell : row.cells) size += cell.size();
    return size;
}

}  // namespace

bool RowBatch::hasRoomFor(const SparseRow& row) const {
    return rows_.empty() ||
           (cells_.size() + row.cells.size() <= cells_.capacity() &&
            texts_.size() + textBytes(row) <= texts_.capacity() && rows_.size() < usualCells);
}

void RowBatch::add(const SparseRow& row) {
    if (rows_.empty()) {
        cells_.reserve(row.cells.size());
        columns_.reserve(row.cells.size());
        texts_.reserve(textBytes(row));
    }
    const std::size_t first = cells_.size();
    for (const std::string_view cell : row.cells) {
        const char* const place = texts_.data() + texts_.size();
        texts_.insert(texts_.end(), cell.begin(), cell.end());
        cells_.emplace_back(place, cell.size());
    }
    columns_.insert(columns_.end(), row.columns.begin(), row.columns.end());
    SparseRow& added = rows_.emplace_back(row);
    added.cells = {cells_.data() + first, row.cells.size()};
    added.columns = {columns_.data() + first, row.cells.size()};
}

void RowBatch::begin() {
    rows_.clear();
    cells_.clear();
    columns_.clear();
    texts_.clear();
    cells_.reserve(usualCells);
    columns_.reserve(usualCells);
    texts_.reserve(usualBytes);
}

// What the other thread writes for each row lies apart from what the caller does.
RowsAhead::RowsAhead(RowSource& source, std::size_t lastRow)
    : batches_([&source, lastRow, row = SparseRow(), isHeld = false](RowBatch& batch) mutable {
          batch.begin();
          while (isHeld || source.nextSparse(row)) {
              isHeld = !batch.hasRoomFor(row);
              if (isHeld) return true;
              batch.add(row);
              if (lastRow != 0 && row.number >= lastRow) break;
          }
          return false;
      }) {}

const SparseRow* RowsAhead::next() {
    if (batch_ == nullptr || at_ == batch_->rows().size()) {
        batch_ = batches_.next();
        at_ = 0;
        if (batch_ == nullptr || batch_->rows().empty()) return nullptr;
    }
    return &batch_->rows()[at_++];
}

}  // namespace zorvel
