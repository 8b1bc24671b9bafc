// The two tables of the main window, edited like a spreadsheet, and the widths of their columns.
// Tab goes to the next cell, from the last cell of the last row to a new row; Shift+Tab goes back,
// the arrows go up and down a column. Main thread.
#pragma once

#include <QList>
#include <QObject>

#include "ui/main/record_table_view.h"

class QTableView;

namespace zorvel {

class CensusTableView : public RecordTableView {
    Q_OBJECT
  public:
    // The first cell of a row that can be edited.
    static constexpr int kNameColumn = -1;

    using RecordTableView::RecordTableView;

  public slots:
    void censusNameTextFieldEditingDidEnd(TextMovement movement);

  protected:
    void editorDidOpen(TableTextField& field) override;
};

class SpeciesTableView : public RecordTableView {
    Q_OBJECT
  public:
    static constexpr int kNameColumn = 1;
    static constexpr int kAbundanceColumn = 2;

    using RecordTableView::RecordTableView;

  public slots:
    void speciesTableTextFieldEditingDidEnd(TextMovement movement, const QString& identifier);

  signals:
    // The space bar: changes the marks of all selected rows.
    void includeToggleRequested();

  protected:
    // A digit is typed into the abundance, anything else into the name.
    [[nodiscard]] int columnForTyping(const QString& text) const override;
    void editorDidOpen(TableTextField& field) override;
    void keyPressEvent(QKeyEvent* event) override;
};

// The columns of a table, which fill its width. The elastic one changes with the table's width,
// down to half of it; after that the others shrink too. Dragging its right edge moves room between
// it and the next column. Owned by its table.
class TableColumns : public QObject {
    Q_OBJECT
  public:
    // The table must have its model. widths: of all columns at first, in pixels; that of the
    // elastic one is ignored.
    TableColumns(QTableView& table, int elasticColumn, const QList<int>& widths);

    // As chosen, even if the table is too narrow for them.
    [[nodiscard]] QList<int> widths() const { return chosen_; }
    // Ignored if their number is wrong or one is not positive.
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
