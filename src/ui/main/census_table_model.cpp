#include "ui/main/census_table_model.h"

#include <algorithm>
#include <utility>

#include "model/edits.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/name_matching.h"

namespace zorvel {

namespace {

bool isFound(const TaxonRecord& taxon) {
    return taxon.values.include && taxon.values.abundance >= 1;
}

}  // namespace

void CensusTableModel::setContext(ObjectContext& context) {
    beginResetModel();
    context_ = &context;
    records_.clear();
    sharedNames_.clear();
    for (const BlockPointer& block : context.blocks()) {
        records_.push_back({block, std::nullopt});
        sharedNames_.add(block->attributes.name);
    }
    arrange();
    endResetModel();
}

std::int64_t CensusTableModel::richnessOf(const Row& row) {
    if (!row.richness) {
        row.richness = 0;
        row.block->forEachTaxon(
            [&](const TaxonRecord& taxon) { *row.richness += int{isFound(taxon)}; });
    }
    return *row.richness;
}

void CensusTableModel::recordsDidChange(const ChangeSet& changes) {
    RecordsChange told;
    const std::size_t shared = sharedNames_.recordCount();
    countNames(changes);
    if (sharedNames_.recordCount() != shared) tellColumn(nameColumn, Qt::DecorationRole);
    for (const CensusChange& each : changes) note(each.census, !each.deleted(), told);
    if (!told.removed.empty() || !told.inserted.empty()) {
        std::vector<Row> after = changedRecords(changes);
        return change(told, [&] { records_ = std::move(after); });
    }
    for (const CensusChange& each : changes) {
        const std::size_t place = placeOf(each.census);
        if (isAt(place, each.census)) records_[place] = {each.after, std::nullopt};
    }
    tellUpdated(told.updated);
}

void CensusTableModel::countNames(const ChangeSet& changes) {
    for (const CensusChange& change : changes) {
        const std::size_t place = placeOf(change.census);
        const bool shown = isAt(place, change.census);
        if (shown) sharedNames_.remove(records_[place].block->attributes.name);
        if (change.after && (shown || change.inserted())) {
            sharedNames_.add(change.after->attributes.name);
        }
    }
}

// Both lists ascend by identity, so one walk merges them.
std::vector<CensusTableModel::Row> CensusTableModel::changedRecords(
    const ChangeSet& changes) const {
    std::vector<Row> after;
    after.reserve(records_.size() + changes.size());
    std::size_t old = 0;
    for (const CensusChange& change : changes) {
        while (old < records_.size() && idOf(old) < change.census) {
            after.push_back(records_[old++]);
        }
        if (isAt(old, change.census)) ++old;
        if (!change.deleted()) after.push_back({change.after, std::nullopt});
    }
    after.insert(after.end(), records_.begin() + static_cast<std::ptrdiff_t>(old), records_.end());
    return after;
}

std::optional<Census> CensusTableModel::censusAt(int row) const {
    return context_->census(idAt(row));
}

QVariant CensusTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = records_[recordAt(index.row())];
    if (index.column() == speciesColumn) {
        if (role == Qt::TextAlignmentRole) return alignment(true);
        return role == Qt::DisplayRole ? QVariant(static_cast<qlonglong>(richnessOf(row)))
                                       : QVariant();
    }
    const std::optional<SharedText>& name = row.block->attributes.name;
    return nameData(name, role, sharedNames_.isShared(name) ? sharedCensusReason : nullptr, true);
}

bool CensusTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || index.column() != nameColumn ||
        role != Qt::EditRole) {
        return false;
    }
    const std::optional<Census> census = censusAt(index.row());
    if (!census) return false;
    if (value.toString() == editableName(census->name())) return true;
    editName(*context_, *census, value.toString().toStdString());
    context_->announceChanges();
    return true;
}

Qt::ItemFlags CensusTableModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = OrderedTableModel::flags(index);
    const bool editable = index.isValid() && index.column() == nameColumn &&
                          isNameEditable(blockAt(index.row()).attributes.name);
    return editable ? flags | Qt::ItemIsEditable : flags;
}

QMimeData* CensusTableModel::mimeData(const QModelIndexList& rows) const {
    RecordCopy copy;
    for (const QModelIndex& row : rows) {
        const CensusBlock& census = blockAt(row.row());
        copy.addCensus(census.attributes);
        copy.addTaxa(census);
    }
    return mimeDataOf(copy, copiedCensusesType).release();
}

OrderedTableModel::SortKeys CensusTableModel::sortKeys(int column, const Records& records) const {
    if (column == speciesColumn) {
        return keysOf(records,
                      [this](std::uint32_t record) { return richnessOf(records_[record]); });
    }
    return keysOf(records, [this](std::uint32_t record) {
        return naturalKey(shownName(records_[record].block->attributes.name).toStdString());
    });
}

}  // namespace zorvel
