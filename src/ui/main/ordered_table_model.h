// A table over the records of a list, in the project's order, which is that of their identities. It
// shows them in another order or in part without touching them. It sorts row numbers by keys made
// once per sort, which stays fast with 100,000 rows. Changed records are told as changes of rows;
// the rows are not sorted or filtered again until the user asks for it. Main thread.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "store/object_context.h"

namespace zorvel {

class OrderedTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    struct Column {
        const char* title;        // may be empty
        const char* explanation;  // may be empty; without a title it is read aloud
        bool isNumber;            // aligned to the right
    };
    OrderedTableModel(std::vector<Column> columns, QObject* parent)
        : QAbstractTableModel(parent), columns_(std::move(columns)) {}

    // True for a cell in the quieter colour: an absent name, a species that is left out.
    static constexpr int dimmedRole = Qt::UserRole + 1;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    // Stable; equal records keep the project's order both ways. A column below 0 restores it.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    [[nodiscard]] RecordId idAt(int row) const { return idOf(recordAt(row)); }
    // Ascending.
    [[nodiscard]] std::vector<RecordId> idsAt(const std::vector<int>& rows) const;
    // -1 if the record is not shown.
    [[nodiscard]] int rowOf(RecordId id) const;
    // Of those that are shown, ascending.
    [[nodiscard]] std::vector<int> rowsOf(const std::vector<RecordId>& ascending) const;

  signals:
    // Around a reset, where too much has changed to tell it by rows. Selections are lost.
    void rowsAboutToBeReplaced();
    void rowsReplaced();

  protected:
    using SortKeys = std::variant<std::vector<std::int64_t>, std::vector<std::string>>;
    using Records = std::vector<std::uint32_t>;  // places in the project's order, from 0

    // Each ascending. Removed: places before the change; the others: places after it.
    struct RecordsChange {
        Records removed;
        Records inserted;
        Records updated;
    };
    // Adds the record to the change, which is made later; to be called with ascending identities.
    // stays: it exists after the change.
    void note(RecordId id, bool stays, RecordsChange& change) const;

    [[nodiscard]] virtual std::size_t recordCount() const = 0;
    [[nodiscard]] virtual RecordId idOf(std::size_t record) const = 0;
    // One key per record.
    [[nodiscard]] virtual SortKeys sortKeys(int column, const Records& records) const = 0;
    // What key() returns for each record.
    template <class Key>
    [[nodiscard]] static auto keysOf(const Records& records, Key key) {
        std::vector<decltype(key(std::uint32_t{}))> keys;
        keys.reserve(records.size());
        for (const std::uint32_t record : records) keys.push_back(key(record));
        return keys;
    }
    [[nodiscard]] virtual bool accepts(std::size_t /*record*/) const { return true; }
    // The value of Qt::TextAlignmentRole.
    [[nodiscard]] static QVariant alignment(bool isNumber);

    [[nodiscard]] std::size_t recordAt(int row) const;
    // The place of a record, or the place where it would be.
    [[nodiscard]] std::size_t placeOf(RecordId id) const;
    [[nodiscard]] bool isAt(std::size_t place, RecordId id) const {
        return place < recordCount() && idOf(place) == id;
    }

    // Between beginResetModel and endResetModel, when the records have changed.
    void arrange();
    // The same when accepts() has changed. on: whether it can refuse a record. The rows keep their
    // order.
    void narrow(bool on);

    // swap() replaces the records. Rows are removed before it and inserted after it, even those
    // that accepts() would refuse: a record at the end of the project at the end of the table, any
    // other where the sort order puts it.
    void change(const RecordsChange& change, const std::function<void()>& swap);

    // Tells the views that these records, or one column, look different.
    void tellUpdated(const Records& updated);
    void tellColumn(int column, int role);

  private:
    using Range = std::pair<int, int>;  // first and last row

    [[nodiscard]] std::vector<int> rowsOfPlaces(const Records& places) const;
    void orderByKeys(Records& records) const;
    void renumber(Records& records, const RecordsChange& change) const;
    void movePersistentIndexes(const Records& before);
    void changeByReset(const RecordsChange& change, const std::function<void()>& swap);
    void removeRanges(const std::vector<Range>& ranges);
    void renumber(const RecordsChange& change);
    void insertRecords(const Records& inserted);
    [[nodiscard]] std::size_t placeFor(std::uint32_t record) const;

    std::vector<Column> columns_;
    Records order_;  // of the rows
    Records all_;    // of all records, while narrowed
    bool narrowed_ = false;
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace zorvel
