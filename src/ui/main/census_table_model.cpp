#include "ui/main/census_table_model.h"

#include "metrics/census_metrics.h"
#include "model/diversity_document.h"
#include "ui/kit/shown_text.h"
#include "ui/main/natural_order.h"

namespace zorvel {

namespace {
constexpr qsizetype longestName = 1000;  // characters
}

QString shownName(const std::optional<SharedText>& name) {
    if (!name) return unnamedName;
    // Bytes enough for that many characters and one more, whatever they are.
    const std::string_view start = name->view().substr(0, 4 * (longestName + 1));
    return shortened(QString::fromUtf8(start.data(), static_cast<qsizetype>(start.size())),
                     longestName);
}

CensusTableModel::CensusTableModel(const ObjectContext& context, QObject* parent)
    : OrderedTableModel(parent), context_(context) {
    reload();
}

void CensusTableModel::reload() {
    beginResetModel();
    censuses_ = context_.censuses();
    richness_.clear();
    richness_.reserve(censuses_.size());
    for (const Census& census : censuses_) {
        richness_.push_back(richness(includedCountsVector(census)));
    }
    arrange();
    endResetModel();
}

int CensusTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnTotal;
}

QVariant CensusTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const std::size_t record = recordAt(index.row());
    if (role == Qt::TextAlignmentRole && index.column() == speciesColumn) {
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    }
    if (role == Qt::DisplayRole && index.column() == speciesColumn) {
        return static_cast<qlonglong>(richness_[record]);
    }
    const bool showsName = role == Qt::DisplayRole || role == Qt::ToolTipRole;
    if (showsName && index.column() == nameColumn) return shownName(censuses_[record].name());
    return {};
}

QVariant CensusTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section >= columnTotal) return {};
    const bool species = section == speciesColumn;
    if (role == Qt::DisplayRole) return species ? tr("Species") : tr("Census");
    if (role == Qt::ToolTipRole && species) return tr("Species found, among those included");
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue((species ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    return {};
}

OrderedTableModel::SortKeys CensusTableModel::sortKeys(int column) const {
    if (column == speciesColumn) return richness_;
    std::vector<std::string> keys;
    keys.reserve(censuses_.size());
    for (const Census& census : censuses_) {
        keys.push_back(naturalKey(shownName(census.name()).toStdString()));
    }
    return keys;
}

}  // namespace zorvel
