// A table of records: whole rows, sorted by a click on a header (a third click restores the order
// of the project), its selection paler while the focus is elsewhere, its rows copied as text. Cells
// that can be edited open by a double click, by F2, by Return, and by typing, which replaces the
// text; Tab and the arrows go from one to the next. Home and End go to the first and the last row.
// An editor commits before the rows are sorted; one whose row goes away is closed and commits
// nothing. Main thread.
#pragma once

#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTableView>
#include <vector>

#include "ui/main/table_cells.h"

namespace zorvel {

class RecordTableView : public QTableView {
    Q_OBJECT
  public:
    explicit RecordTableView(QWidget* parent = nullptr);

    // The selected rows from top to bottom as text for a spreadsheet: one line per row, cells
    // separated by tabs, values as they are stored, however long.
    [[nodiscard]] QString selectedText() const;
    // Copies that text and the model's own form of the rows to the clipboard. False, with the
    // clipboard unchanged, if nothing is selected or the model cannot copy so much.
    bool copySelection();

    // The selected rows, ascending.
    [[nodiscard]] std::vector<int> selectedRows() const;
    // Only these rows, ascending; the first is in sight and current. The focus stays. Of rows
    // scattered over thousands of places only the first is selected.
    void selectRows(const std::vector<int>& rows);

    // Scrolls to the cell and opens its editor, its text selected.
    void beginEditing(const QModelIndex& cell);
    // The editor that is open; null if there is none.
    [[nodiscard]] TableTextField* openEditor() const;
    // The cell that is, or was last, edited; none once it is gone.
    [[nodiscard]] QModelIndex editedCell() const { return edited_; }
    // As if the user had pressed Return. Does nothing without an editor.
    void commitEditing();

    // Shown in the middle of the table while it has no rows.
    void setEmptyText(const QString& text);

  signals:
    // The Delete or Backspace key, outside an editor.
    void deleteRequested();
    void cutRequested();
    void copyRefused();
    void pasteRequested();
    // The Insert key or Ctrl+Return, or Tab past the last row.
    void addRowRequested();
    // What is typed in the open line has changed, or the line has closed.
    void textTyped();

  protected:
    // Opens the cell that the movement leads to from the one edited last, or asks for a new row.
    // columns: those that can be edited, from left to right; place: that of the cell in them.
    void goOn(TextMovement movement, const QList<int>& columns, qsizetype place = 0);

    // Which cell of a row a typed text goes to.
    [[nodiscard]] virtual int columnForTyping(const QString& /*text*/) const { return -1; }
    virtual void editorDidOpen(TableTextField& field) = 0;

    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void initViewItemOption(QStyleOptionViewItem* option) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void fitRows();
    // Edits a cell, with only its row selected; a column below 0 is the first that can be edited.
    // Does nothing for a row that does not exist.
    void editCell(int row, int column);
    void revertEditing();
    [[nodiscard]] QModelIndex firstEditable(int row) const;
    bool handleCommandKey(const QKeyEvent& event);
    void editByKey();
    void typeIntoRow(QKeyEvent* event);

    QString emptyText_;
    QPersistentModelIndex edited_;
    QPointer<TableTextField> opened_;  // its editor
};

}  // namespace zorvel
