#include "ui/main/ordered_table_model.h"

#include <algorithm>

namespace zorvel {

int OrderedTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order_.size());
}

std::size_t OrderedTableModel::recordAt(int row) const {
    return order_[static_cast<std::size_t>(row)];
}

int OrderedTableModel::rowOf(std::size_t record) const {
    const auto found = std::find(order_.begin(), order_.end(), record);
    return found == order_.end() ? -1 : static_cast<int>(found - order_.begin());
}

bool OrderedTableModel::accepts(std::size_t /*record*/) const {
    return true;
}

void OrderedTableModel::sort(int column, Qt::SortOrder order) {
    if (column == sortColumn_ && order == sortOrder_) return;
    sortColumn_ = column;
    sortOrder_ = order;
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const std::vector<std::uint32_t> before = order_;
    std::sort(order_.begin(), order_.end());
    orderByKeys(order_);
    movePersistentIndexes(before);
    emit layoutChanged({}, VerticalSortHint);
}

void OrderedTableModel::arrange() {
    order_.clear();
    for (std::size_t record = 0; record < recordCount(); ++record) {
        if (accepts(record)) order_.push_back(static_cast<std::uint32_t>(record));
    }
    orderByKeys(order_);
}

void OrderedTableModel::orderByKeys(std::vector<std::uint32_t>& records) const {
    if (sortColumn_ < 0 || sortColumn_ >= columnCount()) return;
    const auto sortBy = [&](const auto& keys) {
        std::stable_sort(records.begin(), records.end(), [&](std::uint32_t a, std::uint32_t b) {
            return sortOrder_ == Qt::AscendingOrder ? keys[a] < keys[b] : keys[b] < keys[a];
        });
    };
    std::visit(sortBy, sortKeys(sortColumn_));
}

void OrderedTableModel::movePersistentIndexes(const std::vector<std::uint32_t>& before) {
    std::vector<int> rows(recordCount(), -1);
    for (std::size_t row = 0; row < order_.size(); ++row) rows[order_[row]] = static_cast<int>(row);
    const QModelIndexList old = persistentIndexList();
    QModelIndexList moved;
    moved.reserve(old.size());
    for (const QModelIndex& index : old) {
        const std::uint32_t record = before[static_cast<std::size_t>(index.row())];
        moved.append(createIndex(rows[record], index.column()));
    }
    changePersistentIndexList(old, moved);
}

}  // namespace zorvel
