#include "ui/main/ordered_table_model.h"

#include <algorithm>
#include <compare>
#include <unordered_map>

namespace zorvel {

namespace {

// More separate ranges of rows than this are announced as one reset: views take long for each.
constexpr std::size_t rangesAtMost = 200;

// Ascending rows as ranges of neighbours.
std::vector<std::pair<int, int>> rangesOf(const std::vector<int>& rows) {
    std::vector<std::pair<int, int>> ranges;
    for (const int row : rows) {
        if (!ranges.empty() && ranges.back().second + 1 == row) {
            ranges.back().second = row;
        } else {
            ranges.emplace_back(row, row);
        }
    }
    return ranges;
}

}  // namespace

int OrderedTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order_.size());
}

int OrderedTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant OrderedTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    const Column& column = columns_[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole) return QString(column.title);
    if (role == Qt::TextAlignmentRole) return alignment(column.isNumber);
    const bool isExplanation =
        role == Qt::ToolTipRole || (role == Qt::AccessibleTextRole && *column.title == '\0');
    return isExplanation && *column.explanation != '\0' ? QVariant(column.explanation) : QVariant();
}

QVariant OrderedTableModel::alignment(bool isNumber) {
    return QVariant::fromValue((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

std::vector<RecordId> OrderedTableModel::idsAt(const std::vector<int>& rows) const {
    std::vector<RecordId> ids;
    ids.reserve(rows.size());
    for (const int row : rows) ids.push_back(idAt(row));
    std::sort(ids.begin(), ids.end());
    return ids;
}

int OrderedTableModel::rowOf(RecordId id) const {
    const std::vector<int> rows = rowsOf(std::vector{id});
    return rows.empty() ? -1 : rows.front();
}

std::vector<int> OrderedTableModel::rowsOf(const std::vector<RecordId>& ascending) const {
    std::vector<int> rows;
    for (std::size_t row = 0; row < order_.size() && rows.size() < ascending.size(); ++row) {
        if (std::binary_search(ascending.begin(), ascending.end(), order_[row])) {
            rows.push_back(static_cast<int>(row));
        }
    }
    return rows;
}

void OrderedTableModel::sort(int column, Qt::SortOrder order) {
    sortColumn_ = column;
    sortOrder_ = order;
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const Records before = order_;
    arrangeByKeys(order_);
    if (all_) arrangeByKeys(*all_);
    movePersistentIndexes(before);
    emit layoutChanged({}, VerticalSortHint);
}

void OrderedTableModel::arrange(Records records) {
    order_ = std::move(records);
    if (!order_.empty()) newest_ = std::max(newest_, order_.back());
    arrangeByKeys(order_);
    const bool narrowed = all_.has_value();
    all_.reset();
    narrow(narrowed);
}

void OrderedTableModel::narrow(bool on) {
    if (all_) order_ = std::move(*all_);
    all_.reset();
    if (!on) return;
    all_ = order_;
    std::erase_if(order_, [this](RecordId record) { return !accepts(record); });
}

// What the record is sorted by; unsorted, all records are equal.
OrderedTableModel::Keyed OrderedTableModel::keyed(RecordId record) const {
    return {isSorted() ? sortKey(sortColumn_, record) : SortKey(), record};
}

bool OrderedTableModel::isBefore(const Keyed& one, const Keyed& other) const {
    const auto order = one.key <=> other.key;
    if (std::is_eq(order)) return one.record < other.record;
    return std::is_lt(order) == (sortOrder_ == Qt::AscendingOrder);
}

void OrderedTableModel::arrangeByKeys(Records& records) const {
    std::vector<Keyed> order;
    order.reserve(records.size());
    for (const RecordId record : records) order.push_back(keyed(record));
    std::sort(order.begin(), order.end(),
              [this](const Keyed& one, const Keyed& other) { return isBefore(one, other); });
    std::transform(order.begin(), order.end(), records.begin(),
                   [](const Keyed& each) { return each.record; });
}

void OrderedTableModel::movePersistentIndexes(const Records& before) {
    std::unordered_map<RecordId, int> rows;
    for (const RecordId record : order_) rows.emplace(record, static_cast<int>(rows.size()));
    const QModelIndexList old = persistentIndexList();
    QModelIndexList moved;
    moved.reserve(old.size());
    for (const QModelIndex& index : old) {
        const RecordId record = before[static_cast<std::size_t>(index.row())];
        moved.append(createIndex(rows.at(record), index.column()));
    }
    changePersistentIndexList(old, moved);
}

void OrderedTableModel::change(const RecordsChange& change, const std::function<void()>& swap) {
    const std::vector<Range> removed = rangesOf(rowsOf(change.removed));
    const bool insertsMany = change.inserted.size() > rangesAtMost;
    const auto isAmongInserted = [&](RecordId record) {
        return record > change.inserted.front() && record < change.inserted.back();
    };
    if (removed.size() > rangesAtMost ||
        (insertsMany &&
         (isSorted() || static_cast<std::size_t>(std::count_if(order_.begin(), order_.end(),
                                                               isAmongInserted)) > rangesAtMost))) {
        return changeByReset(change, swap);
    }
    removeRanges(removed);
    if (all_) removeFrom(*all_, change.removed);
    swap();
    insertInto(order_, change.inserted);
    if (all_) insertInto(*all_, change.inserted);
    if (!change.inserted.empty()) newest_ = std::max(newest_, change.inserted.back());
    tellUpdated(change.updated);
}

void OrderedTableModel::removeFrom(Records& records, const Records& removed) {
    std::erase_if(records, [&](RecordId record) {
        return std::binary_search(removed.begin(), removed.end(), record);
    });
}

void OrderedTableModel::changeByReset(const RecordsChange& change,
                                      const std::function<void()>& swap) {
    emit rowsAboutToBeReplaced();
    beginResetModel();
    swap();
    for (Records* records : {&order_, all_ ? &*all_ : nullptr}) {
        if (records == nullptr) continue;
        removeFrom(*records, change.removed);
        records->insert(records->end(), change.inserted.begin(), change.inserted.end());
        arrangeByKeys(*records);
    }
    if (!change.inserted.empty()) newest_ = std::max(newest_, change.inserted.back());
    endResetModel();
    emit rowsReplaced();
}

void OrderedTableModel::removeRanges(const std::vector<Range>& ranges) {
    for (std::size_t i = ranges.size(); i > 0; --i) {
        const auto& [first, last] = ranges[i - 1];
        beginRemoveRows({}, first, last);
        order_.erase(order_.begin() + first, order_.begin() + last + 1);
        endRemoveRows();
    }
}

// Records that go to the same place are inserted together, if the order of the project is theirs.
void OrderedTableModel::insertInto(Records& records, const Records& inserted) {
    const bool isShown = &records == &order_;
    const auto added = std::upper_bound(inserted.begin(), inserted.end(), newest_);
    for (auto first = inserted.begin(); first != inserted.end();) {
        auto place = records.end();
        auto end = inserted.end();
        if (first < added) {
            place = std::upper_bound(
                records.begin(), records.end(), keyed(*first),
                [this](const Keyed& one, RecordId other) { return isBefore(one, keyed(other)); });
            end = isSorted()               ? first + 1
                  : place == records.end() ? added
                                           : std::lower_bound(first, added, *place);
        }
        const int row = static_cast<int>(place - records.begin());
        if (isShown) beginInsertRows({}, row, row + static_cast<int>(end - first) - 1);
        records.insert(place, first, end);
        if (isShown) endInsertRows();
        first = end;
    }
}

void OrderedTableModel::tellUpdated(const Records& updated) {
    const std::vector<int> rows = rowsOf(updated);
    if (rows.empty()) return;
    std::vector<Range> ranges = rangesOf(rows);
    if (ranges.size() > rangesAtMost) ranges = {{rows.front(), rows.back()}};
    for (const Range& range : ranges) {
        emit dataChanged(index(range.first, 0), index(range.second, columnCount() - 1));
    }
}

void OrderedTableModel::tellColumn(int column, int role) {
    if (order_.empty()) return;
    emit dataChanged(index(0, column), index(rowCount() - 1, column), {role});
}

}  // namespace zorvel
