// The censuses of a project: name, and the number of species found. Reads the records afresh when
// told to; never changes them. Main thread.
#pragma once

#include <optional>
#include <vector>

#include "model/diversity_document.h"
#include "ui/main/ordered_table_model.h"

namespace zorvel {

class CensusTableModel : public OrderedTableModel {
    Q_OBJECT
  public:
    enum Column { nameColumn, speciesColumn, columnTotal };

    // The context must outlive the model.
    explicit CensusTableModel(const ObjectContext& context, QObject* parent = nullptr);

    void reload();

    [[nodiscard]] Census censusAt(int row) const { return censuses_[recordAt(row)]; }

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  protected:
    [[nodiscard]] std::size_t recordCount() const override { return censuses_.size(); }
    [[nodiscard]] SortKeys sortKeys(int column) const override;

  private:
    const ObjectContext& context_;
    std::vector<Census> censuses_;
    std::vector<std::int64_t> richness_;  // of the included taxa, a census each
};

// The name of a record as it is shown: "unnamed" where it has none, shortened where it is
// longer than any screen.
QString shownName(const std::optional<SharedText>& name);

}  // namespace zorvel
