#include "ui/main/species_table_model.h"

#include <algorithm>
#include <utility>

#include "model/edits.h"
#include "model/typed_values.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/name_matching.h"

namespace zorvel {

void SpeciesTableModel::setContext(ObjectContext& context) {
    context_ = &context;
    forgetRecords();
    setCensus(nullptr);
}

void SpeciesTableModel::setCensus(BlockPointer block) {
    beginResetModel();
    takeBlock(std::move(block));
    countNames();
    Records ids;
    if (block_) block_->forEachTaxon([&](const TaxonRecord& taxon) { ids.push_back(taxon.id); });
    arrange(std::move(ids));
    endResetModel();
}

void SpeciesTableModel::takeBlock(BlockPointer block) {
    block_ = std::move(block);
    totals_ = {};
    if (!block_) return;
    block_->forEachTaxon([this](const TaxonRecord& taxon) {
        totals_.largest = std::max(totals_.largest, taxon.values.abundance);
        if (!taxon.values.include) {
            ++totals_.excluded;
        } else if (taxon.values.abundance < 1) {
            ++totals_.absent;
        }
    });
}

void SpeciesTableModel::countNames() {
    sharedNames_ = {};
    if (!block_) return;
    block_->forEachTaxon([this](const TaxonRecord& taxon) { sharedNames_.add(taxon.values.name); });
}

void SpeciesTableModel::blockDidChange(BlockPointer after) {
    RecordsChange told;
    bool namesChange = false;
    forEachTaxonChange(
        block_.get(), after.get(), [&](const TaxonRecord* before, const TaxonRecord* now) {
            if (!before) {
                told.inserted.push_back(now->id);
            } else {
                (now ? told.updated : told.removed).push_back(before->id);
            }
            namesChange = namesChange || !before || !now || before->values.name != now->values.name;
        });
    const std::int64_t largest = totals_.largest;
    const std::size_t shared = sharedNames_.recordCount();
    change(told, [&] {
        takeBlock(std::move(after));
        if (namesChange) countNames();
    });
    if (totals_.largest != largest) tellColumn(abundanceColumn, shareRole);
    if (sharedNames_.recordCount() != shared) tellColumn(nameColumn, Qt::DecorationRole);
}

void SpeciesTableModel::setFilter(const QString& text) {
    std::string folded = foldedForSearch(text.trimmed().toStdString());
    if (folded == filter_) return;
    beginResetModel();
    filter_ = std::move(folded);
    narrow(!filter_.empty());
    endResetModel();
}

std::vector<Zorvel> SpeciesTableModel::taxaAt(const std::vector<int>& rows) const {
    const std::optional<Census> census = block_ ? context_->census(block_->id) : std::nullopt;
    std::vector<Zorvel> taxa;
    if (!census) return taxa;
    for (const RecordId id : idsAt(rows)) {
        if (const std::optional<Zorvel> taxon = census->taxon(id)) taxa.push_back(*taxon);
    }
    return taxa;
}

QVariant SpeciesTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const TaxonValues& taxon = valuesAt(index.row());
    switch (index.column()) {
        case includeColumn:
            return includeData(taxon, role);
        case nameColumn:
            return speciesNameData(taxon, role);
        default:
            return abundanceData(taxon, role);
    }
}

QVariant SpeciesTableModel::includeData(const TaxonValues& taxon, int role) const {
    if (role == Qt::CheckStateRole) return taxon.include ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::ToolTipRole || role == Qt::AccessibleTextRole) {
        return taxon.include ? "Included in the metrics" : "Left out of the metrics";
    }
    return {};
}

// Where most species share a name, as in an imported list without names, a mark in every row would
// say nothing.
QVariant SpeciesTableModel::speciesNameData(const TaxonValues& taxon, int role) const {
    if (role == dimmedRole && !taxon.include) return true;
    const bool isShared = sharedNames_.isShared(taxon.name);
    return nameData(taxon.name, role, isShared ? sharedSpeciesReason : nullptr,
                    2 * sharedNames_.recordCount() <= taxonCount());
}

QVariant SpeciesTableModel::abundanceData(const TaxonValues& taxon, int role) const {
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        return static_cast<qlonglong>(taxon.abundance);
    }
    if (role == Qt::TextAlignmentRole) return alignment(true);
    if (role == dimmedRole) return !taxon.include;
    if (role == shareRole) {
        const auto present = static_cast<double>(std::max<std::int64_t>(taxon.abundance, 0));
        return totals_.largest > 0 ? present / static_cast<double>(totals_.largest) : 0.0;
    }
    return {};
}

bool SpeciesTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
    const std::vector<Zorvel> taxa = taxaAt({index.row()});
    if (taxa.empty()) return false;
    if (index.column() == includeColumn && role == Qt::CheckStateRole) {
        editInclude(*context_, taxa, value.toInt() == Qt::Checked);
    } else if (role != Qt::EditRole ||
               !storeText(*context_, taxa.front(), index.column(), value.toString())) {
        return false;
    }
    context_->announceChanges();
    return true;
}

bool SpeciesTableModel::storeText(ObjectContext& context, const Zorvel& taxon, int column,
                                  const QString& text) {
    if (column == nameColumn) {
        if (text != editableName(taxon.name())) editName(context, taxon, text.toStdString());
        return true;
    }
    const Typed<std::int64_t> abundance = parseTypedAbundance(text.toStdString());
    if (column != abundanceColumn || !abundance) return false;
    editAbundance(context, taxon, abundance.value());
    return true;
}

Qt::ItemFlags SpeciesTableModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = OrderedTableModel::flags(index);
    if (!index.isValid()) return flags;
    if (index.column() == includeColumn) return flags | Qt::ItemIsUserCheckable;
    const bool editable =
        index.column() == abundanceColumn || isNameEditable(valuesAt(index.row()).name);
    return editable ? flags | Qt::ItemIsEditable : flags;
}

QMimeData* SpeciesTableModel::mimeData(const QModelIndexList& rows) const {
    RecordCopy copy;
    copy.addCensus({});
    for (const QModelIndex& row : rows) copy.addTaxon(valuesAt(row.row()));
    return mimeDataOf(copy, copiedSpeciesType).release();
}

OrderedTableModel::SortKey SpeciesTableModel::sortKey(int column, RecordId record) const {
    const TaxonValues& taxon = valuesOf(record);
    if (column == nameColumn) {
        return naturalKey(taxon.name ? taxon.name->view() : unnamedName);
    }
    return column == abundanceColumn ? taxon.abundance : std::int64_t{taxon.include};
}

bool SpeciesTableModel::accepts(RecordId record) const {
    const std::optional<SharedText>& name = valuesOf(record).name;
    const std::string folded = foldedForSearch(name ? name->view() : unnamedName);
    return folded.find(filter_) != std::string::npos;
}

}  // namespace zorvel
