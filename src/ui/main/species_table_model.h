// The taxa of one census: include mark, name, abundance; all of them, or those whose name holds a
// text. It shows the block of the census that it was last told of; what is typed goes through the
// edits of the model, never straight into a record. Main thread.
#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/diversity_document.h"
#include "ui/main/ordered_table_model.h"
#include "ui/main/search_text.h"
#include "ui/main/shared_names.h"

namespace zorvel {

class SpeciesTableModel : public OrderedTableModel {
    Q_OBJECT
  public:
    enum Column { includeColumn, nameColumn, abundanceColumn, columnTotal };
    // In the abundance column: the abundance as a share (0 to 1) of the largest of the census.
    static constexpr int shareRole = Qt::UserRole;

    // The context must outlive the model.
    explicit SpeciesTableModel(ObjectContext& context, QObject* parent = nullptr);

    // No block: no rows.
    void setCensus(std::shared_ptr<const CensusBlock> block);
    // The block that the same census has become, not null. Chunks that both blocks share cost next
    // to nothing while no record moves to another place.
    void blockDidChange(std::shared_ptr<const CensusBlock> after);
    // Names that hold the text, case and accents aside; an empty text shows all.
    void setFilter(const QString& text);

    [[nodiscard]] RecordId taxonAt(int row) const;
    // -1 where the taxon is not shown.
    [[nodiscard]] int rowOfTaxon(RecordId taxon) const;
    // Rows of many, ascending.
    [[nodiscard]] std::vector<int> rowsOfTaxa(const std::vector<RecordId>& ascending) const;
    // The handles of the taxa in these rows, in the project's order, as they stand in the project.
    [[nodiscard]] std::vector<Zorvel> taxaAt(const std::vector<int>& rows) const;
    // Of the census, shown or not.
    [[nodiscard]] std::size_t taxonCount() const { return taxa_.size(); }
    // Not included, and included without a specimen: the rest of them are the richness.
    [[nodiscard]] int excludedCount() const { return excluded_; }
    [[nodiscard]] int absentCount() const { return absent_; }
    // Names that several species of the census bear. Each of these is marked, unless they are the
    // most of them, as in an imported list without names: a mark in every row would tell nothing.
    [[nodiscard]] const SharedNames& sharedNames() const { return sharedNames_; }
    [[nodiscard]] bool marksSharedNames() const {
        return 2 * sharedNames_.recordCount() <= taxa_.size();
    }

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    // A text typed into a cell of that column, in the context of the taxon; false where it cannot
    // be stored there.
    static bool storeText(ObjectContext& context, const Zorvel& taxon, int column,
                          const QString& text);
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    // The taxa whole, for pasting.
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& rows) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  protected:
    [[nodiscard]] std::size_t recordCount() const override { return taxa_.size(); }
    [[nodiscard]] SortKeys sortKeys(int column, const Records& records) const override;
    [[nodiscard]] bool accepts(std::size_t record) const override;

  private:
    [[nodiscard]] const TaxonValues& valuesAt(int row) const {
        return taxa_[recordAt(row)]->values;
    }
    [[nodiscard]] std::size_t placeOf(RecordId taxon) const;
    [[nodiscard]] bool isTaxonAt(std::size_t place, RecordId taxon) const;
    [[nodiscard]] RecordsChange changeTo(const CensusBlock& after) const;
    [[nodiscard]] QVariant includeData(const TaxonValues& taxon, int role) const;
    [[nodiscard]] QVariant nameData(const TaxonValues& taxon, int role) const;
    [[nodiscard]] QVariant abundanceData(const TaxonValues& taxon, int role) const;
    void takeBlock(std::shared_ptr<const CensusBlock> block);
    void findLargest();
    void count(const TaxonValues& taxon, int by);
    bool edit(const Zorvel& taxon, int column, const QVariant& value, int role);

    ObjectContext& context_;
    std::shared_ptr<const CensusBlock> block_;
    std::vector<const TaxonRecord*> taxa_;  // within block_, ascending by identity
    std::int64_t largest_ = 0;
    int excluded_ = 0;
    int absent_ = 0;
    SharedNames sharedNames_;  // of taxa_
    std::string filter_;       // folded
    mutable NameSearch search_;
};

}  // namespace zorvel
