// The columns of a table, which fill its width. One gives way as the table is resized, down to half
// of that width; then the others do, too. A drag at its right edge moves room between it and the
// column after it. The widths can be kept between runs. Owned by its table. Main thread.
#pragma once

#include <QList>
#include <QObject>

class QTableView;

namespace zorvel {

class TableColumns : public QObject {
    Q_OBJECT
  public:
    // The table must have its model. Widths of all columns at first, in pixels; that of the elastic
    // one does not matter.
    TableColumns(QTableView& table, int elasticColumn, const QList<int>& widths);

    // Those chosen, also while the table is too narrow for them.
    [[nodiscard]] QList<int> widths() const { return chosen_; }
    // Of another number of columns, or not positive: nothing happens.
    void setWidths(const QList<int>& widths);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void sectionDidResize(int column, int before, int now);
    void fill();
    [[nodiscard]] QList<int> fittingWidths() const;

    QTableView& table_;
    int elastic_;
    QList<int> chosen_;
    bool filling_ = false;
};

}  // namespace zorvel
