#include "ui/main/census_table_model.h"

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
    forgetRecords();
    Records ids;
    for (const BlockPointer& block : context.blocks()) {
        records_[block->id] = {block, std::nullopt};
        ids.push_back(block->id);
    }
    countNames();
    arrange(std::move(ids));
    endResetModel();
}

void CensusTableModel::countNames() {
    sharedNames_ = {};
    for (const auto& [id, row] : records_) sharedNames_.add(row.block->attributes.name);
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
    for (const CensusChange& each : changes) {
        if (records_.contains(each.census)) {
            (each.after ? told.updated : told.removed).push_back(each.census);
        } else if (each.after) {
            told.inserted.push_back(each.census);
        }
    }
    const std::size_t shared = sharedNames_.recordCount();
    change(told, [&] {
        bool namesChange = !told.inserted.empty() || !told.removed.empty();
        for (const CensusChange& each : changes) {
            if (each.after) {
                const Row before = std::exchange(records_[each.census], {each.after, std::nullopt});
                namesChange =
                    namesChange || before.block->attributes.name != each.after->attributes.name;
            } else {
                records_.erase(each.census);
            }
        }
        if (namesChange) countNames();
    });
    if (sharedNames_.recordCount() != shared) tellColumn(nameColumn, Qt::DecorationRole);
}

std::optional<Census> CensusTableModel::censusAt(int row) const {
    return context_->census(idAt(row));
}

QVariant CensusTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Row& row = records_.at(idAt(index.row()));
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

OrderedTableModel::SortKey CensusTableModel::sortKey(int column, RecordId record) const {
    const Row& row = records_.at(record);
    if (column == speciesColumn) return richnessOf(row);
    return naturalKey(shownName(row.block->attributes.name).toStdString());
}

}  // namespace zorvel
