// A table over a list of records in the project's order, shown in another order or in part without
// touching the records. It sorts a list of numbers by keys made once a sort, which keeps 100,000
// rows quick where a general proxy asks for every cell many times over. Changes of the records come
// and go as rows: what is shown is neither sorted nor filtered again until the person asks for it.
// Main thread.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace zorvel {

class OrderedTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    // True of a cell that is shown quietly: a name that is absent, a species that is left out.
    static constexpr int dimmedRole = Qt::UserRole + 1;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;

    // Stable; equal records keep the project's order both ways. A column below 0 restores it.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    // The record shown in a row, and the row that shows a record (-1: not shown).
    [[nodiscard]] std::size_t recordAt(int row) const;
    [[nodiscard]] int rowOf(std::size_t record) const;
    // The same for many records; ascending, those that are not shown are left out.
    [[nodiscard]] std::vector<int> rowsOf(const std::vector<std::uint32_t>& records) const;

  signals:
    // Too much has changed to tell it by rows: a reset follows, and selections go with it.
    void rowsAboutToBeReplaced();
    void rowsReplaced();

  protected:
    using SortKeys = std::variant<std::vector<std::int64_t>, std::vector<std::string>>;
    using Records = std::vector<std::uint32_t>;  // places in the project's order, from 0

    // Each ascending; removed by the places before the change, the others by those after it.
    struct RecordsChange {
        Records removed;
        Records inserted;
        Records updated;
    };

    [[nodiscard]] virtual std::size_t recordCount() const = 0;
    // One key for each of these records.
    [[nodiscard]] virtual SortKeys sortKeys(int column, const Records& records) const = 0;
    [[nodiscard]] virtual bool accepts(std::size_t record) const;

    // Between beginResetModel and endResetModel, when the records have changed.
    void arrange();
    // The same when what is accepted has changed, on: whether anything can be refused. What is
    // shown keeps its order, which is not made anew.
    void narrow(bool on);

    // swap() replaces the records. Removed rows go first, with the old records still in place;
    // inserted ones come last, whatever is accepted: a record at the end of the project at the end
    // of the table, any other where the order of the table wants it.
    void change(const RecordsChange& change, const std::function<void()>& swap);

    // Tells the views that these records, or a column of all, look different.
    void tellUpdated(const Records& updated);
    void tellColumn(int column, int role);

  private:
    using Range = std::pair<int, int>;  // first and last row

    void orderByKeys(Records& records) const;
    void renumber(Records& records, const RecordsChange& change) const;
    void changeAll(const RecordsChange& change);
    void movePersistentIndexes(const Records& before);
    void changeByReset(const RecordsChange& change, const std::function<void()>& swap);
    void removeRanges(const std::vector<Range>& ranges);
    void renumber(const RecordsChange& change);
    void insertRecords(const Records& inserted);
    [[nodiscard]] std::size_t placeFor(std::uint32_t record) const;

    Records order_;  // what is shown
    Records all_;    // of all records, while only some of them may be shown
    bool narrowed_ = false;
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace zorvel
