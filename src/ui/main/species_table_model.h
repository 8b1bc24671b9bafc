// The taxa of one census: include mark, name, abundance; all of them, or those whose name contains
// a text. It shows the block of the census that it was last told of; what is typed is an edit of
// the model. Main thread.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "model/diversity_document.h"
#include "store/chunk_list.h"
#include "ui/main/ordered_table_model.h"
#include "ui/main/record_names.h"

namespace zorvel {

class SpeciesTableModel : public OrderedTableModel {
    Q_OBJECT
  public:
    enum ColumnNumber { includeColumn, nameColumn, abundanceColumn };
    // In the abundance column: the abundance as a share (0 to 1) of the largest of the census.
    static constexpr int shareRole = Qt::UserRole;

    explicit SpeciesTableModel(QObject* parent = nullptr)
        : OrderedTableModel({{"", "Included in the metrics", false},
                             {"Name", "", false},
                             {"Abundance", "", true}},
                            parent) {}

    // Whose taxa are edited; must outlive the model or the next call. No census is shown then.
    void setContext(ObjectContext& context);
    // Without a block there are no rows.
    void setCensus(BlockPointer block);
    // The new block of the same census, not null.
    void blockDidChange(BlockPointer after);
    // Shows the names that contain the text, ignoring case and accents; an empty text shows all.
    void setFilter(const QString& text);

    // The taxa in these rows, in the project's order, without those that were deleted since.
    [[nodiscard]] std::vector<Zorvel> taxaAt(const std::vector<int>& rows) const;
    // Shown or not.
    [[nodiscard]] std::size_t taxonCount() const { return block_ ? block_->taxonCount() : 0; }
    struct Totals {
        std::int64_t largest = 0;  // abundance
        // The taxa left out, and those included without a specimen; the others are the richness.
        int excluded = 0;
        int absent = 0;
    };
    [[nodiscard]] const Totals& totals() const { return totals_; }
    // Names that several species of the census have.
    [[nodiscard]] const SharedNames& sharedNames() const { return sharedNames_; }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    // Stores a text typed into a cell of that column, in the context of the taxon; false if it
    // cannot be stored.
    static bool storeText(ObjectContext& context, const Zorvel& taxon, int column,
                          const QString& text);
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    // The taxa whole, for pasting.
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& rows) const override;

  protected:
    [[nodiscard]] SortKey sortKey(int column, RecordId record) const override;
    [[nodiscard]] bool accepts(RecordId record) const override;

  private:
    [[nodiscard]] const TaxonValues& valuesOf(RecordId taxon) const {
        return findRecord(block_->chunks, taxon)->values;
    }
    [[nodiscard]] const TaxonValues& valuesAt(int row) const { return valuesOf(idAt(row)); }
    [[nodiscard]] QVariant includeData(const TaxonValues& taxon, int role) const;
    [[nodiscard]] QVariant speciesNameData(const TaxonValues& taxon, int role) const;
    [[nodiscard]] QVariant abundanceData(const TaxonValues& taxon, int role) const;
    // Everything that follows from the block except the shared names.
    void takeBlock(BlockPointer block);
    void countNames();

    ObjectContext* context_ = nullptr;
    BlockPointer block_;
    Totals totals_;
    SharedNames sharedNames_;
    std::string filter_;  // folded
};

}  // namespace zorvel
