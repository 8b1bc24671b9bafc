// The taxa of one census: include mark, name, abundance; all of them, or those whose name holds a
// text. It keeps the census's block, so the records may change under it; it shows what it was
// given until it is given another. Main thread.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "model/diversity_document.h"
#include "ui/main/ordered_table_model.h"

namespace zorvel {

class SpeciesTableModel : public OrderedTableModel {
    Q_OBJECT
  public:
    enum Column { includeColumn, nameColumn, abundanceColumn, columnTotal };
    // In the abundance column: the abundance as a share (0 to 1) of the largest of the census.
    static constexpr int shareRole = Qt::UserRole;

    using OrderedTableModel::OrderedTableModel;

    // No block: no rows.
    void setCensus(std::shared_ptr<const CensusBlock> block);
    // Names that hold the text, whatever its case; an empty text shows all.
    void setFilter(const QString& text);

    [[nodiscard]] RecordId taxonAt(int row) const;
    // -1 where the taxon is not shown.
    [[nodiscard]] int rowOfTaxon(RecordId taxon) const;
    // Of the census, shown or not.
    [[nodiscard]] std::size_t taxonCount() const { return taxa_.size(); }

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  protected:
    [[nodiscard]] std::size_t recordCount() const override { return taxa_.size(); }
    [[nodiscard]] SortKeys sortKeys(int column) const override;
    [[nodiscard]] bool accepts(std::size_t record) const override;

  private:
    [[nodiscard]] QVariant includeData(const TaxonValues& taxon, int role) const;
    [[nodiscard]] QVariant nameData(const TaxonValues& taxon, int role) const;
    [[nodiscard]] QVariant abundanceData(const TaxonValues& taxon, int role) const;

    std::shared_ptr<const CensusBlock> block_;
    std::vector<const TaxonRecord*> taxa_;  // within block_
    std::int64_t largest_ = 0;
    std::string filter_;  // folded
};

}  // namespace zorvel
