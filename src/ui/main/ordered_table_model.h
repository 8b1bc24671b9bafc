// A table over a list of records in the project's order, shown in another order or in part without
// touching the records. It sorts a list of numbers by keys made once a sort, which keeps 100,000
// rows quick where a general proxy asks for every cell many times over. Main thread.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace zorvel {

class OrderedTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;

    // Stable; equal records keep the project's order both ways. A column below 0 restores it.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    // The record shown in a row, and the row that shows a record (-1: not shown).
    [[nodiscard]] std::size_t recordAt(int row) const;
    [[nodiscard]] int rowOf(std::size_t record) const;

  protected:
    using SortKeys = std::variant<std::vector<std::int64_t>, std::vector<std::string>>;

    [[nodiscard]] virtual std::size_t recordCount() const = 0;
    // One key a record, in the project's order.
    [[nodiscard]] virtual SortKeys sortKeys(int column) const = 0;
    [[nodiscard]] virtual bool accepts(std::size_t record) const;

    // Between beginResetModel and endResetModel, when records or what is accepted have changed.
    void arrange();

  private:
    void orderByKeys(std::vector<std::uint32_t>& records) const;
    void movePersistentIndexes(const std::vector<std::uint32_t>& before);

    std::vector<std::uint32_t> order_;
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace zorvel
