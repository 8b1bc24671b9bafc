// The header of the sample: above each column its letters and its role, which a click, or Space in
// the table, opens as a list to choose from. Main thread.
#pragma once

#include <QHeaderView>

#include "tables/reading.h"

namespace zorvel {

class RoleHeader : public QHeaderView {
    Q_OBJECT
  public:
    explicit RoleHeader(QWidget* parent = nullptr);

    void setLayoutOfTable(TableLayout layout) { layout_ = layout; }
    // The roles that the column may have, below its header.
    void openRoles(int section);

    // In which the role of the column is shown in full.
    [[nodiscard]] int roleWidth(int section) const;
    [[nodiscard]] QSize sizeHint() const override;

  signals:
    void roleChosen(int section, ColumnRole role);

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    TableLayout layout_ = TableLayout::censusRows;
};

}  // namespace zorvel
