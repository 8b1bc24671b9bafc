// A table of records: whole rows, sorted by a click on a header (a third click restores the order
// of the project), its selection paler while the focus is elsewhere, its rows copied as text.
// Main thread.
#pragma once

#include <QTableView>

namespace zorvel {

class RecordTableView : public QTableView {
    Q_OBJECT
  public:
    explicit RecordTableView(QWidget* parent = nullptr);

    // The selected rows from top to bottom, a line each, cells between tabs; empty without one.
    [[nodiscard]] QString selectedText() const;
    // To the clipboard; leaves the clipboard alone where nothing is selected.
    void copySelection() const;

    // Stands in the middle of the table while it has no rows.
    void setEmptyText(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void initViewItemOption(QStyleOptionViewItem* option) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void fitRows();

    QString emptyText_;
};

}  // namespace zorvel
