// The censuses of a project: name, and number of species found. It shows the state that it was last
// told of; a typed name is an edit of the model. Main thread.
#pragma once

#include <map>
#include <optional>

#include "model/diversity_document.h"
#include "ui/main/ordered_table_model.h"
#include "ui/main/record_names.h"

namespace zorvel {

class CensusTableModel : public OrderedTableModel {
    Q_OBJECT
  public:
    enum ColumnNumber { nameColumn, speciesColumn };

    explicit CensusTableModel(QObject* parent = nullptr)
        : OrderedTableModel(
              {{"Census", "", false}, {"Species", "Species found, among those included", true}},
              parent) {}

    // Whose censuses are shown; must outlive the model or the next call.
    void setContext(ObjectContext& context);
    // Counts only the species of the changed censuses.
    void recordsDidChange(const ChangeSet& changes);

    // Absent if the census was deleted since the model was last told.
    [[nodiscard]] std::optional<Census> censusAt(int row) const;

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    // The censuses whole, for pasting.
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& rows) const override;

  protected:
    [[nodiscard]] SortKey sortKey(int column, RecordId record) const override;

  private:
    struct Row {
        BlockPointer block;
        // Of the included taxa, see metrics/census_metrics.h. Absent until it is needed: of many
        // censuses that arrive at once, few are on the screen.
        mutable std::optional<std::int64_t> richness;
    };

    [[nodiscard]] const CensusBlock& blockAt(int row) const {
        return *records_.at(idAt(row)).block;
    }
    [[nodiscard]] static std::int64_t richnessOf(const Row& row);
    void countNames();

    ObjectContext* context_ = nullptr;
    std::map<RecordId, Row> records_;
    SharedNames sharedNames_;  // of records_
};

}  // namespace zorvel
