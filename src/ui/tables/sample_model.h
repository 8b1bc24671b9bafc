// The rows of a preview as a table for a view: each column on the ground of its role, rows that are
// left out grey and struck, cells with a problem with a sign and a tooltip. The header is the role.
// Main thread.
#pragma once

#include <QAbstractTableModel>
#include <memory>

#include "ui/tables/table_preview.h"

namespace zorvel {

class SampleModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    // Of a horizontal header: the letters of the column. Its display text is the caption of the
    // role.
    static constexpr int lettersRole = Qt::UserRole;
    static constexpr int columnRoleRole = Qt::UserRole + 1;  // a ColumnRole as int

    void setPreview(std::shared_ptr<const TablePreview> preview);
    // The cell that a remark is about, or the first of its row; none where it is not shown.
    [[nodiscard]] QModelIndex indexOf(const TableRemark& remark) const;
    // Of the table, from 0, of a column that is shown.
    [[nodiscard]] std::size_t columnOf(int section) const {
        return preview_->columns[static_cast<std::size_t>(section)];
    }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    [[nodiscard]] const TablePreview::Row& rowAt(int row) const {
        return preview_->rows[static_cast<std::size_t>(row)];
    }
    [[nodiscard]] ColumnRole roleOf(int section) const {
        return preview_->reading.role(columnOf(section));
    }
    [[nodiscard]] QVariant columnHeader(int section, int role) const;
    [[nodiscard]] QVariant foreground(const QModelIndex& index) const;
    [[nodiscard]] QString problemsAt(const QModelIndex& index) const;

    std::shared_ptr<const TablePreview> preview_;
    // Of each cell, by row and column of the table; SIZE_MAX: the row as a whole.
    std::map<std::pair<std::size_t, std::size_t>, QString> problems_;
};

}  // namespace zorvel
