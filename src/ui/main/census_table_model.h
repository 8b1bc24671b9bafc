// The censuses of a project: name, and the number of species found. It shows the state that it was
// last told of; a typed name goes through the edits of the model, never straight into a record.
// Main thread.
#pragma once

#include <QFont>
#include <optional>
#include <vector>

#include "model/diversity_document.h"
#include "ui/main/ordered_table_model.h"
#include "ui/main/shared_names.h"

namespace zorvel {

class CensusTableModel : public OrderedTableModel {
    Q_OBJECT
  public:
    enum Column { nameColumn, speciesColumn, columnTotal };

    // The context must outlive the model.
    explicit CensusTableModel(ObjectContext& context, QObject* parent = nullptr);

    // All that is there now, for instance after another project was taken over.
    void reload();
    // Counts the species of the changed censuses alone.
    void recordsDidChange(const ChangeSet& changes);

    [[nodiscard]] RecordId idAt(int row) const { return blockAt(row).id; }
    // Of no record where the census is gone since the model was last told.
    [[nodiscard]] std::optional<Census> censusAt(int row) const;
    // -1 where there is none.
    [[nodiscard]] int rowOfCensus(RecordId census) const;
    // Rows of many, ascending.
    [[nodiscard]] std::vector<int> rowsOfCensuses(const std::vector<RecordId>& ascending) const;

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    // The censuses whole, for pasting.
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& rows) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  protected:
    [[nodiscard]] std::size_t recordCount() const override { return records_.size(); }
    [[nodiscard]] SortKeys sortKeys(int column, const Records& records) const override;

  private:
    struct Row {
        BlockPointer block;
        // See metrics/census_metrics.h; of the included taxa. Absent until it is asked for: of
        // many censuses that arrive at once few are on the screen.
        mutable std::optional<std::int64_t> richness;
    };

    [[nodiscard]] const CensusBlock& blockAt(int row) const {
        return *records_[recordAt(row)].block;
    }
    // The row of the block that the row's census has become.
    [[nodiscard]] static Row followed(Row row, const BlockPointer& after);
    [[nodiscard]] static std::int64_t richnessOf(const Row& row);
    // The place of the census, or where it would stand.
    [[nodiscard]] std::size_t placeOf(RecordId census) const;
    [[nodiscard]] std::vector<Row> changedRecords(const ChangeSet& changes,
                                                  RecordsChange& told) const;
    [[nodiscard]] QVariant nameData(const std::optional<SharedText>& name, int role) const;
    void countNames(const ChangeSet& changes);

    ObjectContext& context_;
    std::vector<Row> records_;  // ascending by identity
    SharedNames sharedNames_;   // of records_
};

// Of a name that is absent: the font of what stands in its place.
QFont absentNameFont();
// The name of a record as it is shown: "unnamed" where it has none, shortened where it is
// longer than any screen.
QString shownName(const std::optional<SharedText>& name);

// The whole name for an editor; empty where there is none.
QString editableName(const std::optional<SharedText>& name);
// False for a name so long that no line editor could hold it.
bool isNameEditable(const std::optional<SharedText>& name);

}  // namespace zorvel
