// The two tables of the main window, edited like a spreadsheet: Tab ends a cell and goes on to the
// next one, from the last cell of the last row to a new row; Shift+Tab goes back the same way, the
// arrows go up and down a column. They hear of the end of an edit from their own cells alone. Main
// thread.
#pragma once

#include "ui/kit/record_table_view.h"
#include "ui/main/table_text_fields.h"

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
    void editorDidOpen(QWidget* editor) override;
    void editorDidClose(QWidget* editor) override;
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
    // The space bar: the marks of all selected rows change at once.
    void includeToggleRequested();

  protected:
    // A digit is typed into the abundance, anything else into the name.
    [[nodiscard]] int columnForTyping(const QString& text) const override;
    void editorDidOpen(QWidget* editor) override;
    void editorDidClose(QWidget* editor) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zorvel
