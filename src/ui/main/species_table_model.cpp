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
    setCensus(nullptr);
}

void SpeciesTableModel::setCensus(std::shared_ptr<const CensusBlock> block) {
    beginResetModel();
    takeBlock(std::move(block));
    sharedNames_.clear();
    sharedNames_.reserve(taxa_.size());
    for (const TaxonRecord* taxon : taxa_) sharedNames_.add(taxon->values.name);
    search_.clear();
    arrange();
    endResetModel();
}

void SpeciesTableModel::takeBlock(std::shared_ptr<const CensusBlock> block) {
    taxa_.clear();
    largest_ = 0;
    excluded_ = 0;
    absent_ = 0;
    block_ = std::move(block);
    if (!block_) return;
    taxa_.reserve(block_->taxonCount());
    block_->forEachTaxon([this](const TaxonRecord& taxon) {
        taxa_.push_back(&taxon);
        largest_ = std::max(largest_, taxon.values.abundance);
        if (!taxon.values.include) {
            ++excluded_;
        } else if (taxon.values.abundance < 1) {
            ++absent_;
        }
    });
}

void SpeciesTableModel::blockDidChange(std::shared_ptr<const CensusBlock> after) {
    RecordsChange told;
    const std::int64_t largest = largest_;
    const std::size_t shared = sharedNames_.recordCount();
    forEachTaxonChange(block_.get(), after.get(),
                       [&](const TaxonRecord* before, const TaxonRecord* now) {
                           note((now ? now : before)->id, now != nullptr, told);
                           if (before) sharedNames_.remove(before->values.name);
                           if (now) sharedNames_.add(now->values.name);
                       });
    change(told, [&] { takeBlock(std::move(after)); });
    if (largest_ != largest) tellColumn(abundanceColumn, shareRole);
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
                    2 * sharedNames_.recordCount() <= taxa_.size());
}

QVariant SpeciesTableModel::abundanceData(const TaxonValues& taxon, int role) const {
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        return static_cast<qlonglong>(taxon.abundance);
    }
    if (role == Qt::TextAlignmentRole) return alignment(true);
    if (role == dimmedRole) return !taxon.include;
    if (role == shareRole) {
        const auto present = static_cast<double>(std::max<std::int64_t>(taxon.abundance, 0));
        return largest_ > 0 ? present / static_cast<double>(largest_) : 0.0;
    }
    return {};
}

bool SpeciesTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
    const std::vector<Zorvel> taxa = taxaAt({index.row()});
    if (taxa.empty() || !edit(taxa.front(), index.column(), value, role)) return false;
    context_->announceChanges();
    return true;
}

bool SpeciesTableModel::edit(const Zorvel& taxon, int column, const QVariant& value, int role) {
    if (column == includeColumn && role == Qt::CheckStateRole) {
        editInclude(*context_, {taxon}, value.toInt() == Qt::Checked);
        return true;
    }
    return role == Qt::EditRole && storeText(*context_, taxon, column, value.toString());
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

OrderedTableModel::SortKeys SpeciesTableModel::sortKeys(int column, const Records& records) const {
    if (column == nameColumn) {
        return keysOf(records, [this](std::uint32_t record) {
            const std::optional<SharedText>& name = taxa_[record]->values.name;
            return naturalKey(name ? name->view() : std::string_view(unnamedName));
        });
    }
    return keysOf(records, [this, column](std::uint32_t record) {
        const TaxonValues& taxon = taxa_[record]->values;
        return column == abundanceColumn ? taxon.abundance : std::int64_t{taxon.include};
    });
}

bool SpeciesTableModel::accepts(std::size_t record) const {
    if (filter_.empty()) return true;
    static const SharedText unnamed(unnamedName);
    const std::optional<SharedText>& name = taxa_[record]->values.name;
    return search_.contains(name ? *name : unnamed, filter_);
}

}  // namespace zorvel
