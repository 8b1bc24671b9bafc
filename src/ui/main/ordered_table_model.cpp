#include "ui/main/ordered_table_model.h"

#include <algorithm>
#include <iterator>
#include <numeric>

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

bool holds(const std::vector<std::uint32_t>& ascending, std::uint32_t record) {
    return std::binary_search(ascending.begin(), ascending.end(), record);
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

std::size_t OrderedTableModel::recordAt(int row) const {
    return order_[static_cast<std::size_t>(row)];
}

std::size_t OrderedTableModel::placeOf(RecordId id) const {
    std::size_t low = 0;
    for (std::size_t high = recordCount(); low < high;) {
        const std::size_t middle = low + (high - low) / 2;
        if (idOf(middle) < id) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

void OrderedTableModel::note(RecordId id, bool stays, RecordsChange& change) const {
    const std::size_t old = placeOf(id);
    const bool isThere = isAt(old, id);
    const auto place =
        static_cast<std::uint32_t>(old + change.inserted.size() - change.removed.size());
    if (isThere && !stays) change.removed.push_back(static_cast<std::uint32_t>(old));
    if (isThere && stays) change.updated.push_back(place);
    if (!isThere && stays) change.inserted.push_back(place);
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
    Records places;
    for (const RecordId id : ascending) {
        const std::size_t place = placeOf(id);
        if (isAt(place, id)) places.push_back(static_cast<std::uint32_t>(place));
    }
    return rowsOfPlaces(places);
}

std::vector<int> OrderedTableModel::rowsOfPlaces(const Records& places) const {
    std::vector<int> rows;
    for (std::size_t row = 0; row < order_.size() && rows.size() < places.size(); ++row) {
        if (holds(places, order_[row])) rows.push_back(static_cast<int>(row));
    }
    return rows;
}

void OrderedTableModel::sort(int column, Qt::SortOrder order) {
    sortColumn_ = column;
    sortOrder_ = order;
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    const Records before = order_;
    std::sort(order_.begin(), order_.end());
    orderByKeys(order_);
    if (narrowed_) {
        std::sort(all_.begin(), all_.end());
        orderByKeys(all_);
    }
    movePersistentIndexes(before);
    emit layoutChanged({}, VerticalSortHint);
}

void OrderedTableModel::arrange() {
    order_.resize(recordCount());
    std::iota(order_.begin(), order_.end(), 0U);
    orderByKeys(order_);
    const bool narrowed = std::exchange(narrowed_, false);
    all_.clear();
    if (narrowed) narrow(true);
}

void OrderedTableModel::narrow(bool on) {
    if (!narrowed_) all_ = std::move(order_);
    narrowed_ = on;
    order_.clear();
    if (!on) {
        order_ = std::move(all_);
        all_.clear();
        return;
    }
    std::copy_if(all_.begin(), all_.end(), std::back_inserter(order_),
                 [this](std::uint32_t record) { return accepts(record); });
}

void OrderedTableModel::orderByKeys(Records& records) const {
    if (sortColumn_ < 0 || sortColumn_ >= columnCount()) return;
    Records places(records.size());
    std::iota(places.begin(), places.end(), 0U);
    const auto sortBy = [&](const auto& keys) {
        std::stable_sort(places.begin(), places.end(), [&](std::uint32_t a, std::uint32_t b) {
            return sortOrder_ == Qt::AscendingOrder ? keys[a] < keys[b] : keys[b] < keys[a];
        });
    };
    std::visit(sortBy, sortKeys(sortColumn_, records));
    for (std::uint32_t& place : places) place = records[place];
    records = std::move(places);
}

void OrderedTableModel::movePersistentIndexes(const Records& before) {
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

void OrderedTableModel::change(const RecordsChange& change, const std::function<void()>& swap) {
    const std::vector<Range> removed = rangesOf(rowsOfPlaces(change.removed));
    if (removed.size() > rangesAtMost ||
        (change.inserted.size() > rangesAtMost &&
         (sortColumn_ >= 0 || change.inserted.back() - change.inserted.front() >=
                                  change.inserted.size() + rangesAtMost))) {
        changeByReset(change, swap);
        return;
    }
    removeRanges(removed);
    swap();
    renumber(change);
    insertRecords(change.inserted);
    tellUpdated(change.updated);
}

void OrderedTableModel::changeByReset(const RecordsChange& change,
                                      const std::function<void()>& swap) {
    emit rowsAboutToBeReplaced();
    beginResetModel();
    std::erase_if(order_, [&](std::uint32_t record) { return holds(change.removed, record); });
    swap();
    renumber(change);
    order_.insert(order_.end(), change.inserted.begin(), change.inserted.end());
    std::sort(order_.begin(), order_.end());
    orderByKeys(order_);
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

void OrderedTableModel::renumber(const RecordsChange& change) {
    if (change.removed.empty() && change.inserted.empty()) return;
    renumber(order_, change);
    if (!narrowed_) return;
    std::erase_if(all_, [&](std::uint32_t record) { return holds(change.removed, record); });
    renumber(all_, change);
    all_.insert(all_.end(), change.inserted.begin(), change.inserted.end());
}

// Gives the records that stay their new places.
void OrderedTableModel::renumber(Records& records, const RecordsChange& change) const {
    const std::size_t before = recordCount() + change.removed.size() - change.inserted.size();
    Records now(before);
    auto removed = change.removed.begin();
    auto inserted = change.inserted.begin();
    std::uint32_t next = 0;
    for (std::uint32_t record = 0; record < before; ++record) {
        if (removed != change.removed.end() && *removed == record) {
            ++removed;
            continue;
        }
        while (inserted != change.inserted.end() && *inserted == next) {
            ++inserted;
            ++next;
        }
        now[record] = next++;
    }
    for (std::uint32_t& record : records) record = now[record];
}

// Neighbours that go to the same place are inserted together.
void OrderedTableModel::insertRecords(const Records& inserted) {
    for (std::size_t i = 0; i < inserted.size();) {
        const std::size_t place = placeFor(inserted[i]);
        std::size_t end = i + 1;
        const bool together = sortColumn_ < 0 || place == order_.size();
        while (together && end < inserted.size() && inserted[end] == inserted[end - 1] + 1) ++end;
        const int row = static_cast<int>(place);
        beginInsertRows({}, row, row + static_cast<int>(end - i) - 1);
        order_.insert(order_.begin() + row, inserted.begin() + static_cast<std::ptrdiff_t>(i),
                      inserted.begin() + static_cast<std::ptrdiff_t>(end));
        endInsertRows();
        i = end;
    }
}

std::size_t OrderedTableModel::placeFor(std::uint32_t record) const {
    const bool last = std::all_of(order_.begin(), order_.end(),
                                  [record](std::uint32_t each) { return each < record; });
    if (last) return order_.size();
    const bool sorted = sortColumn_ >= 0 && sortColumn_ < columnCount();
    const SortKeys key = sorted ? sortKeys(sortColumn_, {record}) : SortKeys{};
    const auto stands = [&](std::uint32_t a, std::uint32_t other) {
        if (!sorted) return a < other;
        const SortKeys otherKey = sortKeys(sortColumn_, {other});
        if (key == otherKey) return a < other;
        return sortOrder_ == Qt::AscendingOrder ? key < otherKey : otherKey < key;
    };
    const auto place = std::upper_bound(order_.begin(), order_.end(), record, stands);
    return static_cast<std::size_t>(place - order_.begin());
}

void OrderedTableModel::tellUpdated(const Records& updated) {
    if (updated.empty()) return;
    const std::vector<int> rows = rowsOfPlaces(updated);
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
