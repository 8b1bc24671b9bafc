// The first rows of a table below the roles of its columns. Space opens the roles of the current
// column. Main thread.
#pragma once

#include <QTableView>
#include <cstddef>
#include <memory>

#include "ui/tables/table_preview.h"

namespace zorvel {

class RoleHeader;
class SampleModel;

class SampleView : public QTableView {
    Q_OBJECT
  public:
    explicit SampleView(QWidget* parent = nullptr);

    void showPreview(const std::shared_ptr<const TablePreview>& preview);
    // Makes the cell of a problem the current one, if it is shown.
    void goTo(const TableRemark& problem);

  signals:
    // column: of the table, from 0.
    void roleChosen(std::size_t column, ColumnRole role);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void fitColumns(const TablePreview& preview);

    SampleModel* model_;
    RoleHeader* roles_;
};

}  // namespace zorvel
