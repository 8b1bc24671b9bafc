#include "ui/main/species_table_model.h"

#include <algorithm>
#include <utility>

#include "model/diversity_document.h"
#include "ui/main/census_table_model.h"
#include "ui/main/natural_order.h"

namespace zorvel {

void SpeciesTableModel::setCensus(std::shared_ptr<const CensusBlock> block) {
    beginResetModel();
    block_ = std::move(block);
    taxa_.clear();
    largest_ = 0;
    if (block_) {
        block_->forEachTaxon([this](const TaxonRecord& taxon) {
            taxa_.push_back(&taxon);
            largest_ = std::max(largest_, taxon.values.abundance);
        });
    }
    arrange();
    endResetModel();
}

void SpeciesTableModel::setFilter(const QString& text) {
    std::string folded = foldedForSearch(text.trimmed().toStdString());
    if (folded == filter_) return;
    beginResetModel();
    filter_ = std::move(folded);
    arrange();
    endResetModel();
}

RecordId SpeciesTableModel::taxonAt(int row) const {
    return taxa_[recordAt(row)]->id;
}

int SpeciesTableModel::rowOfTaxon(RecordId taxon) const {
    const auto found = std::find_if(taxa_.begin(), taxa_.end(),
                                    [taxon](const TaxonRecord* each) { return each->id == taxon; });
    return found == taxa_.end() ? -1 : rowOf(static_cast<std::size_t>(found - taxa_.begin()));
}

int SpeciesTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnTotal;
}

QVariant SpeciesTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const TaxonValues& taxon = taxa_[recordAt(index.row())]->values;
    switch (index.column()) {
        case includeColumn:
            return includeData(taxon, role);
        case nameColumn:
            return nameData(taxon, role);
        default:
            return abundanceData(taxon, role);
    }
}

QVariant SpeciesTableModel::includeData(const TaxonValues& taxon, int role) const {
    if (role == Qt::CheckStateRole) return taxon.include ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::ToolTipRole || role == Qt::AccessibleTextRole) {
        return taxon.include ? tr("Included in the metrics") : tr("Left out of the metrics");
    }
    return {};
}

QVariant SpeciesTableModel::nameData(const TaxonValues& taxon, int role) const {
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return shownName(taxon.name);
    return {};
}

QVariant SpeciesTableModel::abundanceData(const TaxonValues& taxon, int role) const {
    if (role == Qt::DisplayRole) return static_cast<qlonglong>(taxon.abundance);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role == shareRole) {
        const auto present = static_cast<double>(std::max<std::int64_t>(taxon.abundance, 0));
        return largest_ > 0 ? present / static_cast<double>(largest_) : 0.0;
    }
    return {};
}

QVariant SpeciesTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section >= columnTotal) return {};
    if (role == Qt::DisplayRole) {
        return section == nameColumn        ? tr("Name")
               : section == abundanceColumn ? tr("Abundance")
                                            : QString();
    }
    if (section == includeColumn && (role == Qt::ToolTipRole || role == Qt::AccessibleTextRole)) {
        return tr("Included in the metrics");
    }
    if (role == Qt::TextAlignmentRole) {
        const bool number = section == abundanceColumn;
        return QVariant::fromValue((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    return {};
}

OrderedTableModel::SortKeys SpeciesTableModel::sortKeys(int column) const {
    if (column == nameColumn) {
        std::vector<std::string> keys;
        keys.reserve(taxa_.size());
        for (const TaxonRecord* taxon : taxa_) {
            keys.push_back(naturalKey(taxon->values.name ? taxon->values.name->view()
                                                         : std::string_view(unnamedName)));
        }
        return keys;
    }
    std::vector<std::int64_t> keys;
    keys.reserve(taxa_.size());
    for (const TaxonRecord* taxon : taxa_) {
        keys.push_back(column == abundanceColumn ? taxon->values.abundance : taxon->values.include);
    }
    return keys;
}

bool SpeciesTableModel::accepts(std::size_t record) const {
    if (filter_.empty()) return true;
    const std::optional<SharedText>& name = taxa_[record]->values.name;
    return foldedForSearch(name ? name->view() : std::string_view(unnamedName)).find(filter_) !=
           std::string::npos;
}

}  // namespace zorvel
