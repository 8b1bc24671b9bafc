// A table over the records of a list, in the project's order, which is that of their identities. It
// shows them in another order or in part without touching them: its rows are identities, sorted by
// keys made once per sort, which stays fast with 100,000 rows. Changed records are told as changes
// of rows; the rows are not sorted or filtered again until the user asks for it. Main thread.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "store/census_block.h"

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

    [[nodiscard]] RecordId idAt(int row) const { return order_[static_cast<std::size_t>(row)]; }
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
    using Records = std::vector<RecordId>;
    using SortKey = std::variant<std::int64_t, std::string>;

    // Each ascending.
    struct RecordsChange {
        Records removed;
        Records inserted;
        Records updated;
    };

    // The keys of a column are of one type.
    [[nodiscard]] virtual SortKey sortKey(int column, RecordId record) const = 0;
    [[nodiscard]] virtual bool accepts(RecordId /*record*/) const { return true; }
    // The value of Qt::TextAlignmentRole.
    [[nodiscard]] static QVariant alignment(bool isNumber);

    // Before the records of another project, whose identities begin anew.
    void forgetRecords() { newest_ = 0; }
    // Between beginResetModel and endResetModel: all records, ascending.
    void arrange(Records records);
    // The same when accepts() has changed. on: whether it can refuse a record. The rows keep their
    // order.
    void narrow(bool on);

    // swap() replaces the records. Rows are removed before it and inserted after it, even those
    // that accepts() would refuse: a new record at the end of the table, one that comes back where
    // the sort order puts it.
    void change(const RecordsChange& change, const std::function<void()>& swap);

    // Tells the views that one column looks different.
    void tellColumn(int column, int role);

  private:
    using Range = std::pair<int, int>;  // first and last row
    struct Keyed {
        SortKey key;
        RecordId record = 0;
    };

    [[nodiscard]] bool isSorted() const { return sortColumn_ >= 0 && sortColumn_ < columnCount(); }
    [[nodiscard]] Keyed keyed(RecordId record) const;
    [[nodiscard]] bool isBefore(const Keyed& one, const Keyed& other) const;
    void arrangeByKeys(Records& records) const;
    void movePersistentIndexes(const Records& before);
    static void removeFrom(Records& records, const Records& removed);
    void changeByReset(const RecordsChange& change, const std::function<void()>& swap);
    void removeRanges(const std::vector<Range>& ranges);
    void insertInto(Records& records, const Records& inserted);
    void tellUpdated(const Records& updated);

    std::vector<Column> columns_;
    Records order_;               // of the rows
    std::optional<Records> all_;  // the order of all records, while narrowed
    RecordId newest_ = 0;         // that was shown in the project: identities are not used twice
    int sortColumn_ = -1;
    Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
};

}  // namespace zorvel
